#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "adapters/posix/native_system.h"
#include "formats/zip/zip_writer.h"
#include "recording/recorded_case.h"
#include "tests/cli/program.h"

// Recorded calls: the switch, and what is told of the cases.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class RecordingProgram : public testing::Test {
 protected:
  RecordingProgram() { machine.SetWorkflow(WriteSelection("[Header]\\r\\nAction=OK\\r\\n")); }

  std::vector<std::string> Cases() {
    std::vector<std::string> paths;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
      paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  std::string OnlyCase() {
    const std::vector<std::string> cases = Cases();
    EXPECT_EQ(cases.size(), 1u);
    return cases.empty() ? "" : cases[0];
  }

  CliMachine machine;
  const std::string folder = machine.Path("cases");
  const std::string command = machine.Write("export.xml", ExportCommand());
};

TEST_F(RecordingProgram, RecordsEachCallIntoTheFolderOfItsOption) {
  const Outcome plain = machine.Run({"pull-ngorla", command});
  const Outcome recorded = machine.Run({"--record", folder, "pull-ngorla", command, command});
  EXPECT_EQ(recorded.status, plain.status);
  EXPECT_EQ(recorded.out, plain.out + plain.out);
  EXPECT_EQ(recorded.err, plain.err + plain.err);
  EXPECT_EQ(Cases().size(), 2u);
}

TEST_F(RecordingProgram, RecordsWhereTheVariableSaysSo) {
  machine.Run({"pull-ngorla", command}, {.environment = {{"PARVEX_RECORD", folder}}});
  EXPECT_THAT(OnlyCase(), testing::EndsWith("-getHybrisXMLNoUI.pvxcase"));
}

TEST_F(RecordingProgram, IsTurnedOnAndOffForTheUser) {
  EXPECT_EQ(machine.Run({"recording", "status"}).out, "Recording is off.\n");
  const Outcome on = machine.Run({"recording", "on", folder});
  EXPECT_EQ(on.out, "Recording is on, into " + folder +
                        " (HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Recording).\n"
                        "Up to 50 cases and 200 MB are kept.\n");
  EXPECT_EQ(machine.Run({"recording", "status"}).out, on.out);
  machine.Run({"pull-ngorla", command});
  EXPECT_EQ(machine.Run({"recording", "off"}).out, "Recording is off.\n");
  machine.Run({"pull-ngorla", command});
  EXPECT_EQ(Cases().size(), 1u);
}

TEST_F(RecordingProgram, ShowsWhatWasAskedWhatHappenedAndWhatCameBack) {
  machine.Run({"--record", folder, "pull-ngorla", command});
  const Outcome shown = RunParvex({"case", "show", OnlyCase()});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_THAT(shown.out,
              AllOf(HasSubstr("getHybrisXMLNoUI through PullNGORLA: reply"), HasSubstr("<COMMAND>"),
                    HasSubstr("process start command"), HasSubstr("exitCode 0"), HasSubstr("Answered:\n  <PROJECT>"),
                    Not(HasSubstr("NEVER CAME BACK")), Not(HasSubstr("Missing"))));
  EXPECT_THAT(RunParvex({"case", "show", "--json", OnlyCase()}).out,
              AllOf(HasSubstr("\"outcome\": \"reply\""), HasSubstr("\"finished\": true"), HasSubstr("\"steps\": [")));
  EXPECT_THAT(RunParvex({"case", "list", folder}).out, HasSubstr("getHybrisXMLNoUI  0."));
  EXPECT_THAT(RunParvex({"case", "files", OnlyCase()}).out, HasSubstr("machine/registry.reg  "));
}

TEST_F(RecordingProgram, ShowsTheErrorThatACallEndedIn) {
  machine.Run({"--record", folder, "pull-ngorla", machine.Write("none.xml", "<x/>")});
  EXPECT_THAT(RunParvex({"case", "show", OnlyCase()}).out,
              AllOf(HasSubstr("error: error 0x800A005B"), HasSubstr("no document")));
}

TEST_F(RecordingProgram, ShowsTheStepThatFailed) {
  machine.SetWorkflow("exit 3");
  machine.Run({"--record", folder, "pull-ngorla", command});
  const std::string file = OnlyCase();
  EXPECT_THAT(RunParvex({"case", "show", file}).out,
              testing::ContainsRegex("What failed:\n  step [0-9]+, process end .*: exit code 3\n"));
}

