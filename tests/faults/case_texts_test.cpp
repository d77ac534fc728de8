#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "adapters/posix/native_system.h"
#include "cli/cases/case_text.h"
#include "formats/zip/archive_file.h"
#include "recording/recorded_case.h"
#include "seams/automation_error.h"
#include "tests/faults/case_bytes.h"
#include "tests/faults/case_runs.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"

// Cases of which every value may have any type, and that were cut off anywhere: each is shown without harm.

namespace parvex::test {
namespace {

using recording::Json;

std::string Shown(const std::string& path) {
  posix::NativeSystem system;
  const recording::RecordedCase read = recording::ReadCase(system, path);
  return cli::TextOfCase(read) + cli::JsonOfCase(read) + cli::FilesOfCase(read) + cli::LineOfCase(read);
}

// Does the call again: an error that says why not, or differences.
void RunOne(const std::string& path) {
  posix::NativeSystem system;
  const std::string problem = ProblemOfRun(recording::ReadCase(system, path));
  EXPECT_NE(problem, "it is reproduced");
}

TEST(WrongTypes, OfEveryFactAreShown) {
  TemporaryFolder folder;
  const std::string path = (folder.Path() / "1.pvxcase").string();
  const ChildOutcome outcome = InLimitedChild([&] {
    for (const char* key :
         {"product", "version",    "platform", "bitness",   "codePage", "program", "processId", "threadId",
          "machine", "entryPoint", "command",  "thread",    "instance", "started", "ended",     "microseconds",
          "outcome", "error",      "steps",    "namesOnly", "missing",  "files",   "finished",  "reply"}) {
      for (const Json& value : OddValues()) {
        WriteHostFile(path, Packed({{"case.json", Json({{"format", 1}, {key, value}}).dump()}}));
        RunOne(path);
        if (Shown(path).find('\x1b') != std::string::npos) {
          return std::string(key) + " controls a terminal";
        }
      }
    }
    return std::string("shown");
  });
  ExpectQuick(outcome);
  EXPECT_EQ(outcome.answer, "shown");
}

TEST(WrongTypes, OfEveryKeyOfAStepAreShown) {
  TemporaryFolder folder;
  const std::string path = (folder.Path() / "1.pvxcase").string();
  const ChildOutcome outcome = InLimitedChild([&] {
    for (const char* kind : {"router", "automation", "process", "messageBox", "registry", "file", "ini", "database",
                             "note", "nested", "unknown"}) {
      std::string journal;
      int number = 0;
      for (const char* key :
           {"kind",    "op",   "us",      "at",      "n",       "request",     "answer",  "success", "object",
            "member",  "args", "result",  "changed", "command", "windowStyle", "started", "start",   "exitCode",
            "left",    "text", "caption", "icon",    "key",     "value",       "path",    "bytes",   "stored",
            "section", "sql",  "row",     "about",   "case",    "error",       "\x1b[2J"}) {
        for (const Json& value : OddValues()) {
          for (const char* at : {"before", "after", "once"}) {
            Json line = {{"n", ++number}, {"at", at}, {"us", number}, {"kind", kind}, {"op", "start"}};
            line[key] = value;
            if (line["n"].is_number_unsigned() && line["at"].is_string()) {
              journal += line.dump() + "\n";
            }
          }
        }
      }
      WriteHostFile(path, PackedCase({{"journal.jsonl", journal}}));
      Shown(path);
    }
    return std::string("shown");
  });
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.answer, "shown");
}

TEST(CutOff, AnArchiveIsRefused) {
  TemporaryFolder folder;
  const std::string path = (folder.Path() / "1.pvxcase").string();
  const std::string whole =
      PackedCase({{"command.xml", "<COMMAND/>"}, {"journal.jsonl", "{\"n\":1,\"at\":\"once\"}\n"}});
  WriteHostFile(path, whole);
  EXPECT_NO_THROW(Shown(path));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    WriteHostFile(path, whole.substr(0, size));
    EXPECT_THROW(Shown(path), AutomationError) << size;
  }
}

// A host that died leaves any of its files at any length.
TEST(CutOff, AFolderIsShownAsFarAsItGoes) {
  TemporaryFolder folder;
  const std::string path = (folder.Path() / "1.pvxcase.part").string();
  std::filesystem::create_directory(path);
  EXPECT_NO_THROW(Shown(path));
  std::string files;
  StringFile file(files);
  ArchiveFile archive(file);
  archive.Add("command.xml", "<COMMAND/>");
  archive.Add("machine/drive_c/a.ini", "[S]\r\nk=v\r\n");
  archive.Add("machine/drive_c/Temp/", "");
  const std::string journal =
      "{\"n\":1,\"at\":\"before\",\"kind\":\"router\"}\n{\"n\":1,\"at\":\"after\",\"answer\":\"x\"}\n";
  for (std::size_t size = 0; size <= files.size(); ++size) {
    WriteHostFile(path + "/files.zip", files.substr(0, size));
    EXPECT_NO_THROW(Shown(path)) << size;
  }
  for (std::size_t size = 0; size <= journal.size(); ++size) {
    WriteHostFile(path + "/journal.jsonl", journal.substr(0, size));
    EXPECT_NO_THROW(Shown(path)) << size;
  }
  WriteHostFile(path + "/case.json", kFacts);
  EXPECT_NE(Shown(path).find("a.ini"), std::string::npos);
}

}  // namespace
}  // namespace parvex::test
