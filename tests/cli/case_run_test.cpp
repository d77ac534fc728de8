#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "adapters/posix/native_system.h"
#include "interface/command_table.h"
#include "recording/recorded_case.h"
#include "tests/cli/program.h"

// Recorded calls of the sample machine, done again.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// A sample machine and a folder of cases.
class CaseRun : public testing::Test {
 protected:
  CaseRun() { EXPECT_EQ(RunParvex({"machine", "create", sample}).status, 0); }

  Outcome Record(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--machine", sample, "--record", cases});
    return RunParvex(arguments);
  }
  std::string Command(const std::string& name) const { return sample + "/commands/" + name + ".xml"; }

  std::vector<std::string> Cases() const {
    std::vector<std::string> paths;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(cases, none)) {
      paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }

  std::vector<std::string> Commands() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(sample + "/commands")) {
      names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string Write(const std::string& name, const std::string& text) const {
    WriteHostFile(folder.Path() / name, text);
    return (folder.Path() / name).string();
  }

  // A script instead of the workflow program; "-" takes it away.
  void SetWorkflow(const std::string& script) const {
    const std::filesystem::path program = std::filesystem::path(sample) / "drive_c/Korvane/TQ5-VX/Bin/kdwfm470.exe";
    std::filesystem::remove(program);
    if (script != "-") {
      WriteHostFile(program, "#!/bin/sh\n" + script + "\n");
      std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
  }

  // Kills the host, and the program that it waits for, once that hangs.
  void RecordAndKill(const std::string& command) const {
    std::vector<std::string> arguments = {PARVEX_PROGRAM, "--machine",   sample, "--record",
                                          cases,          "pull-ngorla", command};
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    posix_spawnattr_t group;
    posix_spawnattr_init(&group);
    posix_spawnattr_setflags(&group, POSIX_SPAWN_SETPGROUP);
    pid_t child = 0;
    ASSERT_EQ(posix_spawn(&child, PARVEX_PROGRAM, nullptr, &group, pointers.data(), environ), 0);
    posix_spawnattr_destroy(&group);
    while (!HasStarted()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(-child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  bool HasStarted() const {
    for (const std::string& path : Cases()) {
      if (ReadHostFile(path + "/journal.jsonl").find("\"started\":true") != std::string::npos) {
        return true;
      }
    }
    return false;
  }

  TemporaryFolder folder;
  const std::string sample = (folder.Path() / "sample").string();
  const std::string cases = (folder.Path() / "cases").string();
};

// The names of the commands that were recorded.
std::set<std::string> CommandsOf(const std::vector<std::string>& cases) {
  posix::NativeSystem system;
  std::set<std::string> names;
  for (const std::string& path : cases) {
    names.insert(recording::ReadCase(system, path).facts["command"].get<std::string>());
  }
  return names;
}

TEST_F(CaseRun, ReproducesEveryCommandOfBothTables) {
  std::vector<std::string> pull = {"pull", Write("set.xml", CommandText("setOptions", {{"cmbLanguage", "Deutsch"}}))};
  std::vector<std::string> ngorla = {"pull-ngorla", Command("getHybrisXML")};
  for (const std::string& name : Commands()) {
    (name.starts_with("getHybrisXMLNoUI") ? ngorla : pull).push_back(Command(name));
  }
  const std::string quote = (folder.Path() / "quote.xml").string();
  EXPECT_EQ(Record({"export", "--project", "Riverside Clinic", "-o", quote}).status, 0);
  EXPECT_EQ(Record({"return", quote, "--tag", "1"}).status, 0);
  EXPECT_EQ(Record(ngorla).status, 0);
  EXPECT_EQ(Record(pull).status, 0);
  std::set<std::string> all;
  for (const auto& table : {PullCommands(), PullNgorlaCommands()}) {
    for (const CommandEntry& entry : table) {
      all.insert(std::string(entry.name));
    }
  }
  EXPECT_EQ(CommandsOf(Cases()), all);
  const Outcome ran = RunParvex({"case", "run", cases});
  EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
  EXPECT_THAT(ran.out, EndsWith(std::to_string(pull.size() + ngorla.size()) + " reproduced, 0 not\n"));
}

// What goes wrong, and how.
struct Failure {
  const char* reason;
  const char* standin;   // settings of the substitute
  const char* workflow;  // a script instead of its workflow program; "-" for none
  const char* command;
  const char* outcome;
};

class FailedCaseRun : public CaseRun, public testing::WithParamInterface<Failure> {};

TEST_P(FailedCaseRun, IsReproduced) {
  const Failure& failure = GetParam();
  if (failure.standin != nullptr) {
    WriteHostFile(std::filesystem::path(sample) / "standin.json", failure.standin);
  }
  if (failure.workflow != nullptr) {
    SetWorkflow(failure.workflow);
  }
  const std::string name = failure.command;
  Record({name.starts_with("getHybrisXMLNoUI") ? "pull-ngorla" : "pull", Command(name)});
  const std::vector<std::string> recorded = Cases();
  ASSERT_EQ(recorded.size(), 1u);
  EXPECT_THAT(RunParvex({"case", "list", cases}).out, HasSubstr(failure.outcome));
  const Outcome ran = RunParvex({"case", "run", recorded[0]});
  EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
  EXPECT_THAT(ran.out, StartsWith("Reproduced: "));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, FailedCaseRun,
    testing::Values(
        Failure{"Cancelled", R"({"workflow":{"cancel":true}})", nullptr, "getHybrisXMLNoUI", "failure"},
        Failure{"MissingProgram", nullptr, "-", "getHybrisXMLNoUI", "reply"},
        Failure{"ProgramThatWritesNothing", R"({"workflow":{"writeNothing":true,"exitCode":7}})", nullptr,
                "getHybrisXMLNoUI", "reply"},
        Failure{"CrashingProgram", nullptr, "kill -SEGV $$", "getHybrisXMLNoUI", "reply"},
        Failure{"RefusingRouter", R"({"router":{"refuse":["getProjectList"]}})", nullptr, "project-03-list", "failure"},
        Failure{"FailingBuilder", R"({"builder":{"failAt":"CallService"}})", nullptr, "tag-06-new", "error"},
        Failure{"FailingBuilderThatIsCaught", R"({"builder":{"failAt":"View"}})", nullptr, "tag-07-configure", "error"},
        Failure{"CancelledBuilder", R"({"builder":{"cancelled":true}})", nullptr, "tag-07-configure", "reply"},
        Failure{"MissingBuilder", R"({"builder":{"missing":true}})", nullptr, "tag-06-new", "error"},
        Failure{"MissingReportServer", R"({"reportServer":{"missing":true}})", nullptr, "report-02-one", "failure"},
        Failure{"FailingReportServer", R"({"reportServer":{"failAt":"AddTag"}})", nullptr, "report-02-one", "failure"}),
    [](const auto& info) { return std::string(info.param.reason); });

TEST_F(CaseRun, ReproducesADatabaseThatIsNoDatabase) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(sample + "/drive_c/Korvane/TQ5-VX/Projects")) {
    if (entry.path().extension() == ".mdb") {
      WriteHostFile(entry.path(), "This is no database.");
    }
  }
  Record({"pull", Command("tag-02-fetch"), Command("tag-05-delete")});
  Record({"pull-ngorla", Command("getHybrisXMLNoUI")});
  const Outcome ran = RunParvex({"case", "run", cases});
  EXPECT_EQ(ran.status, 0) << ran.out;
  EXPECT_THAT(ran.out, EndsWith("3 reproduced, 0 not\n"));
}

// A command that is sent again finds what the thread and the instance have kept.
TEST_F(CaseRun, PutsBackWhatEarlierCallsLeft) {
  Record({"pull", Command("report-02-one"), Command("report-03-several"), Command("tag-04-copy"),
          Command("tag-04-copy"), Command("getHybrisXML"), Command("getHybrisXML")});
  const Outcome ran = RunParvex({"case", "run", cases});
  EXPECT_EQ(ran.status, 0) << ran.out;
  EXPECT_THAT(ran.out, EndsWith("6 reproduced, 0 not\n"));
}

TEST_F(CaseRun, ReachesTheProgramThatHung) {
  SetWorkflow("printf torn > \"$(dirname \"$0\")/../Temp/torn.tmp\"; exec sleep 600");
  RecordAndKill(Command("getHybrisXMLNoUI"));
  const std::vector<std::string> recorded = Cases();
  ASSERT_EQ(recorded.size(), 1u);
  EXPECT_THAT(recorded[0], EndsWith(".pvxcase.part"));
  const Outcome ran = RunParvex({"case", "run", recorded[0]});
  EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
  EXPECT_THAT(ran.out, AllOf(StartsWith("Reproduced: unfinished"), HasSubstr("which was reached")));
}

TEST_F(CaseRun, KeepsTheMachineInANewFolder) {
  Record({"pull-ngorla", Command("getHybrisXMLNoUI")});
  const std::string kept = (folder.Path() / "kept").string();
  EXPECT_EQ(RunParvex({"case", "run", Cases()[0], "--keep", kept}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(kept + "/drive_c/Korvane/TQ5-VX/Temp/QBOutput.ini"));
  const Outcome again = RunParvex({"case", "run", Cases()[0], "--keep", kept});
  EXPECT_EQ(again.status, 2);
  EXPECT_THAT(again.err, HasSubstr("is no empty folder"));
}

TEST_F(CaseRun, ToldOfWhatIsNoCase) {
  std::filesystem::create_directories(cases);
  EXPECT_EQ(RunParvex({"case", "run", cases}).status, 2);
  WriteHostFile(std::filesystem::path(cases) / "a.pvxcase", "hello");
  const Outcome ran = RunParvex({"case", "run", cases});
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.out, AllOf(HasSubstr("a.pvxcase  not reproduced: the case"), EndsWith("0 reproduced, 1 not\n")));
}

}  // namespace
}  // namespace parvex::test
