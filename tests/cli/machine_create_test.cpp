#include <gtest/gtest.h>

#include "seams/xml.h"
#include "tests/cli/program.h"

namespace parvex::test {
namespace {

// The commands that a sample machine brings along.
std::vector<std::string> CommandFiles(const std::filesystem::path& machine) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(machine / "commands")) {
    files.push_back(entry.path().string());
  }
  return files;
}

TEST(MachineCreate, MakesAMachineOnWhichAnExportRuns) {
  const TemporaryFolder folder;
  const std::string machine = (folder.Path() / "sample").string();
  const Outcome created = RunParvex({"machine", "create", machine});
  ASSERT_EQ(created.status, 0) << created.err;
  EXPECT_EQ(created.out, "");
  EXPECT_TRUE(std::filesystem::is_regular_file(machine + "/registry.reg"));

  std::size_t exports = 0;
  for (const std::string& file : CommandFiles(machine)) {
    if (ReadHostFile(file).find("getHybrisXMLNoUI") != std::string::npos) {
      const Outcome outcome = RunParvex({"--machine", machine, "pull-ngorla", file});
      EXPECT_EQ(outcome.status, 0) << outcome.err;
      const xml::Document reply = xml::Document::Parse(outcome.out);
      ASSERT_FALSE(reply.IsEmpty()) << reply.ParseError();
      EXPECT_GT(reply.All("//TAG").size(), 1u);
      EXPECT_GT(reply.All("//BASEUNIT").size(), 1u);
      ++exports;
    }
  }
  EXPECT_GT(exports, 0u);
}

TEST(MachineCreate, BringsCommandsThatAreServed) {
  const TemporaryFolder folder;
  ASSERT_EQ(RunParvex({"machine", "create", (folder.Path() / "m").string()}).status, 0);
  const std::string served = RunParvex({"commands"}).out;
  const std::vector<std::string> files = CommandFiles(folder.Path() / "m");
  EXPECT_GT(files.size(), 10u);
  for (const std::string& file : files) {
    const xml::Node name = xml::Document::Load(ReadHostFile(file)).First("/COMMAND/NAME");
    ASSERT_TRUE(name) << file;
    EXPECT_NE(served.find("  " + name.Text() + " "), std::string::npos) << file;
  }
}

TEST(MachineCreate, MakesTheMachineAnew) {
  const TemporaryFolder folder;
  const std::string machine = (folder.Path() / "sample").string();
  EXPECT_EQ(RunParvex({"machine", "create", machine}).status, 0);
  EXPECT_EQ(RunParvex({"machine", "create", machine}).status, 0);
}

TEST(MachineCreate, RefusesAFolderThatHoldsSomethingElse) {
  const TemporaryFolder folder;
  WriteHostFile(folder.Path() / "mine.txt", "mine");
  const Outcome outcome = RunParvex({"machine", "create", folder.Path().string()});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("0x800A004B"), std::string::npos) << outcome.err;
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "registry.reg"));
  EXPECT_EQ(ReadHostFile(folder.Path() / "mine.txt"), "mine");
}

TEST(MachineCreate, NeedsNoMachine) {
  const TemporaryFolder folder;
  const Surroundings surroundings = {.environment = {{"PARVEX_MACHINE", "/nowhere"}}};
  EXPECT_EQ(RunParvex({"machine", "create", (folder.Path() / "m").string()}, surroundings).status, 0);
}

TEST(SampleMachine, TellsTheWorkflowProgramToCancel) {
  const TemporaryFolder folder;
  const std::string machine = (folder.Path() / "sample").string();
  ASSERT_EQ(RunParvex({"machine", "create", machine}).status, 0);
  WriteHostFile(machine + "/standin.json", "{\"workflow\":{\"cancel\":true}}");
  WriteHostFile(folder.Path() / "c.xml", ExportCommand("Riverside Clinic"));
  const Outcome outcome = RunParvex({"--machine", machine, "pull-ngorla", (folder.Path() / "c.xml").string()});
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_EQ(outcome.out, FailedReply("User Canceled"));
}

}  // namespace
}  // namespace parvex::test
