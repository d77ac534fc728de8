#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
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

// A host that is killed, wherever it was, leaves a folder that every command takes.
TEST_F(RecordingProgram, LeavesAReadableFolderWhenItIsKilled) {
  machine.SetWorkflow("sleep 0.05\n" + WriteSelection("[Header]\\r\\nAction=OK\\r\\n"));
  std::mt19937 random(20261122);
  int unfinished = 0;
  for (int round = 0; round < 20; ++round) {
    std::filesystem::remove_all(folder);
    const std::string machineFolder = machine.Folder();
    std::vector<std::string> arguments = {PARVEX_PROGRAM, "--machine",   machineFolder, "--record",
                                          folder,         "pull-ngorla", command};
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ASSERT_EQ(posix_spawn(&child, PARVEX_PROGRAM, &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 240'000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    posix::NativeSystem system;
    for (const std::string& path : Cases()) {
      unfinished += std::filesystem::is_directory(path) ? 1 : 0;
      const std::string facts = path + "/case.json";
      if (!std::filesystem::is_directory(path) || std::filesystem::exists(facts)) {
        EXPECT_NO_THROW(recording::ReadCase(system, path)) << path;
      }
    }
  }
  EXPECT_GT(unfinished, 0);
}

}  // namespace
}  // namespace parvex::test
