#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

#include "formats/ini/profile_index.h"
#include "formats/text/windows_1252.h"
#include "seams/xml.h"
#include "tests/faults/fault_injection.h"

// What lives on after an allocation failed in it answers as if nothing had happened.

namespace parvex::test {
namespace {

// Lets each allocation of `work` fail in turn, in objects that `make` makes anew, and looks at them afterwards.
template <typename Make, typename Work, typename Check>
void FailEachOf(Make make, Work work, Check check) {
  for (std::size_t at = 1;; ++at) {
    auto made = make();
    const std::size_t asked = WithAllocationFault({at, true}, [&] {
      try {
        work(*made);
      } catch (const std::bad_alloc&) {
      }
    });
    check(*made);
    if (asked < at) {
      EXPECT_GT(at, 2u) << "nothing failed";
      return;
    }
  }
}

// Its sections have enough keys for tables of their own memory.
std::string Profile() {
  std::string text;
  for (const char* section : {"[a]\nk=1\nl=2\n", "[b]\nm=3\n", "[c]\n"}) {
    text += section;
    for (int i = 0; i < 500; ++i) {
      text += "key" + std::to_string(i) + "=\n";
    }
  }
  return text;
}

struct Indexed {
  posix::Windows1252 codePage;
  ini::ProfileText text{Profile(), codePage};
  ini::ProfileIndex index{text};

  std::string Value(std::string_view section, std::string_view key) const {
    return std::string(index.FindValue(*index.FindSection(section), key).value_or("none"));
  }
};

TEST(AllocationsThatFail, LeaveAnIniIndexAsItIs) {
  FailEachOf([] { return std::make_unique<Indexed>(); },
             [](Indexed& indexed) {
               indexed.Value("a", "k");
               indexed.Value("b", "m");
             },
             [](Indexed& indexed) {
               EXPECT_EQ(indexed.Value("a", "l"), "2");
               EXPECT_EQ(indexed.Value("b", "m"), "3");
               EXPECT_EQ(indexed.Value("b", "k"), "none");
             });
}

struct Quote {
  xml::Document document = xml::Document::New();
  xml::Node unit;

  Quote() {
    const xml::Node root = document.Append(document.CreateElement("r"));
    unit = xml::AppendElement(root, "u");
    for (int i = 0; i < 50; ++i) {
      xml::AppendElement(unit, "c", std::string(300, 'x')).SetAttribute("a", "1");
    }
  }
  std::string Look() const { return document.Xml() + std::to_string(document.All("//c").size()) + unit.Text(); }
};

TEST(AllocationsThatFail, LeaveAnElementThatIsFoldedAsItIs) {
  const std::string expected = Quote().Look();
  FailEachOf([] { return std::make_unique<Quote>(); }, [](Quote& quote) { quote.unit.Fold(); },
             [&](Quote& quote) { EXPECT_EQ(quote.Look(), expected); });
}

TEST(AllocationsThatFail, LeaveAnElementThatIsUnfoldedAsItIs) {
  const std::string expected = Quote().Look();
  FailEachOf(
      [] {
        auto quote = std::make_unique<Quote>();
        quote->unit.Fold();
        return quote;
      },
      [](Quote& quote) { quote.unit.FirstChild(); }, [&](Quote& quote) { EXPECT_EQ(quote.Look(), expected); });
}

}  // namespace
}  // namespace parvex::test