TEST_F(RecordingProgram, ShowsACaseAsAPage) {
  machine.Run({"--record", folder, "pull-ngorla", command});
  const std::string file = OnlyCase();
  const Outcome shown = RunParvex({"case", "show", file, "--html", machine.Path("page.html")});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.out, "");
  const std::string page = machine.Read("page.html");
  EXPECT_THAT(page, AllOf(testing::StartsWith("<!DOCTYPE html>"), HasSubstr("getHybrisXMLNoUI through PullNGORLA"),
                          HasSubstr("QBOutput.ini"), Not(HasSubstr("<script"))));
  EXPECT_EQ(RunParvex({"case", "show", file, "--html", "-"}).out, page);
  EXPECT_EQ(RunParvex({"case", "show", file, "--html", "-", "--json"}).status, 2);
  EXPECT_EQ(RunParvex({"case", "show", file, "--html", machine.Path("nowhere/page.html")}).status, 2);
}

TEST_F(RecordingProgram, ExtractsAMachineFolderIntoANewFolder) {
  machine.Run({"--record", folder, "pull-ngorla", command});
  const std::string extracted = machine.Path("extracted");
  EXPECT_EQ(RunParvex({"case", "extract", OnlyCase(), extracted}).status, 0);
  EXPECT_EQ(machine.Read("extracted/command.xml"), ExportCommand());
  EXPECT_TRUE(machine.Exists("extracted/machine/registry.reg"));
  EXPECT_THAT(RunParvex({"--machine", extracted + "/machine", "doctor"}).out, HasSubstr("C:\\Korvane\\TQ5-VX\\Bin"));
  const Outcome again = RunParvex({"case", "extract", OnlyCase(), extracted});
  EXPECT_EQ(again.status, 2);
  EXPECT_THAT(again.err, HasSubstr("exists already"));
}

struct BadCase {
  const char* reason;
  std::string bytes;
  const char* told;
};

std::string Packed(const std::vector<std::pair<std::string, std::string>>& members) {
  ZipWriter writer;
  for (const auto& [name, bytes] : members) {
    writer.Add(name, bytes, true);
  }
  return writer.Finish();
}

TEST_F(RecordingProgram, RefusesWhatIsNoCaseOrAHostileOrLaterOne) {
  const std::string facts = R"({"format":1})";
  for (const BadCase& bad : std::vector<BadCase>{
           {"no archive", "hello", "it is no case"},
           {"no facts", Packed({{"journal.jsonl", ""}}), "it has no case.json"},
           {"facts that are no JSON", Packed({{"case.json", "{"}}), "case.json is damaged"},
           {"a later format", Packed({{"case.json", R"({"format":2})"}}), "its format 2 is later"},
           {"a way out of the folder", Packed({{"case.json", facts}, {"../out", "x"}}), "its entry"},
           {"an absolute name", Packed({{"case.json", facts}, {"/out", "x"}}), "its entry"},
           {"one name twice", Packed({{"case.json", facts}, {"CASE.JSON", "x"}}), "another entry takes"},
           {"facts nested without end",
            Packed({{"case.json",
                     "{\"format\":1,\"x\":" + std::string(1'000'000, '[') + std::string(1'000'000, ']') + "}"}}),
            "case.json is damaged"},
           {"a step nested without end",
            Packed({{"case.json", facts},
                    {"journal.jsonl", "{\"n\":1,\"at\":\"once\",\"kind\":" + std::string(1'000'000, '[') +
                                          std::string(1'000'000, ']') + "}\n"}}),
            "line 1"},
           {"a journal that is none", Packed({{"case.json", facts}, {"journal.jsonl", "[]\n"}}), "line 1"},
       }) {
    const std::string file = machine.Write("bad.pvxcase", bad.bytes);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"case", "show", file}, {"case", "extract", file, machine.Path("nowhere")}}) {
      const Outcome outcome = RunParvex(arguments);
      EXPECT_EQ(outcome.status, 2) << bad.reason;
      EXPECT_THAT(outcome.err, HasSubstr(bad.told)) << bad.reason;
    }
    EXPECT_FALSE(machine.Exists("nowhere")) << bad.reason;
  }
}

