#include "seams/processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kMinimised = 6;

class ProcessesContract : public testing::Test {
 protected:
  ContractMachine machine;

  std::uint32_t Run(const std::string& commandLine) {
    return WaitForExit(*machine.processes.Start(commandLine, kMinimised));
  }
  int StartError(const std::string& commandLine) {
    return RaisedBy([&] { machine.processes.Start(commandLine, kMinimised); });
  }
};

TEST_F(ProcessesContract, GivesTheProgramsExitCode) {
  machine.InstallProbe(machine.Path("probe.exe"));
  EXPECT_EQ(Run(machine.Path("probe.exe")), 0u);
  EXPECT_EQ(Run(machine.Path("probe.exe") + " exit=1"), 1u);
  EXPECT_EQ(Run(machine.Path("probe.exe") + " exit=255"), 255u);
}

TEST_F(ProcessesContract, IsStillActiveUntilItEnds) {
  machine.InstallProbe(machine.Path("probe.exe"));
  const std::string hold = machine.Path(ContractMachine::kProbeHold);
  machine.files.CreateNew(hold, "");
  const std::unique_ptr<Process> process = machine.processes.Start(machine.Path("probe.exe") + " exit=7", kMinimised);
  EXPECT_EQ(process->ExitCode(), kStillActive);
  machine.files.Remove(hold);
  EXPECT_EQ(WaitForExit(*process), 7u);
  EXPECT_EQ(process->ExitCode(), 7u);
}

TEST_F(ProcessesContract, EveryWindowStyleStarts) {
  machine.InstallProbe(machine.Path("probe.exe"));
  for (int style = 0; style <= 6; ++style) {
    EXPECT_EQ(WaitForExit(*machine.processes.Start(machine.Path("probe.exe"), style)), 0u) << style;
  }
}

TEST_F(ProcessesContract, LetterCaseOfTheProgramDoesNotMatter) {
  machine.InstallProbe(machine.Path("Probe.exe"));
  EXPECT_EQ(Run(machine.Path("PROBE.EXE") + " exit=3"), 3u);
}

TEST_F(ProcessesContract, HandsArgumentsOver) {
  machine.InstallProbe(machine.Path("probe.exe"));
  Run(machine.Path("probe.exe") + " /OrlaImportNoUI  \"two words\" a\\b \"q\\\"uote\" \"end\\\\\" \"\" Größe");
  EXPECT_THAT(machine.ProbeArguments(),
              ElementsAre("/OrlaImportNoUI", "two words", "a\\b", "q\"uote", "end\\", "", "Größe"));
}

TEST_F(ProcessesContract, AProgramThatIsNamedIsStartedAndNoneThatTheLineCouldMean) {
  machine.files.CreateFolder(machine.Path("two words"));
  const std::string program = machine.Path("two words\\\\probe.exe");
  machine.InstallProbe(machine.Path("two words\\probe.exe"));
  machine.InstallProbe(machine.Path("two.exe"));
  machine.files.Replace(machine.Path("two"), "planted");
  EXPECT_EQ(WaitForExit(*machine.processes.Start(program + " exit=4 b", kMinimised, program)), 4u);
  EXPECT_THAT(machine.ProbeArguments(), ElementsAre("exit=4", "b"));
  machine.files.Remove(machine.Path("two words\\probe.exe"));
  EXPECT_EQ(RaisedBy([&] { machine.processes.Start(program + " exit=4", kMinimised, program); }), 53);
}

TEST_F(ProcessesContract, AQuotedProgramMayHoldBlanks) {
  machine.files.CreateFolder(machine.Path("two words"));
  machine.InstallProbe(machine.Path("two words\\probe.exe"));
  EXPECT_EQ(Run("\"" + machine.Path("two words\\probe.exe") + "\" exit=4"), 4u);
  EXPECT_THAT(machine.ProbeArguments(), ElementsAre("exit=4"));
}

TEST_F(ProcessesContract, AnUnquotedProgramWithBlanksIsFound) {
  machine.files.CreateFolder(machine.Path("two words"));
  machine.InstallProbe(machine.Path("two words\\probe.exe"));
  EXPECT_EQ(Run(machine.Path("two words\\probe.exe") + " exit=5"), 5u);
}

TEST_F(ProcessesContract, TheShortestReadingOfAnUnquotedProgramWins) {
  machine.files.CreateFolder(machine.Path("two words"));
  machine.InstallProbe(machine.Path("two.exe"));
  machine.files.Replace(machine.Path("two words\\probe.exe"), "not a program");
  EXPECT_EQ(Run(machine.Path("two words\\probe.exe")), 0u);
}

TEST_F(ProcessesContract, AFolderThatReadsAsTheProgramIsPassedOver) {
  machine.files.CreateFolder(machine.Path("two"));
  machine.InstallProbe(machine.Path("two words.exe"));
  EXPECT_EQ(Run(machine.Path("two words.exe") + " exit=6"), 6u);
}

TEST_F(ProcessesContract, ExeIsAddedToANameWithoutExtension) {
  machine.InstallProbe(machine.Path("probe.exe"));
  EXPECT_EQ(Run(machine.Path("probe") + " exit=8"), 8u);
  EXPECT_EQ(Run("\"" + machine.Path("probe") + "\" exit=9"), 9u);
}

TEST_F(ProcessesContract, AMissingProgramIsFileNotFoundAndNamed) {
  const std::string missing = machine.Path("no.exe");
  for (const std::string& line : {missing, missing + " /a", "\"" + missing}) {
    EXPECT_EQ(StartError(line), 53) << line;
    EXPECT_EQ(ErrorIn([&] { machine.processes.Start(line, kMinimised); }),
              "53 cannot start \"" + line + "\": the program does not exist");
    try {
      machine.processes.Start(line, kMinimised);
    } catch (const AutomationError& error) {
      EXPECT_THAT(error.Description(), HasSubstr("no.exe"));
    }
  }
}

TEST_F(ProcessesContract, AFileThatIsNoProgramCannotBeStarted) {
  machine.files.Replace(machine.Path("text.exe"), "this is no program");
  EXPECT_EQ(StartError(machine.Path("text.exe")), 5);
  machine.files.Replace(machine.Path("empty.exe"), "");
  EXPECT_EQ(StartError(machine.Path("empty.exe")), 5);
  const std::string line = machine.Path("text.exe") + " /a";
  EXPECT_EQ(ErrorIn([&] { machine.processes.Start(line, kMinimised); }),
            "5 cannot start \"" + line + "\": it is no program that the system can run");
}

TEST_F(ProcessesContract, AFolderIsNoProgram) {
  machine.files.CreateFolder(machine.Path("folder.exe"));
  EXPECT_NE(StartError(machine.Path("folder.exe")), 0);
}

TEST_F(ProcessesContract, SeveralProgramsRunAtOnce) {
  machine.InstallProbe(machine.Path("probe.exe"));
  const auto first = machine.processes.Start(machine.Path("probe.exe") + " exit=1", kMinimised);
  const auto second = machine.processes.Start(machine.Path("probe.exe") + " exit=2", kMinimised);
  EXPECT_EQ(WaitForExit(*second), 2u);
  EXPECT_EQ(WaitForExit(*first), 1u);
}

}  // namespace
}  // namespace parvex::test
