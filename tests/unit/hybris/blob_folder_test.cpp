#include "hybris/blob_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

constexpr const char* kBlob = "C:\\data\\tag.dat";

class ExtractBesideBlobTest : public testing::Test {
 protected:
  test::FakeMachine machine_;

  void SetUp() override { machine_.Write(kBlob, "the blob"); }

  void Extract(const std::vector<std::string>& names, const std::string& blob = kBlob) {
    std::vector<PackedEntry> entries;
    for (const std::string& name : names) {
      entries.push_back({name, "content of " + name, false});
    }
    ExtractBesideBlob(*machine_.platform.files, entries, blob);
  }
};

TEST_F(ExtractBesideBlobTest, WritesFilesAndTheirFolders) {
  ExtractBesideBlob(*machine_.platform.files,
                    {{"Tag", "text", false}, {"empty", "", true}, {"a\\b\\c.txt", "deep", false}, {"a", "", true}},
                    kBlob);
  EXPECT_EQ(machine_.Read("C:\\data\\Tag"), "text");
  EXPECT_EQ(machine_.Read("C:\\data\\a\\b\\c.txt"), "deep");
  EXPECT_TRUE(machine_.platform.files->IsFolder("C:\\data\\empty"));
  EXPECT_EQ(machine_.Read(kBlob), "the blob");
}

TEST_F(ExtractBesideBlobTest, ReplacesFilesThatExist) {
  machine_.Write("C:\\data\\Tag", "old");
  Extract({"TAG"});
  EXPECT_EQ(machine_.Read("C:\\data\\Tag"), "content of TAG");
}

TEST_F(ExtractBesideBlobTest, NeverWritesOverTheBlobNorAnythingBeforeThatShows) {
  for (const char* name : {"tag.dat", "TAG.Dat", "tag.dat\\below"}) {
    EXPECT_THROW(Extract({"first", name}), AutomationError) << name;
    EXPECT_EQ(machine_.Read(kBlob), "the blob") << name;
    EXPECT_FALSE(machine_.Exists("C:\\data\\first")) << name;
  }
}

TEST_F(ExtractBesideBlobTest, KnowsTheBlobByAnySpellingOfItsPath) {
  EXPECT_THROW(Extract({"tag.dat"}, "c:\\DATA\\\\TAG.DAT"), AutomationError);
  EXPECT_THROW(Extract({"tag.dat"}, "C:/data/tag.dat"), AutomationError);
  EXPECT_THROW(Extract({"tag.dat"}, "C:\\data\\tag.dat. "), AutomationError);
  machine_.Write("C:\\data\\\xC3\xA4.dat", "the blob");
  EXPECT_THROW(Extract({"\xC3\x84.dat"}, "C:\\data\\\xC3\xA4.dat"), AutomationError);
  machine_.Write("C:\\data\\\xC5\xA1.dat", "the blob");  // a letter pair beyond Latin-1
  EXPECT_THROW(Extract({"\xC5\xA0.dat"}, "C:\\data\\\xC5\xA1.dat"), AutomationError);
  EXPECT_EQ(machine_.Read("C:\\data\\\xC5\xA1.dat"), "the blob");
}

// A folder with one file, which has a second, short name as Windows keeps it.
class FolderWithShortName : public Files {
 public:
  std::vector<std::string> written;

  bool IsFile(std::string_view path) override {
    return path == "C:\\data\\tag data.zip" || path == "C:\\data\\TAGDAT~1.ZIP";
  }
  bool IsFolder(std::string_view) override { return false; }
  std::vector<std::string> ListFiles(std::string_view pattern) override {
    return IsFile(pattern) ? std::vector<std::string>{"tag data.zip"} : std::vector<std::string>{};
  }
  std::vector<std::string> ListFolders(std::string_view) override { return {}; }
  std::string ReadAll(std::string_view) override { return {}; }
  void Replace(std::string_view path, std::string_view) override { written.emplace_back(path); }
  void CreateNew(std::string_view, std::string_view) override { ADD_FAILURE(); }
  void Remove(std::string_view) override { ADD_FAILURE(); }
  void CreateFolder(std::string_view) override { ADD_FAILURE(); }
  void RemoveFolder(std::string_view) override { ADD_FAILURE(); }
};

TEST(ExtractBesideBlobByShortName, NeverWritesOverTheBlob) {
  FolderWithShortName files;
  EXPECT_THROW(ExtractBesideBlob(files, {{"tag data.zip", "x", false}}, "C:\\data\\TAGDAT~1.ZIP"), AutomationError);
  ExtractBesideBlob(files, {{"tag text.zip", "x", false}}, "C:\\data\\TAGDAT~1.ZIP");
  EXPECT_THAT(files.written, testing::ElementsAre("C:\\data\\tag text.zip"));
}

TEST_F(ExtractBesideBlobTest, AllowsTheBlobsNameInAnotherFolder) {
  Extract({"sub\\tag.dat"});
  EXPECT_EQ(machine_.Read("C:\\data\\sub\\tag.dat"), "content of sub\\tag.dat");
}

TEST(FolderOfPath, EndsWithTheLastSeparator) {
  EXPECT_EQ(FolderOf("C:\\data\\tag.dat"), "C:\\data\\");
  EXPECT_EQ(FolderOf("C:/data/tag.dat"), "C:/data/");
  EXPECT_EQ(FolderOf("tag.dat"), "");
}

}  // namespace
}  // namespace parvex
