#include "protocol/command_document.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "seams/automation_error.h"
#include "tests/support/raised_by.h"

namespace parvex {
namespace {

using test::RaisedBy;

// A command with one parameter "p" whose VALUE has this content.
xml::Document CommandWithValue(const std::string& content) {
  return xml::Document::Parse("<COMMAND><NAME>c</NAME><PARAMETER><NAME>p</NAME><VALUE>" + content +
                              "</VALUE></PARAMETER></COMMAND>");
}

constexpr auto kObjectNotSet = static_cast<std::uint16_t>(RuntimeError::ObjectNotSet);

TEST(GetCommandName, ReadsTheNameOfTheRootCommand) {
  EXPECT_EQ(GetCommandName(xml::Document::Parse("<COMMAND><NAME>getProjectList</NAME></COMMAND>")), "getProjectList");
}

TEST(GetCommandName, FindsACommandAtAnyDepth) {
  const auto command = xml::Document::Parse("<ENVELOPE><BODY><COMMAND><NAME>x</NAME></COMMAND></BODY></ENVELOPE>");
  EXPECT_EQ(GetCommandName(command), "x");
}

TEST(GetCommandName, ReadsTheFirstOfSeveralCommands) {
  const auto command =
      xml::Document::Parse("<A><COMMAND><NAME>first</NAME></COMMAND><COMMAND><NAME>second</NAME></COMMAND></A>");
  EXPECT_EQ(GetCommandName(command), "first");
}

TEST(GetCommandName, IsEmptyForAnEmptyName) {
  EXPECT_EQ(GetCommandName(xml::Document::Parse("<COMMAND><NAME/></COMMAND>")), "");
}

TEST(GetCommandName, DoesNotTakeTheNameOfAParameter) {
  const auto command = xml::Document::Parse("<COMMAND><PARAMETER><NAME>p</NAME></PARAMETER></COMMAND>");
  EXPECT_EQ(RaisedBy([&] { GetCommandName(command); }), kObjectNotSet);
}

TEST(GetCommandName, IsAnErrorWithoutNameInAnEmptyDocumentAndWithoutDocument) {
  for (const xml::Document& command :
       {xml::Document::Parse("<COMMAND/>"), xml::Document::Parse("<command><NAME>x</NAME></command>"),
        xml::Document::Parse("<COMMAND><NAME>x</NAME>"), xml::Document::New(), xml::Document()}) {
    EXPECT_EQ(RaisedBy([&] { GetCommandName(command); }), kObjectNotSet);
  }
}

TEST(GetCommandName, TellsWhyATextDidNotParse) {
  try {
    GetCommandName(xml::Document::Parse("<COMMAND><NAME>a & b</NAME></COMMAND>"));
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_GT(error.Description().size(), std::string("the command document has no COMMAND/NAME: ").size());
  }
}

struct ValueCase {
  const char* what;
  const char* content;
  const char* value;
};

class ParameterValue : public testing::TestWithParam<ValueCase> {};

TEST_P(ParameterValue, IsFoundAndRead) {
  std::string value = "left over";
  EXPECT_TRUE(GetParamValue(CommandWithValue(GetParam().content), "p", value));
  EXPECT_EQ(GetParam().value, value);
  EXPECT_EQ(GetParam().value, GetParamFromCmdDoc(CommandWithValue(GetParam().content), "p"));
}

INSTANTIATE_TEST_SUITE_P(Shapes, ParameterValue,
                         testing::Values(ValueCase{"PlainText", "abc", "abc"},
                                         ValueCase{"TextIsTrimmed", "  a  b ", "a  b"}, ValueCase{"Empty", "", ""},
                                         ValueCase{"OneElementWithContent", "<A x=\"1\">t</A>", "<A x=\"1\">t</A>"},
                                         ValueCase{"OneElementBetweenBlanks", "  <A>t</A>  ", "<A>t</A>"},
                                         ValueCase{"NestedElements", "<A><B>1</B><C/></A>", "<A><B>1</B><C/></A>"},
                                         ValueCase{"FirstOfTwoElementsOnly", "<A>1</A><B>2</B>", "<A>1</A>"},
                                         ValueCase{"TextBehindAnElementIsIgnored", "<A>1</A>tail", "<A>1</A>"},
                                         ValueCase{"TextBeforeAnElementMakesItAllText", "head<A>1</A>", "head1"},
                                         ValueCase{"EmptyElementIsTheTextOfTheValue", "<A/>", ""},
                                         ValueCase{"EmptyElementBeforeOneWithContent", "<A/><B>2</B>", "2"},
                                         ValueCase{"CData", "<![CDATA[<raw>&]]>", "<raw>&"},
                                         ValueCase{"EscapedMarkupStaysText", "&lt;A&gt;1&lt;/A&gt;", "<A>1</A>"},
                                         ValueCase{"BeyondAscii", "Kühlgerät €", "Kühlgerät €"}),
                         [](const auto& info) { return info.param.what; });

TEST(GetParamValue, ReadsTheFirstOfDuplicateParameters) {
  const auto command = xml::Document::Parse(
      "<COMMAND><NAME>c</NAME><PARAMETER><NAME>p</NAME><VALUE>1</VALUE></PARAMETER>"
      "<PARAMETER><NAME>p</NAME><VALUE>2</VALUE></PARAMETER></COMMAND>");
  EXPECT_EQ(GetParamFromCmdDoc(command, "p"), "1");
}

TEST(GetParamValue, ComparesNamesWithLetterCase) {
  const auto command =
      xml::Document::Parse("<COMMAND><PARAMETER><NAME>projectName</NAME><VALUE>x</VALUE></PARAMETER></COMMAND>");
  std::string value = "left over";
  EXPECT_FALSE(GetParamValue(command, "projectname", value));
  EXPECT_EQ(value, "");
}

TEST(GetParamValue, FindsNothingForANameWithAnApostrophe) {
  const auto command =
      xml::Document::Parse("<COMMAND><PARAMETER><NAME>it's</NAME><VALUE>x</VALUE></PARAMETER></COMMAND>");
  // The second name would, as part of an expression, select every parameter.
  for (const char* name : {"it's", "x' or '1'='1", "'"}) {
    std::string value = "left over";
    EXPECT_FALSE(GetParamValue(command, name, value)) << name;
    EXPECT_EQ(value, "");
    EXPECT_EQ(GetParamFromCmdDoc(command, name), "");
    EXPECT_FALSE(SetParamValue(command, name, "changed"));
  }
  EXPECT_EQ(command.First("//VALUE").Text(), "x");
}

TEST(GetParamValue, TakesNamesWithOtherSpecialCharactersAsTheyStand) {
  const auto command =
      xml::Document::Parse("<COMMAND><PARAMETER><NAME>a\"]|//b</NAME><VALUE>x</VALUE></PARAMETER></COMMAND>");
  EXPECT_EQ(GetParamFromCmdDoc(command, "a\"]|//b"), "x");
}

TEST(GetParamValue, FindsNothingForANameThatIsNoText) {
  std::string value;
  EXPECT_FALSE(GetParamValue(CommandWithValue("x"), "\xFF\xFE", value));
  EXPECT_FALSE(GetParamValue(CommandWithValue("x"), std::string_view("p\0q", 3), value));
}

TEST(GetParamValue, FindsNothingWithoutValueElementAndWithoutDocument) {
  std::string value = "left over";
  EXPECT_FALSE(
      GetParamValue(xml::Document::Parse("<COMMAND><PARAMETER><NAME>p</NAME></PARAMETER></COMMAND>"), "p", value));
  EXPECT_FALSE(GetParamValue(xml::Document(), "p", value));
  EXPECT_FALSE(GetParamValue(xml::Document::New(), "p", value));
  EXPECT_EQ(value, "");
  EXPECT_EQ(GetParamFromCmdDoc(xml::Document(), "p"), "");
}

TEST(SetParamValue, ReplacesTheValueByText) {
  const auto command = CommandWithValue("<A><B>1</B></A>");
  EXPECT_TRUE(SetParamValue(command, "p", "a < b"));
  EXPECT_EQ(command.First("//VALUE").Xml(), "<VALUE>a &lt; b</VALUE>");
}

TEST(SetParamValue, SetsTheFirstOfDuplicatesOnly) {
  const auto command = xml::Document::Parse(
      "<COMMAND><PARAMETER><NAME>p</NAME><VALUE>1</VALUE></PARAMETER>"
      "<PARAMETER><NAME>p</NAME><VALUE>2</VALUE></PARAMETER></COMMAND>");
  EXPECT_TRUE(SetParamValue(command, "p", "x"));
  EXPECT_EQ(command.All("//VALUE")[0].Text(), "x");
  EXPECT_EQ(command.All("//VALUE")[1].Text(), "2");
}

TEST(SetParamValue, IsFalseForAMissingParameterAndWithoutDocument) {
  EXPECT_FALSE(SetParamValue(CommandWithValue("x"), "q", "y"));
  EXPECT_FALSE(SetParamValue(xml::Document(), "p", "y"));
}

TEST(MakeParameterElement, HoldsNameThenValue) {
  EXPECT_EQ(MakeParameterElement(xml::Document::New(), "a&b", "<c>").Xml(),
            "<PARAMETER><NAME>a&amp;b</NAME><VALUE>&lt;c&gt;</VALUE></PARAMETER>");
  EXPECT_EQ(MakeParameterElement(xml::Document::New(), "a", "").Xml(), "<PARAMETER><NAME>a</NAME><VALUE/></PARAMETER>");
}

TEST(AddParameter, AppendsBehindTheFrontEndsOwnParameters) {
  const auto command = CommandWithValue("1");
  SetCommandName(command, "getProjectEx");
  AddParameter(command, "pdsg", kLegacyPdsg);
  AddParameter(command, "path", "C:\\x");
  EXPECT_EQ(command.Root().Xml(),
            "<COMMAND><NAME>getProjectEx</NAME><PARAMETER><NAME>p</NAME><VALUE>1</VALUE></PARAMETER>"
            "<PARAMETER><NAME>pdsg</NAME><VALUE>KDQ47</VALUE></PARAMETER>"
            "<PARAMETER><NAME>path</NAME><VALUE>C:\\x</VALUE></PARAMETER></COMMAND>");
  EXPECT_EQ(GetParamFromCmdDoc(command, "pdsg"), "KDQ47");
}

TEST(AddParameter, AppendsToTheRootWhateverItIsSoThatLookUpsMissIt) {
  const auto command = xml::Document::Parse("<ENVELOPE><COMMAND><NAME>c</NAME></COMMAND></ENVELOPE>");
  AddParameter(command, "p", "1");
  EXPECT_EQ(command.Root().FirstChild().NextSibling().Name(), "PARAMETER");
  EXPECT_EQ(GetParamFromCmdDoc(command, "p"), "");
}

TEST(AddParameter, IsAnErrorForAnEmptyDocumentAndWithoutDocument) {
  EXPECT_EQ(RaisedBy([] { AddParameter(xml::Document::New(), "p", "1"); }), kObjectNotSet);
  EXPECT_EQ(RaisedBy([] { AddParameter(xml::Document(), "p", "1"); }), kObjectNotSet);
}

TEST(SetCommandName, IsAnErrorWithoutName) {
  EXPECT_EQ(RaisedBy([] { SetCommandName(xml::Document::Parse("<COMMAND/>"), "x"); }), kObjectNotSet);
}

}  // namespace
}  // namespace parvex
