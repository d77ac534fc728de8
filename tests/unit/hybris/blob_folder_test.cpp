#include "hybris/blob_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "formats/text/text.h"
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
  EXPECT_THROW(Extract({"Ж.dat"}, "C:\\data\\ж.dat"), AutomationError) << "which is not even there";
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

// Folders as Windows keeps them: what is made under a name that is no short one gets the next short name that is free.
class FoldersWithShortNames : public Files {
 public:
  struct Item {
    std::string name;
    std::string shortName;
    std::optional<std::string> bytes;  // of a file
  };

  /// Makes a file and its folders; gives the name of the file that now holds the bytes.
  std::string Write(std::string_view path, std::string_view bytes) {
    CreateFolder(FolderOf(path));
    Replace(path, bytes);
    return Find(path)->name;
  }
  std::string Bytes(std::string_view path) { return Find(path)->bytes.value(); }

  bool IsFile(std::string_view path) override { return Find(path) && Find(path)->bytes; }
  bool IsFolder(std::string_view path) override { return Find(path) && !Find(path)->bytes; }
  std::vector<std::string> ListFiles(std::string_view pattern) override {
    return IsFile(pattern) ? std::vector<std::string>{Find(pattern)->name} : std::vector<std::string>{};
  }
  std::vector<std::string> ListFolders(std::string_view folder) override {
    std::vector<std::string> names;
    for (const Item& item : items_[Own(folder)]) {
      if (!item.bytes) {
        names.push_back(item.name);
      }
    }
    return names;
  }
  std::string ReadAll(std::string_view path) override { return Bytes(path); }
  void Replace(std::string_view path, std::string_view bytes) override {
    ++changes;
    Made(path).bytes = std::string(bytes);
  }
  void CreateNew(std::string_view, std::string_view) override { ADD_FAILURE(); }
  void Remove(std::string_view) override { ADD_FAILURE(); }
  void CreateFolder(std::string_view path) override {
    for (std::size_t end = path.find('\\'); end != std::string_view::npos; end = path.find('\\', end + 1)) {
      Made(path.substr(0, end));
    }
    if (!path.ends_with('\\')) {
      Made(path);
    }
  }
  void RemoveFolder(std::string_view) override { ADD_FAILURE(); }

  int changes = 0;

 private:
  // The path with the own names of the folders that exist.
  std::string Own(std::string_view path) {
    std::string own;
    for (std::string_view rest = path; !rest.empty();) {
      const std::string_view part = rest.substr(0, rest.find('\\'));
      const Item* item = In(own, part);
      own += (item ? item->name : std::string(part)) + "\\";
      rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    }
    return own;
  }
  Item* In(const std::string& folder, std::string_view name) {
    for (Item& item : items_[folder]) {
      if (EqualIgnoringCase(item.name, name) || EqualIgnoringCase(item.shortName, name)) {
        return &item;
      }
    }
    return nullptr;
  }
  Item* Find(std::string_view path) { return In(Own(FolderOf(path)), path.substr(FolderOf(path).size())); }
  Item& Made(std::string_view path) {
    if (Item* item = Find(path)) {
      return *item;
    }
    const std::string folder = Own(FolderOf(path));
    const std::string name(path.substr(FolderOf(path).size()));
    return items_[folder].emplace_back(Item{name, ShortNameFor(folder, name), std::nullopt});
  }
  std::string ShortNameFor(const std::string& folder, const std::string& name) {
    const std::size_t dot = std::min(name.rfind('.'), name.size());
    if (dot <= 8 && name.size() - dot <= 4 && name.find(' ') == std::string::npos) {
      return name;
    }
    std::string stem = ToUpper(name.substr(0, dot));
    std::erase(stem, ' ');
    for (int number = 1;; ++number) {
      std::string shortName = stem.substr(0, 6) + "~" + std::to_string(number) + ToUpper(name.substr(dot, 4));
      if (In(folder, shortName) == nullptr) {
        return shortName;
      }
    }
  }

  std::map<std::string, std::list<Item>> items_;
};

class ExtractAmongShortNames : public testing::Test {
 protected:
  void SetUp() override {
    files_.Write(kBlob, "the blob");
    files_.changes = 0;
  }

  void Extract(const std::vector<std::string>& names) {
    std::vector<PackedEntry> entries;
    for (const std::string& name : names) {
      entries.push_back({name, "content of " + name, false});
    }
    ExtractBesideBlob(files_, entries, kBlob);
  }

  FoldersWithShortNames files_;
};

TEST_F(ExtractAmongShortNames, WritesWhatIsCalledLikeAShortNameThatIsFree) {
  files_.Write("C:\\data\\another file.xml", "other");
  Extract({"UNITDA~1.XML", "PROGRA~1\\x"});
  Extract({"UNITDA~1.XML", "PROGRA~1\\x"});
  EXPECT_EQ(files_.ListFiles("C:\\data\\UNITDA~1.XML"), std::vector<std::string>{"UNITDA~1.XML"});
  EXPECT_EQ(files_.Bytes("C:\\data\\UNITDA~1.XML"), "content of UNITDA~1.XML");
  EXPECT_EQ(files_.ListFolders("C:\\data"), std::vector<std::string>{"PROGRA~1"});
  EXPECT_EQ(files_.Bytes("C:\\data\\PROGRA~1\\x"), "content of PROGRA~1\\x");
}

TEST_F(ExtractAmongShortNames, RefusesTheShortNameOfAnotherFileBeforeAnythingIsWritten) {
  files_.Write("C:\\data\\unit data.xml", "other");
  files_.Write("C:\\data\\program files\\a long name", "below");
  files_.changes = 0;
  for (const char* name : {"UNITDA~1.XML", "unitda~1.xml", "PROGRA~1\\x", "program files\\ALONGN~1", "PROGRA~1"}) {
    try {
      Extract({"first", name});
      ADD_FAILURE() << "accepted " << name;
    } catch (const AutomationError& error) {
      EXPECT_THAT(error.Description(), testing::HasSubstr("has the short name of another file")) << name;
    }
    EXPECT_EQ(files_.changes, 0) << name;
  }
  EXPECT_EQ(files_.Bytes("C:\\data\\unit data.xml"), "other");
}

TEST_F(ExtractAmongShortNames, WritesNoEntryOverAnotherWhoseShortNameItHas) {
  const std::vector<std::string> names = {"unit data.xml", "program files\\a long name", "program files\\ALONGN~1",
                                          "UNITDA~1.XML", "PROGRA~1\\x"};
  Extract(names);
  for (const std::string& name : names) {
    EXPECT_EQ(files_.Bytes("C:\\data\\" + name), "content of " + name);
  }
}

TEST_F(ExtractBesideBlobTest, LeavesOutWhatHasTheNameOfADevice) {
  Extract({"aux.txt", "readme", "nul.d\\x", "sub\\con.xml"});
  EXPECT_EQ(machine_.Read("C:\\data\\readme"), "content of readme");
  EXPECT_FALSE(machine_.platform.files->IsFolder("C:\\data\\sub"));
  for (const char* name : {"aux.txt", "nul.d", "sub"}) {
    EXPECT_FALSE(std::filesystem::exists(machine_.folder.Path() / "drive_c" / "data" / name)) << name;
  }
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
