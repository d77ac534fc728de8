#include "hybris/selection_section.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

class SelectionSectionOf : public testing::Test {
 protected:
  ExportMachine export_;

  SelectionSection Open(std::string_view word, std::int32_t number) {
    return SelectionSection(export_.platform, ExportMachine::kOutput, word, number);
  }

  std::vector<std::string> List(std::string_view prefix) {
    std::vector<std::string> values;
    Open("List", 1).ForEach(prefix, "lines", [&](std::int16_t number, std::string value) {
      EXPECT_EQ(number, static_cast<int>(values.size()) + 1);
      values.push_back(std::move(value));
    });
    return values;
  }
};

using Values = std::vector<std::string>;

TEST_F(SelectionSectionOf, TheNumberFollowsTheWordWithoutBlank) {
  export_.Select("[List 1]\r\nA=wrong\r\n[List01]\r\nA=wrong\r\n[List12]\r\nA=twelve\r\n[List1]\r\nA=one\r\n");
  EXPECT_EQ(Open("List", 1).Text("A"), "one");
  EXPECT_EQ(Open("List", 12).Text("A"), "twelve");
  EXPECT_EQ(Open("List", 2).Text("A"), "");
}

TEST_F(SelectionSectionOf, AMissingFileOrSectionReadsAsOneWithoutKeys) {
  EXPECT_EQ(Open("List", 1).Text("A", "fallback"), "fallback");
  EXPECT_EQ(Open("List", 1).Integer("A", 7), 7);
  EXPECT_EQ(List("A:"), Values());
}

TEST_F(SelectionSectionOf, AListEndsAtTheFirstGap) {
  export_.Select("[List1]\r\nA:1=x\r\nA:2=y\r\nA:4=never read\r\n");
  EXPECT_EQ(List("A:"), (Values{"x", "y"}));
}

TEST_F(SelectionSectionOf, AListEndsAtAnEmptyValue) {
  export_.Select("[List1]\r\nA:1=x\r\nA:2=\r\nA:3=never read\r\n");
  EXPECT_EQ(List("A:"), Values{"x"});
}

TEST_F(SelectionSectionOf, AListWithoutNumberOneIsEmpty) {
  export_.Select("[List1]\r\nA:0=zero\r\nA:2=two\r\nA:=none\r\nA:01=padded\r\n");
  EXPECT_EQ(List("A:"), Values());
}

TEST_F(SelectionSectionOf, AListOfQuotedBlanksGoesOn) {
  export_.Select("[List1]\r\nA:1=\" \"\r\nA:2=x\r\n");
  EXPECT_EQ(List("A:"), (Values{" ", "x"}));
}

TEST_F(SelectionSectionOf, LinesMayStandInAnyOrderAndLetterCase) {
  export_.Select("[LIST1]\r\na:2=two\r\nA:1=one\r\n");
  EXPECT_EQ(List("A:"), (Values{"one", "two"}));
}

TEST_F(SelectionSectionOf, OfDuplicateSectionsAndKeysTheFirstCounts) {
  export_.Select("[List1]\r\nA:1=first\r\nA:1=second\r\n[List1]\r\nA:1=third\r\nA:2=unseen\r\n");
  EXPECT_EQ(List("A:"), Values{"first"});
}

TEST_F(SelectionSectionOf, TheLastLineNeedsNoLineBreak) {
  export_.Select("[List1]\r\nA:1=x\r\nA:2=last");
  EXPECT_EQ(List("A:"), (Values{"x", "last"}));
}

TEST_F(SelectionSectionOf, AValueIsCutTo254Characters) {
  export_.Select("[List1]\r\nA:1=" + std::string(254, 'a') + "\r\nA:2=" + std::string(300, 'b') + "\r\n");
  EXPECT_EQ(List("A:"), (Values{std::string(254, 'a'), std::string(254, 'b')}));
}

TEST_F(SelectionSectionOf, AKeyOver254CharactersDisturbsNothing) {
  export_.Select("[List1]\r\n" + std::string(10000, 'K') + "=v\r\nA:1=x\r\n");
  EXPECT_EQ(List("A:"), Values{"x"});
}

TEST_F(SelectionSectionOf, LettersOfTheAnsiCodePageAreReadAsSuch) {
  export_.Select(
      "[List1]\r\nA:1=Gr\xF6\xDF"
      "e \x80 \x93x\x94\r\n");
  EXPECT_EQ(List("A:"), Values{"Größe \xE2\x82\xAC \xE2\x80\x9Cx\xE2\x80\x9D"});
}

TEST_F(SelectionSectionOf, AByteOrderMarkHidesOnlyWhatItStandsBefore) {
  export_.Select("\xEF\xBB\xBF[Header]\r\nAction=ok\r\n[List1]\r\nA:1=x\r\n");
  EXPECT_EQ(List("A:"), Values{"x"});
}

TEST_F(SelectionSectionOf, NulBytesDoNotStopTheSectionsBehindThem) {
  using namespace std::string_literals;
  export_.Select("[Header]\r\nAction=o\0k\r\n[List1]\r\nA:1=x\r\n"s);
  EXPECT_EQ(List("A:"), Values{"x"});
}

TEST_F(SelectionSectionOf, AnIntegerIsTheValuesBeginning) {
  export_.Select("[List1]\r\nA=12 pieces\r\nB=many\r\nC=\r\nD=-3\r\n");
  SelectionSection section = Open("List", 1);
  EXPECT_EQ(section.Integer("A", 1), 12);
  EXPECT_EQ(section.Integer("B", 1), 0);
  EXPECT_EQ(section.Integer("D", 1), -3);
  EXPECT_EQ(section.Integer("E", 1), 1);
}

std::string ListOf(int count) {
  std::string text = "[List1]\r\n";
  for (int i = 1; i <= count; ++i) {
    text += "A:" + std::to_string(i) + "=x\r\n";
  }
  return text;
}

TEST_F(SelectionSectionOf, AListMayHave32767Items) {
  export_.Select(ListOf(32767));
  int items = 0;
  Open("List", 1).ForEach("A:", "lines", [&](std::int16_t, const std::string&) { ++items; });
  EXPECT_EQ(items, 32767);
}

TEST_F(SelectionSectionOf, The32768thItemRaisesOverflow) {
  export_.Select(ListOf(32768));
  int items = 0;
  EXPECT_EQ(
      RaisedBy([&] { Open("List", 1).ForEach("A:", "lines", [&](std::int16_t, const std::string&) { ++items; }); }),
      RuntimeError::Overflow);
  EXPECT_EQ(items, 32767);
}

TEST_F(SelectionSectionOf, ALongListLooksAtItsFileOnce) {
  export_.Select(ListOf(500));
  List("A:");
  EXPECT_EQ(export_.profile.opened, 1);
  EXPECT_EQ(export_.profile.read, 501);
}

}  // namespace
}  // namespace parvex::test