// Values in a case are somebody else's: no command of a terminal, and no value of a wrong type, does harm.
TEST_F(RecordingProgram, ShowsAStrangeCaseWithoutHarm) {
  const std::string file = machine.Write(
      "strange.pvxcase",
      Packed({{"case.json", R"({"format":1,"command":["\u001b[2J"],"error":7,"missing":[1,{"what":2}],"outcome":{}})"},
              {"journal.jsonl", "{\"n\":1,\"at\":\"before\",\"kind\":5,\"us\":\"x\",\"error\":[]}\n"}}));
  const Outcome shown = RunParvex({"case", "show", file});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_THAT(shown.out, AllOf(Not(HasSubstr("\x1b")), HasSubstr("NEVER CAME BACK")));
  const Outcome page = RunParvex({"case", "show", file, "--html", "-"});
  EXPECT_EQ(page.status, 0) << page.err;
  EXPECT_THAT(page.out, AllOf(Not(HasSubstr("\x1b")), HasSubstr("never came back")));
}

// A program that was started and is not waited for.
pid_t Start(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  pid_t child = 0;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const int failed = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return failed == 0 ? child : -1;
}

int NumberIn(const char* variable, int otherwise) {
  const char* value = std::getenv(variable);
  return value == nullptr ? otherwise : std::atoi(value);
}

// A host that is killed, wherever it was and while its program goes on, leaves a folder that every command takes.
// scripts/prove-killed-hosts kills more of them.
TEST_F(RecordingProgram, LeavesAReadableFolderWhenItIsKilled) {
  machine.SetWorkflow("sleep 0.05\n" + WriteSelection("[Header]\\r\\nAction=OK\\r\\n"));
  const int kills = NumberIn("PARVEX_KILLS", 40);
  std::mt19937 random(static_cast<unsigned>(NumberIn("PARVEX_KILLS_SEED", 20261122)));
  int unfinished = 0;
  for (int round = 0; round < kills; ++round) {
    std::filesystem::remove_all(folder);
    const pid_t child =
        Start({PARVEX_PROGRAM, "--machine", machine.Folder(), "--record", folder, "pull-ngorla", command, command});
    ASSERT_GT(child, 0);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 300'000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const std::string extracted = machine.Path("extracted");
    for (const std::string& path : Cases()) {
      unfinished += std::filesystem::is_directory(path) ? 1 : 0;
      for (const std::vector<std::string>& told : {std::vector<std::string>{"show", path},
                                                   {"show", "--json", path},
                                                   {"files", path},
                                                   {"extract", path, extracted}}) {
        std::vector<std::string> arguments = {"case"};
        arguments.insert(arguments.end(), told.begin(), told.end());
        EXPECT_EQ(RunParvex(arguments).status, 0) << told[0] << " " << path;
      }
      std::filesystem::remove_all(extracted);
    }
    const Outcome listed = RunParvex({"case", "list", folder});
    EXPECT_THAT(listed.out, Not(HasSubstr("refused")));
  }
  EXPECT_GT(unfinished, kills / 20);
}

// Hosts that record into one folder see to it together that not more than Keep are there, and none takes another's
// running case away.
TEST_F(RecordingProgram, SharesAFolderWithOtherHosts) {
  machine.SetWorkflow("sleep 0.02\n" + WriteSelection("[Header]\\r\\nAction=OK\\r\\n"));
  machine.Run({"recording", "on", folder});
  machine.WriteRegistry(machine.Read("machine/registry.reg") +
                        "\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Recording]\r\n\"Keep\"=\"3\"\r\n");
  const CliMachine other;
  std::filesystem::remove_all(other.Folder());
  std::filesystem::copy(machine.Folder(), other.Folder(), std::filesystem::copy_options::recursive);
  constexpr int kRounds = 12;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<pid_t> hosts;
    for (const CliMachine* one : {static_cast<const CliMachine*>(&machine), &other}) {
      hosts.push_back(Start({PARVEX_PROGRAM, "--machine", one->Folder(), "pull-ngorla", command, command, command}));
    }
    for (const pid_t host : hosts) {
      int status = 0;
      ASSERT_EQ(waitpid(host, &status, 0), host);
      EXPECT_EQ(status, 0);
    }
    EXPECT_LE(Cases().size(), 3u);
  }
  EXPECT_FALSE(Cases().empty());
  for (const std::string& path : Cases()) {
    EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
    posix::NativeSystem system;
    EXPECT_THAT(recording::ReadCase(system, path).facts["missing"], IsEmpty()) << path;
  }
}

}  // namespace
}  // namespace parvex::test
