#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;
using SortedJson = nlohmann::json;

struct LintCase {
  const char* name;
  std::string document;
  std::vector<std::string> found;  ///< "line:column kind", in order
  std::vector<std::string> options = {};
};

const std::string kAdd = "<COMMAND>\n  <NAME>addProject</NAME>\n";
std::string Parameter(const std::string& name, const std::string& value) {
  return "  <PARAMETER><NAME>" + name + "</NAME><VALUE>" + value + "</VALUE></PARAMETER>\n";
}

const LintCase kLintCases[] = {
    {"NothingWrong", kAdd + Parameter("projectName", "A") + "</COMMAND>", {}},
    {"ParametersThatAreForwarded", kAdd + Parameter("projectName", "A") + Parameter("Anything", "") + "</COMMAND>", {}},
    {"NoXml", "<COMMAND>\n <NAME>addProject</NAM></COMMAND>", {"2:24 not-xml"}},
    {"NothingAtAll", "", {"1:1 not-xml"}},
    {"NoCommand", "<A/>", {"1:1 no-command"}},
    {"NoName", "<A><COMMAND/></A>", {"1:4 no-command"}},
    {"CommandInLowerCase", "<command><NAME>addProject</NAME></command>", {"1:1 letter-case"}},
    {"NameInLowerCase", "<COMMAND><Name>addProject</Name></COMMAND>", {"1:10 letter-case"}},
    {"UnknownCommand", "<COMMAND>\n<NAME>addProjct</NAME></COMMAND>", {"2:1 unknown-command"}},
    {"CommandOfWrongLetterCase",
     "<COMMAND><NAME>AddProject</NAME>" + Parameter("projectName", "A") + "</COMMAND>",
     {"1:10 letter-case"}},
    {"MissingParameter", kAdd + "</COMMAND>", {"1:1 missing-parameter"}},
    {"EmptyNeededValue", kAdd + Parameter("projectName", " ") + "</COMMAND>", {"3:38 empty-value"}},
    {"ParameterOfWrongLetterCase", kAdd + Parameter("ProjectName", "A") + "</COMMAND>", {"3:14 letter-case"}},
    {"MisspeltParameter", kAdd + Parameter("projctName", "A") + "</COMMAND>", {"3:14 unknown-parameter"}},
    {"ParameterThatNobodyReads",
     "<COMMAND><NAME>getProjectList</NAME>\n" + Parameter("a", "b") + "</COMMAND>",
     {"2:14 unknown-parameter"}},
    {"ParameterTwice",
     kAdd + Parameter("projectName", "A") + Parameter("projectName", "B") + "</COMMAND>",
     {"4:14 repeated-parameter"}},
    {"ParameterWithoutName", kAdd + Parameter("projectName", "A") + "<PARAMETER/></COMMAND>", {"4:1 no-name"}},
    {"ParameterWithoutValue", kAdd + "<PARAMETER><NAME>projectName</NAME></PARAMETER></COMMAND>", {"3:1 no-value"}},
    {"ParameterElementInLowerCase",
     kAdd + "<parameter><NAME>projectName</NAME><VALUE>A</VALUE></parameter></COMMAND>",
     {"1:1 missing-parameter", "3:1 letter-case"}},
    {"WrappedParameters",
     kAdd + "<PARAMETERS>" + Parameter("projectName", "A") + "</PARAMETERS></COMMAND>",
     {"1:1 missing-parameter", "3:1 unknown-element"}},
    {"WrongEntryPoint", ExportCommand("P"), {"1:10 wrong-entry-point"}, {"--through", "pull"}},
    {"RightEntryPoint", ExportCommand("P"), {}, {"--through", "pull-ngorla"}},
    {"PullsCommandThroughPullNgorla",
     kAdd + Parameter("projectName", "A") + "</COMMAND>",
     {"2:3 wrong-entry-point"},
     {"--through", "pull-ngorla"}},
    {"NoSelection", "<COMMAND><NAME>getHybrisXMLNoUI</NAME></COMMAND>", {"1:1 missing-element"}},
    {"TagEntryWithoutDatatype",
     "<COMMAND><NAME>getTags</NAME>" + Parameter("projectName", "A") +
         "<X>\n<TAG><NAME>a</NAME><PDSG>b</PDSG><DataType/></TAG></X></COMMAND>",
     {"3:34 letter-case"}},
    {"TagEntriesInAParameterOfAnyName",
     "<COMMAND><NAME>getTags</NAME>" + Parameter("projectName", "A") +
         Parameter("x", "<TAG><NAME>a</NAME><PDSG>b</PDSG><DATATYPE/></TAG>") + "</COMMAND>",
     {}},
    {"ReturnedTagWithoutStoredData",
     "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG/>"
     "</ATTRIBUTES_LIST></TAG></TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>",
     {"1:76 missing-element"}},
    {"EquipmentScheduleNamedOnce",
     "<COMMAND><NAME>getReport</NAME>\n" + Parameter("projectName", "A") +
         Parameter("reportName", "EquipmentSchedule") + "<TAG><NAME>a</NAME><PDSG>b</PDSG><DATATYPE/></TAG></COMMAND>",
     {"1:1 missing-element"}},
    {"EquipmentScheduleNamedTwice",
     "<COMMAND><NAME>getReport</NAME>\n" + Parameter("projectName", "A") +
         Parameter("reportName", "EquipmentSchedule") +
         "<TAG><NAME>a</NAME><PDSG>b</PDSG><DATATYPE/></TAG>"
         "<command><Report><Name>EquipmentSchedule</Name></Report></command></COMMAND>",
     {}},
    {"WhatIsInCommentsAndCData",
     "<?xml version=\"1.0\"?>\n<!-- <COMMAND> -->\n" + kAdd + Parameter("projectName", "<![CDATA[<A>]]>") +
         "</COMMAND>",
     {}},
    {"NameByCharacterReferences", kAdd + Parameter("&#112;rojectName", "A &amp; B") + "</COMMAND>", {}},
};

