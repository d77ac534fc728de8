#include "legacy_env/program_folder_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex {
namespace {

class KeptNotes : public Notes {
 public:
  void Find(std::string_view) override { ADD_FAILURE() << "no finding"; }
  std::vector<std::string> taken;
  void Take(std::string_view about, std::string_view text) override {
    taken.push_back(std::string(about).append(": ").append(text));
  }
};

class DocumentFiles : public testing::Test {
 protected:
  DocumentFiles() { machine.platform.notes = &notes; }

  const std::string path = std::string(test::FakeMachine::kBinPath) + "Tools.xml";
  test::FakeMachine machine;
  KeptNotes notes;
};

TEST_F(DocumentFiles, OneThatDoesNotParseIsEmptyAndTheReasonIsNoted) {
  machine.Write(path, "<TOOLS>\n<Tool></TOOLS>");
  EXPECT_TRUE(LoadDocument(machine.platform, path).IsEmpty());
  ASSERT_EQ(notes.taken.size(), 1u);
  EXPECT_EQ(notes.taken[0].find(path + ": it does not parse as XML: line 2, "), 0u) << notes.taken[0];
  EXPECT_TRUE(LoadFromProgramFolder(machine.platform, "Tools.xml").IsEmpty());
  EXPECT_EQ(notes.taken.size(), 2u);
}

TEST_F(DocumentFiles, OneInAnUnknownEncodingIsNotedByTheEncodingsName) {
  machine.Write(path, "<?xml version='1.0' encoding='x-no-such'?><TOOLS/>");
  LoadDocument(machine.platform, path);
  ASSERT_EQ(notes.taken.size(), 1u);
  EXPECT_EQ(notes.taken[0], path + ": it does not parse as XML: the encoding \"x-no-such\" cannot be read");
}

TEST_F(DocumentFiles, OneThatParsesOrIsMissingIsNotNoted) {
  machine.Write(path, "<TOOLS/>");
  EXPECT_EQ(LoadDocument(machine.platform, path).Root().Name(), "TOOLS");
  EXPECT_TRUE(LoadFromProgramFolder(machine.platform, "Missing.xml").IsEmpty());
  EXPECT_EQ(test::RaisedBy([&] { LoadDocument(machine.platform, path + ".missing"); }), RuntimeError::FileNotFound);
  EXPECT_TRUE(notes.taken.empty());
}

TEST_F(DocumentFiles, NobodyHasToKeepNotes) {
  machine.platform.notes = nullptr;
  machine.Write(path, "<TOOLS>");
  EXPECT_TRUE(LoadDocument(machine.platform, path).IsEmpty());
}

}  // namespace
}  // namespace parvex
