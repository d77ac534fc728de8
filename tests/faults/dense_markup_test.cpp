#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "seams/xml.h"
#include "tests/faults/limited_child.h"
#include "tests/support/hostile_markup.h"

// Documents that are small beside what a parser makes of them: each is read or refused, quickly and in little memory.

namespace parvex::test {
namespace {

using testing::EndsWith;
using testing::MatchesRegex;

struct DenseDocument {
  std::string name;
  std::function<std::string()> make;
  std::string reason;  ///< why it is refused, behind line and column; it is read when there is none
};

void PrintTo(const DenseDocument& document, std::ostream* out) { *out << document.name; }

class DenseMarkup : public testing::TestWithParam<DenseDocument> {};

TEST_P(DenseMarkup, IsReadOrRefusedQuicklyAndInLittleMemory) {
  const std::string bytes = GetParam().make();
  const ChildOutcome outcome = InLimitedChild([&] {
    const xml::Document loaded = xml::Document::Load(bytes);
    return loaded.IsEmpty() ? loaded.ParseError() : "read";
  });
  ExpectQuick(outcome);
  if (GetParam().reason.empty()) {
    EXPECT_EQ(outcome.answer, "read");
  } else {
    EXPECT_THAT(outcome.answer, MatchesRegex("line [0-9]+, column [0-9]+: .+"));
    EXPECT_THAT(outcome.answer, EndsWith(": " + GetParam().reason));
  }
}

std::string Within(const std::string& declarations, const std::string& content) {
  return "<!DOCTYPE a [" + declarations + "]><a>" + content + "</a>";
}

std::string Root(const std::string& content) { return "<a>" + content + "</a>"; }

std::string EmptyDefaults(std::size_t count) {
  return "<!ATTLIST a" + Numbered(count, [](const std::string& n) { return " b" + n + " CDATA ''"; }) + ">";
}

std::string Attributes(std::size_t count, const std::string& name = "b") {
  return Numbered(count, [&](const std::string& n) { return " " + name + n + "='u'"; });
}

std::string NestedDeclarations(std::size_t depth, std::size_t each) {
  std::string text;
  for (std::size_t level = 0; level < depth; ++level) {
    text += "<a" + Attributes(each, " xmlns:p" + std::to_string(level) + "_") + ">";
  }
  return text + Repeated("</a>", depth);
}

const std::string kLongDoctype = "the DOCTYPE is longer than 32768 bytes";
const std::string kManyAttributes = "an element with more than 1000 attributes";
const std::string kLargeTree = "the document's tree would take more than 13 times the bytes of its text";

INSTANTIATE_TEST_SUITE_P(
    Declares, DenseMarkup,
    testing::Values(DenseDocument{"ManyDefaultedEmptyAttributesOfManyElements",
                                  [] { return Within(EmptyDefaults(4'000), Repeated("<a/>", 8'000)); }, kLongDoctype},
                    DenseDocument{"DefaultedEmptyAttributesThatExpandInManyElements",
                                  [] { return Within(EmptyDefaults(1'900), Repeated("<a/>", 18'000)); },
                                  "entities and defaulted attributes expand to more than 1000000 bytes"},
                    DenseDocument{"ManyIdentifiers",
                                  [] {
                                    const auto one = [](const std::string& n) { return " b" + n + " ID #IMPLIED"; };
                                    return Within("<!ATTLIST a" + Numbered(20'000, one) + ">", "");
                                  },
                                  kLongDoctype},
                    DenseDocument{"ManyValuesOfAnAttribute",
                                  [] {
                                    const auto one = [](const std::string& n) { return "|v" + n; };
                                    return Within("<!ATTLIST a b (v" + Numbered(150'000, one) + ") #IMPLIED>", "");
                                  },
                                  kLongDoctype},
                    DenseDocument{"ValuesOfAnAttributeAsManyAsADoctypeHolds",
                                  [] {
                                    const auto one = [](const std::string& n) { return "|" + n; };
                                    return Within("<!ATTLIST a b (v" + Numbered(5'500, one) + ") #IMPLIED>", "");
                                  },
                                  ""},
                    DenseDocument{"ManyEntities",
                                  [] {
                                    const auto one = [](const std::string& n) { return "<!ENTITY e" + n + " 'x'>"; };
                                    return Within(Numbered(1'000'000, one), "");
                                  },
                                  kLongDoctype}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Has, DenseMarkup,
    testing::Values(
        DenseDocument{"ManyAttributesOfOneElement", [] { return "<a" + Attributes(300'000) + "/>"; }, kManyAttributes},
        DenseDocument{"ManyNamespacesOfOneElement", [] { return "<a" + Attributes(150'000, "xmlns:p") + "/>"; },
                      kManyAttributes},
        DenseDocument{"AThousandAttributesOfManyElements",
                      [] { return Root(Repeated("<a" + Attributes(1'000, "attribute") + "/>", 300)); }, ""},
        DenseDocument{"PrefixesDeclaredInEachOther", [] { return NestedDeclarations(900, 500); },
                      "more than 250 namespace declarations hold at once"},
        DenseDocument{
            "ManyNamespaces",
            [] { return Root(Numbered(200'000, [](const std::string& n) { return "<b xmlns='" + n + "'/>"; })); },
            "more than 1000 different namespaces"},
        DenseDocument{
            "ALongNamespaceOfManyElements",
            [] { return "<a xmlns='" + std::string(1'000'000, 'u') + "'>" + Repeated("<b></b>", 200'000) + "</a>"; },
            "a namespace's name is longer than 4096 bytes"},
        DenseDocument{"ManyNames",
                      [] { return Root(Numbered(3'000'000, [](const std::string& n) { return "<n" + n + "/>"; })); },
                      "more than 100000 different names"},
        DenseDocument{"ManyNamesOfInstructions",
                      [] { return Root(Numbered(300'000, [](const std::string& n) { return "<?n" + n + "?>"; })); },
                      "more than 100000 different names"},
        DenseDocument{
            "ManyNamesBehindAnError",
            [] { return Root("&e;" + Numbered(3'000'000, [](const std::string& n) { return "<n" + n + "/>"; })); },
            "the entity 'e' is not declared as plain text"},
        DenseDocument{"ManyDeclarationsBehindAnError", [] { return Root("]]>" + NestedDeclarations(900, 500)); },
                      "Sequence ']]>' not allowed in content"}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    IsMostly, DenseMarkup,
    testing::Values(DenseDocument{"EmptyElements", [] { return Root(Repeated("<b/>", 1'000'000)); }, kLargeTree},
                    DenseDocument{"TextsBetweenEmptyElements", [] { return Root(Repeated("x<b/>", 500'000)); },
                                  kLargeTree},
                    DenseDocument{"ShortTexts", [] { return Root(Repeated("<b>x</b>", 500'000)); }, kLargeTree},
                    DenseDocument{"ShortAttributes",
                                  [] { return Root(Repeated("<b c='1' d='2' e='3' f='4'/>", 200'000)); }, kLargeTree},
                    DenseDocument{"Instructions", [] { return Root(Repeated("<?a?>", 500'000)); }, kLargeTree},
                    DenseDocument{"Comments", [] { return Root(Repeated("<!---->", 500'000)); }, kLargeTree},
                    DenseDocument{"EmptyElementsOfASmallDocument", [] { return Root(Repeated("<b/>", 200'000)); }, ""}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace parvex::test
