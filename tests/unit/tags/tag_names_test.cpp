#include "tags/tag_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "tests/support/raised_by.h"
#include "tests/unit/tags/tag_machine.h"

namespace parvex {
namespace {

using test::ListedTag;
using test::RaisedBy;
using test::TagMachine;
using testing::SizeIs;

struct NamesMachine : TagMachine {
  explicit NamesMachine(const std::string& listedTags) { Answer(true, "<LIST>" + listedTags + "</LIST>"); }

  std::string Unique(const std::string& wanted, const std::string& pdsg = "G", const std::string& project = "P") {
    return MakeUniqueTagName(link, project, wanted, pdsg);
  }
};

TEST(MakeUniqueTagName, GivesAFreeNameAsItIs) {
  NamesMachine names(ListedTag("A", "G"));
  EXPECT_EQ(names.Unique("B"), "B");
  EXPECT_EQ(names.Unique(""), "");
  EXPECT_EQ(names.Unique("Küche [2] (EG)"), "Küche [2] (EG)");
}

TEST(MakeUniqueTagName, ReplacesWhatTagNamesMustNotHold) {
  NamesMachine names("");
  EXPECT_EQ(names.Unique("<>&'\"\\,|"), "________");
  EXPECT_EQ(names.Unique("a<b|c"), "a_b_c");
  EXPECT_EQ(names.Unique("a/b;c:d*e?f"), "a/b;c:d*e?f") << "nothing else is replaced";
}

TEST(MakeUniqueTagName, NumbersEveryClashOfTheInstancesLifeFromOne) {
  NamesMachine names(ListedTag("A", "G") + ListedTag("B", "G"));
  EXPECT_EQ(names.Unique("A"), "A[1]");
  EXPECT_EQ(names.Unique("B"), "B[2]");
  EXPECT_EQ(names.Unique("C"), "C");
  EXPECT_EQ(names.Unique("A"), "A[3]") << "the counter is never reset, and what it made is not remembered";
}

TEST(MakeUniqueTagName, PutsTheNumberIntoBracketsThatEndTheName) {
  NamesMachine names(ListedTag("A[7]", "G") + ListedTag("B[x][9]", "G") + ListedTag("[]", "G"));
  EXPECT_EQ(names.Unique("A[7]"), "A[1]");
  EXPECT_EQ(names.Unique("B[x][9]"), "B[x][2]");
  EXPECT_EQ(names.Unique("[]"), "[3]");
}

TEST(MakeUniqueTagName, AppendsTheNumberWhereBracketsDoNotEndTheNameOrAreNotPaired) {
  NamesMachine names(ListedTag("A[7]x", "G") + ListedTag("B]", "G") + ListedTag("C[", "G") + ListedTag("D[7] x", "G"));
  EXPECT_EQ(names.Unique("A[7]x"), "A[7]x[1]");
  EXPECT_EQ(names.Unique("B]"), "B][2]");
  EXPECT_EQ(names.Unique("C["), "C[[3]");
}

TEST(MakeUniqueTagName, GoesOnWhileTheNumberedNameIsTakenToo) {
  NamesMachine names(ListedTag("A", "G") + ListedTag("A[1]", "G") + ListedTag("A[2]", "G"));
  EXPECT_EQ(names.Unique("A"), "A[3]");
  EXPECT_EQ(names.link.tagNames.counter, 4);
}

TEST(MakeUniqueTagName, ComparesTheCleanedName) {
  NamesMachine names(ListedTag("a_b", "G"));
  EXPECT_EQ(names.Unique("a|b"), "a_b[1]");
}

TEST(MakeUniqueTagName, ClashesOnlyWithinTheGroupAndWithTheSameLetterCase) {
  NamesMachine names(ListedTag("A", "G"));
  EXPECT_EQ(names.Unique("A", "H"), "A");
  EXPECT_EQ(names.Unique("A", "g"), "A");
  EXPECT_EQ(names.Unique("a", "G"), "a");
}

TEST(MakeUniqueTagName, FetchesTheListOnceWhateverProjectLaterCallsName) {
  NamesMachine names(ListedTag("A", "G"));
  names.Unique("B", "G", "first");
  EXPECT_EQ(names.Unique("A", "G", "second"), "A[1]");
  ASSERT_THAT(names.Requests(), SizeIs(1));
  EXPECT_THAT(names.Requests()[0], testing::HasSubstr("<VALUE>first</VALUE>"));
}

TEST(MakeUniqueTagName, BelongsToTheInstance) {
  NamesMachine names(ListedTag("A", "G"));
  names.Answer(true, "<LIST>" + ListedTag("A", "G") + "</LIST>");
  LegacyLink other(names.machine.platform);
  EXPECT_EQ(names.Unique("A"), "A[1]");
  EXPECT_EQ(MakeUniqueTagName(other, "P", "A", "G"), "A[1]");
}

TEST(MakeUniqueTagName, TakesARefusedListForAnEmptyOneAndKeepsIt) {
  TagMachine tags;
  tags.Answer(false, "<LIST>" + ListedTag("A", "G") + "</LIST>");
  tags.Answer(true, "<LIST>" + ListedTag("A", "G") + "</LIST>");
  EXPECT_EQ(MakeUniqueTagName(tags.link, "P", "A", "G"), "A");
  EXPECT_EQ(MakeUniqueTagName(tags.link, "P", "A", "G"), "A");
  EXPECT_EQ(tags.link.tagNames.counter, 1);
  EXPECT_THAT(tags.Requests(), SizeIs(1));
}

TEST(MakeUniqueTagName, FetchesAgainAfterAListThatCouldNotBeHad) {
  TagMachine tags;
  const std::string nameless = "<TAG><PDSG>G</PDSG><TAGVERSION/></TAG>";
  tags.Answer(true, "<LIST>" + ListedTag("A", "G") + nameless + "</LIST>");
  tags.Answer(true, "<LIST>" + ListedTag("A", "G") + "</LIST>");
  EXPECT_EQ(RaisedBy([&] { MakeUniqueTagName(tags.link, "P", "B", "G"); }), 91);
  EXPECT_EQ(MakeUniqueTagName(tags.link, "P", "A", "G"), "A[1]");
}

TEST(MakeUniqueTagName, OverflowsWhenTheCounterIsUsedUp) {
  NamesMachine names(ListedTag("A", "G"));
  names.Unique("B");
  names.link.tagNames.counter = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(RaisedBy([&] { names.Unique("A"); }), 6);
  EXPECT_EQ(names.Unique("B"), "B") << "a name that is free needs no number";
}

/// What the names have to equal: the walk over the list, begun again for every candidate.
class PlainRecursion {
 public:
  explicit PlainRecursion(std::vector<std::string> listed) : listed_(std::move(listed)) {}
  int counter = 1;