class LintOf : public testing::TestWithParam<LintCase> {};

TEST_P(LintOf, FindsWhatIsWrongAndWhere) {
  const LintCase& one = GetParam();
  std::vector<std::string> arguments = {"lint", "--json", "-"};
  arguments.insert(arguments.end(), one.options.begin(), one.options.end());
  const Outcome outcome = RunParvex(arguments, {.input = one.document});
  EXPECT_EQ(outcome.status, one.found.empty() ? 0 : 1) << outcome.out << outcome.err;
  std::vector<std::string> found;
  const SortedJson told = SortedJson::parse(outcome.out);
  for (const SortedJson& finding : told["findings"]) {
    found.push_back(std::to_string(finding["line"].get<int>()) + ":" + std::to_string(finding["column"].get<int>()) +
                    " " + finding["kind"].get<std::string>());
  }
  EXPECT_EQ(found, one.found) << outcome.out;
}

INSTANTIATE_TEST_SUITE_P(Documents, LintOf, testing::ValuesIn(kLintCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Lint, TellsPeopleWithFileLineAndColumn) {
  const CliMachine machine;
  const std::string good = machine.Write("good.xml", kAdd + Parameter("projectName", "A") + "</COMMAND>");
  EXPECT_EQ(RunParvex({"lint", good}).out, good + ": nothing is wrong; addProject is served by Pull (parvex pull)\n");
  const std::string bad = machine.Write("bad.xml", kAdd + Parameter("projctName", "\x1b") + "</COMMAND>");
  EXPECT_THAT(RunParvex({"lint", bad}).out, HasSubstr("bad.xml:3:44: no XML document: "));
  const std::string misspelt = machine.Write("misspelt.xml", "<COMMAND><NAME>addProjct</NAME></COMMAND>");
  EXPECT_EQ(RunParvex({"lint", misspelt}).out,
            misspelt + ":1:10: there is no command \"addProjct\"; did you mean \"addProject\"?\n");
}

TEST(Lint, OfAFileThatCannotBeReadIsWrongUsage) {
  EXPECT_EQ(RunParvex({"lint", "nowhere.xml"}).status, 2);
  EXPECT_EQ(RunParvex({"lint", "-", "--through", "Pull"}).status, 2);
}

TEST(Lint, ReadsTextOfTwoBytesACharacter) {
  std::string bytes;
  for (const char c :
       "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + kAdd + Parameter("projctName", "A") + "</COMMAND>") {
    bytes += {c, '\0'};
  }
  for (const char* mark : {"\xFF\xFE", ""}) {
    EXPECT_THAT(RunParvex({"lint", "-"}, {.input = mark + bytes}).out, HasSubstr("-:3:14: ")) << mark;
  }
}

TEST(Lint, TellsOfManyThingsInTheOrderOfTheText) {
  std::string document = kAdd;
  constexpr int kMany = 20'000;
  for (int i = 0; i < kMany; ++i) {
    document += "<PARAMETER/>\n";
  }
  const SortedJson told = SortedJson::parse(RunParvex({"lint", "--json", "-"}, {.input = document + "</COMMAND>"}).out);
  ASSERT_EQ(told["findings"].size(), static_cast<std::size_t>(kMany) + 1);
  EXPECT_EQ(told["findings"][0]["line"], 1) << "the command lacks a parameter";
  EXPECT_EQ(told["findings"][kMany]["line"], kMany + 2);
}

TEST(Lint, FindsNothingInTheCommandsOfTheSampleMachine) {
  const CliMachine machine;
  ASSERT_EQ(RunParvex({"machine", "create", machine.Path("sample")}).status, 0);
  std::size_t count = 0;
  for (const auto& file : std::filesystem::directory_iterator(machine.Path("sample/commands"))) {
    EXPECT_EQ(RunParvex({"lint", file.path().string()}).status, 0) << RunParvex({"lint", file.path().string()}).out;
    ++count;
  }
  EXPECT_GT(count, 20u);
}

}  // namespace
}  // namespace parvex::test
