#include "recording/recorded_case.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/fake_platform.h"
#include "tests/unit/recording/fake_system.h"

namespace parvex::recording {

void PrintTo(const KeptFile& file, std::ostream* out) { *out << file.name << " (" << file.bytes.size() << " bytes)"; }
bool operator==(const KeptFile& left, const KeptFile& right) {
  return left.name == right.name && left.bytes == right.bytes && left.isFolder == right.isFolder;
}

namespace {

using testing::HasSubstr;

class WrittenCaseTest : public testing::Test {
 protected:
  WrittenCaseTest() {
    whole.facts = {{"format", 1}, {"command", "getProjects"}, {"outcome", "reply"}, {"later", {1, nullptr, "x"}}};
    whole.command = "<COMMAND>\xFC</COMMAND>";  // bytes of whatever encoding
    whole.reply = "<REPLY/>";
    whole.steps = {{{"n", 1}, {"at", "before"}, {"us", 7}, {"kind", "router"}, {"request", "<\xC3\xBC>"}},
                   {{"n", 1}, {"at", "after"}, {"us", 9}, {"answer", "a\nb"}}};
    whole.files = {{"machine/drive_c/Empty", "", true},
                   {"machine/drive_c/B\xC3\xBCro.ini", "[a]\r\n", false},
                   {"after/2/drive_c/x.blb", std::string("\0\xFF", 2), false}};
  }

  std::string Path() const { return (folder.Path() / "a.pvxcase").string(); }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const HostSystem::Entry& entry : system.List(folder.Path().string())) {
      names.push_back(entry.name);
    }
    return names;
  }

  test::TemporaryFolder folder;
  test::FakeSystem system;
  RecordedCase whole;
};

TEST_F(WrittenCaseTest, IsReadAsItWas) {
  WriteCase(system, whole, Path());
  const RecordedCase read = ReadCase(system, Path());
  EXPECT_TRUE(read.isFinished);
  EXPECT_EQ(read.facts, whole.facts);
  EXPECT_EQ(read.command, whole.command);
  EXPECT_EQ(read.reply, whole.reply);
  EXPECT_EQ(read.steps, whole.steps);
  EXPECT_EQ(read.files, whole.files);
}

TEST_F(WrittenCaseTest, OfACallWithoutADocumentHasNone) {
  whole.reply.reset();
  WriteCase(system, whole, Path());
  EXPECT_EQ(ReadCase(system, Path()).reply, std::nullopt);
}

TEST_F(WrittenCaseTest, TakesThePlaceOfAnotherFile) {
  system.WriteAll(Path(), "old");
  WriteCase(system, whole, Path());
  EXPECT_EQ(ReadCase(system, Path()).command, whole.command);
  EXPECT_EQ(Names(), std::vector<std::string>{"a.pvxcase"});
}

TEST_F(WrittenCaseTest, ThatDoesNotFitLeavesTheFolderAsItWas) {
  system.WriteAll(Path(), "old");
  system.room = 200;
  EXPECT_THROW(WriteCase(system, whole, Path()), AutomationError);
  EXPECT_EQ(system.ReadAll(Path()), "old");
  EXPECT_EQ(Names(), std::vector<std::string>{"a.pvxcase"});
}

}  // namespace
}  // namespace parvex::recording