  std::string Unique(const std::string& wanted) {
    std::string cleaned = wanted;
    for (const char replaced : std::string("<>&'\"\\,|")) {
      std::replace(cleaned.begin(), cleaned.end(), replaced, '_');
    }
    if (std::find(listed_.begin(), listed_.end(), cleaned) == listed_.end()) {
      return cleaned;
    }
    const std::string number = std::to_string(counter);
    const std::size_t bracket = cleaned.rfind('[');
    const std::string candidate = cleaned.back() == ']' && bracket != std::string::npos
                                      ? cleaned.substr(0, bracket + 1) + number + "]"
                                      : wanted + "[" + number + "]";
    ++counter;
    return Unique(candidate);
  }

 private:
  const std::vector<std::string> listed_;
};

TEST(MakeUniqueTagName, EqualsThePlainRecursionTheCounterIncluded) {
  std::mt19937 random(147);
  const std::vector<std::string> stems = {"A", "B[", "C]", "D_E", "F[1]", "G[x]", "H"};
  const std::vector<std::string> endings = {"", "[1]", "[2]", "[3]", "[4]", "|", "]", "[9]"};
  const auto name = [&] { return stems[random() % stems.size()] + endings[random() % endings.size()]; };
  for (int round = 0; round < 30; ++round) {
    std::vector<std::string> listed;
    std::string list;
    for (int i = 0; i < 25; ++i) {
      listed.push_back(name());
      list += ListedTag(listed.back(), "G");
    }
    NamesMachine names(list);
    PlainRecursion plain(listed);
    for (int i = 0; i < 40; ++i) {
      const std::string wanted = name();
      EXPECT_EQ(plain.Unique(wanted), names.Unique(wanted)) << wanted;
      EXPECT_EQ(plain.counter, names.link.tagNames.counter) << wanted;
    }
  }
}

TEST(MakeUniqueTagName, EqualsThePlainRecursionWhenHundredsOfNamesClashWithEachOther) {
  std::vector<std::string> listed = {"A"};
  for (int i = 1; i < 500; ++i) {
    listed.push_back("A[" + std::to_string(i * 2) + "]");
  }
  std::string list;
  for (const std::string& name : listed) {
    list += ListedTag(name, "G");
  }
  NamesMachine names(list);
  PlainRecursion plain(listed);
  for (const std::string& wanted : listed) {
    ASSERT_EQ(plain.Unique(wanted), names.Unique(wanted));
    ASSERT_EQ(plain.counter, names.link.tagNames.counter);
  }
}

}  // namespace
}  // namespace parvex
