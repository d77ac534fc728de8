#include <gtest/gtest.h>

#include "interface/command_table.h"
#include "tests/cli/program.h"
#include "version.h"

namespace parvex::test {
namespace {

void ExpectWrongUsage(const Outcome& outcome, const std::string& named) {
  EXPECT_EQ(outcome.status, 2) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
}

TEST(Usage, VersionIsPrinted) {
  const Outcome outcome = RunParvex({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "parvex " PARVEX_VERSION "\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(Usage, HelpIsPrintedForTheProgramAndEachCommand) {
  const std::vector<std::vector<std::string>> commands = {{"--help"},
                                                          {"pull", "--help"},
                                                          {"pull-ngorla", "--help"},
                                                          {"base64", "--help"},
                                                          {"base64", "encode", "--help"},
                                                          {"machine", "create", "--help"},
                                                          {"commands", "--help"}};
  for (const auto& arguments : commands) {
    const Outcome outcome = RunParvex(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments.front();
    EXPECT_NE(outcome.out.find("Usage:"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.err, "");
  }
}

TEST(Usage, HelpNamesTheOptionsAndTheExitStatus) {
  const std::string help = RunParvex({"--help"}).out;
  for (const char* word : {"--machine", "PARVEX_MACHINE", "--journal", "--replay", "pull", "pull-ngorla", "base64",
                           "machine", "commands", "Exit status"}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
}

TEST(Usage, WrongCommandLinesExitWith2) {
  const std::vector<std::vector<std::string>> commandLines = {{},
                                                              {"nonsense"},
                                                              {"Pull", "x.xml"},
                                                              {"--nonsense"},
                                                              {"pull"},
                                                              {"pull-ngorla"},
                                                              {"pull", "--nonsense", "x.xml"},
                                                              {"--machine"},
                                                              {"--machine", "a", "--machine", "b", "pull", "x.xml"},
                                                              {"--journal"},
                                                              {"base64"},
                                                              {"base64", "nonsense"},
                                                              {"base64", "encode", "a", "b"},
                                                              {"machine"},
                                                              {"machine", "create"},
                                                              {"machine", "create", "a", "b"},
                                                              {"commands", "x"},
                                                              {"pull", "x.xml", "pull-ngorla", "x.xml"}};
  for (const auto& arguments : commandLines) {
    const Outcome outcome = RunParvex(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments) << outcome.err;
    EXPECT_EQ(outcome.out, "") << testing::PrintToString(arguments);
    EXPECT_NE(outcome.err, "") << testing::PrintToString(arguments);
  }
}

TEST(Usage, CommandsListsBothTablesWithTheirSummaries) {
  const Outcome outcome = RunParvex({"commands"});
  EXPECT_EQ(outcome.status, 0);
  const std::size_t second = outcome.out.find("pull-ngorla (PullNGORLA)");
  ASSERT_NE(second, std::string::npos);
  EXPECT_EQ(outcome.out.find("pull (Pull)"), 0u);
  std::size_t at = 0;
  for (const CommandEntry& command : PullCommands()) {
    at = outcome.out.find("\n  " + std::string(command.name) + " ", at);
    ASSERT_LT(at, second) << command.name;
    EXPECT_NE(outcome.out.find(command.summary, at), std::string::npos) << command.name;
  }
  at = second;
  for (const CommandEntry& command : PullNgorlaCommands()) {
    at = outcome.out.find("\n  " + std::string(command.name) + " ", at);
    ASSERT_NE(at, std::string::npos) << command.name;
    EXPECT_NE(outcome.out.find(command.summary, at), std::string::npos) << command.name;
  }
}

TEST(MachineOption, IsNeededByPullAndPullNgorla) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  ExpectWrongUsage(RunParvex({"pull", file}), "PARVEX_MACHINE");
  ExpectWrongUsage(RunParvex({"pull-ngorla", file}), "PARVEX_MACHINE");
  ExpectWrongUsage(RunParvex({"--machine", "", "pull", file}), "PARVEX_MACHINE");
  ExpectWrongUsage(RunParvex({"pull", file}, {.environment = {{"PARVEX_MACHINE", ""}}}), "PARVEX_MACHINE");
}

TEST(MachineOption, IsTakenFromTheEnvironmentWhenItIsNotGiven) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  EXPECT_EQ(RunParvex({"pull", file}, {.environment = {{"PARVEX_MACHINE", machine.Folder()}}}).status, 1);
  const Surroundings elsewhere = {.environment = {{"PARVEX_MACHINE", machine.Path("no such folder")}}};
  EXPECT_EQ(machine.Run({"pull", file}, elsewhere).status, 1) << "the option counts before the environment";
  ExpectWrongUsage(RunParvex({"pull", file}, elsewhere), "no such folder");
}

TEST(MachineOption, IsUnderstoodBehindTheCommandToo) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  EXPECT_EQ(RunParvex({"pull", "--machine", machine.Folder(), file}).status, 1);
}

TEST(MachineOption, TakesAFolderRelativeToTheCurrentOne) {
  CliMachine machine;
  machine.Write("c.xml", ExportCommand());
  machine.SetWorkflow("");
  const Outcome outcome = RunParvex({"--machine", "machine", "pull-ngorla", "c.xml"}, {.folder = machine.Path("")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(machine.WorkflowRan());
}

TEST(MachineOption, OfAFolderThatDoesNotExistOrIsAFileIsWrongUsage) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  ExpectWrongUsage(RunParvex({"--machine", machine.Path("nowhere"), "pull", file}), "nowhere");
  ExpectWrongUsage(RunParvex({"--machine", file, "pull", file}), "c.xml");
}

TEST(MachineOption, OfAMachineWithSettingsThatNobodyUnderstandsIsWrongUsage) {
  CliMachine machine;
  machine.Write("machine/standin.json", "{\"workflow\":");
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  ExpectWrongUsage(machine.Run({"pull", file}), "standin.json");
}

TEST(Files, AreAllReadBeforeAnyIsSent) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string good = machine.Write("good.xml", ExportCommand());
  ExpectWrongUsage(machine.Run({"pull-ngorla", good, machine.Path("missing.xml")}), "missing.xml");
  ExpectWrongUsage(machine.Run({"pull-ngorla", good, machine.Folder()}), "machine");
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(Journal, ThatCannotBeWrittenIsWrongUsageAndNothingIsSent) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string file = machine.Write("c.xml", ExportCommand());
  ExpectWrongUsage(machine.Run({"--journal", machine.Path("nowhere/j"), "pull-ngorla", file}), "nowhere/j");
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(Journal, OfAnEarlierRunOutlivesWrongUsage) {
  CliMachine machine;
  const std::string journal = machine.Write("j", "earlier");
  ExpectWrongUsage(machine.Run({"--journal", journal, "pull", machine.Path("missing.xml")}), "missing.xml");
  EXPECT_EQ(machine.Read("j"), "earlier");
}

TEST(Journal, ThatIsNotWrittenCompletelyIsAFailure) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string file = machine.Write("c.xml", ExportCommand());
  const Outcome outcome = machine.Run({"--journal", "/dev/full", "pull-ngorla", file});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("/dev/full"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.out, "");
}

TEST(ReplayFile, ThatCannotBeReadIsWrongUsageAndNothingIsSent) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string file = machine.Write("c.xml", ExportCommand());
  ExpectWrongUsage(machine.Run({"--replay", machine.Path("nowhere"), "pull-ngorla", file}), "nowhere");
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(ReplayFile, WithAMalformedLineIsWrongUsageThatNamesTheLineAndNothingIsSent) {
  CliMachine machine;
  machine.SetWorkflow("");
  const std::string file = machine.Write("c.xml", ExportCommand());
  const std::string replay = machine.Write("r.jsonl", "{\"kind\":\"router\"}\n{\"kind\":\n");
  ExpectWrongUsage(machine.Run({"--replay", replay, "pull-ngorla", file}), "r.jsonl line 2");
  EXPECT_FALSE(machine.WorkflowRan());
}

TEST(ReplayFile, WithLinesThatNobodyAskedForIsToldOfAndChangesNoStatus) {
  const CliMachine machine;
  const std::string line = "{\"kind\":\"router\",\"answer\":\"<L/>\"}\n";
  const std::string list = machine.Write("list.xml", CommandText("getProjectList"));
  const std::string all = machine.Write("all.jsonl", line);
  EXPECT_EQ(machine.Run({"--replay", all, "pull", list}).err, "");
  const std::string more = machine.Write(
      "more.jsonl", line + "{\"kind\":\"note\"}\n" + "{\"kind\":\"router\",\"request\":\"<A>\\u001b\"}\n" + line);
  const Outcome outcome = machine.Run({"--replay", more, "pull", list});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "parvex: nobody asked for 2 router lines of " + more + ". The first is line 3: <A>\uFFFD\n");
}

TEST(ReplayFile, WithUnusedLinesIsToldOfAlsoWhenTheCallFails) {
  const CliMachine machine;
  const std::string replay = machine.Write("r.jsonl", "{\"kind\":\"router\"}\n");
  const Outcome outcome =
      machine.Run({"--replay", replay, "return", machine.Write("none.xml", "<PROJECT><TAGS><TAG/></TAGS></PROJECT>")});
  EXPECT_NE(outcome.err.find("nobody asked for 1 router line of " + replay + ". The first is line 1: any request\n"),
            std::string::npos)
      << outcome.err;
}

TEST(StandardOutput, ThatCannotBeWrittenIsAFailure) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  for (const char* output : {"/dev/full", "-", "|"}) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"pull", file}, {"base64", "encode", file}, {"commands"}, {"--version"}, {"--help"}}) {
      const Outcome outcome = machine.Run(arguments, {.outputFile = output});
      EXPECT_EQ(outcome.status, 3) << output << testing::PrintToString(arguments);
      EXPECT_NE(outcome.err.find("standard output"), std::string::npos) << outcome.err;
    }
  }
}

TEST(StandardOutput, ThatIsClosedDoesNotEndUpInTheJournal) {
  CliMachine machine;
  const std::string file = machine.Write("c.xml", CommandText("noSuchCommand"));
  machine.Run({"--journal", machine.Path("j"), "pull", file}, {.outputFile = "-"});
  EXPECT_EQ(machine.Read("j"), "");
}

}  // namespace
}  // namespace parvex::test
