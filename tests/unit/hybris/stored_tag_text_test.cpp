#include "hybris/stored_tag_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/zip/zip_writer.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex {
namespace {

constexpr const char* kBlob = "C:\\data\\unit.dat";
constexpr const char* kTagFile = "C:\\data\\Tag";

class StoredText : public testing::Test {
 protected:
  test::FakeMachine machine_;

  struct Entry {
    std::string name;
    std::string bytes;
  };

  void WriteBlob(const std::vector<Entry>& entries, const std::string& path = kBlob) {
    ZipWriter writer;
    for (const Entry& entry : entries) {
      writer.Add(entry.name, entry.bytes, true);
    }
    machine_.Write(path, writer.Finish());
  }

  StoredTagText Read(const std::string& path = kBlob) { return ReadStoredTagText(machine_.platform, path); }

  void ExpectNoText(const StoredTagText& read) {
    EXPECT_EQ(read.text, "");
    EXPECT_TRUE(read.status);
  }
};

// --- The first way ---

TEST_F(StoredText, IsTheTagFileOfTheArchive) {
  WriteBlob({{"Tag", "<Document/>\r\n"}, {"drawing.dat", "lines"}});
  const StoredTagText read = Read();
  EXPECT_EQ(read.text, "<Document/>\r\n");
  EXPECT_TRUE(read.status);
}

TEST_F(StoredText, DeletesTheTagFileAndLeavesTheOthersBesideTheBlob) {
  WriteBlob({{"Tag", "text"}, {"drawing.dat", "lines"}, {"sub/more.dat", "more"}});
  const std::string blob = machine_.Read(kBlob);
  Read();
  EXPECT_FALSE(machine_.Exists(kTagFile));
  EXPECT_EQ(machine_.Read("C:\\data\\drawing.dat"), "lines");
  EXPECT_EQ(machine_.Read("C:\\data\\sub\\more.dat"), "more");
  EXPECT_EQ(machine_.Read(kBlob), blob);
}

TEST_F(StoredText, IsTheSameWhenReadAgain) {
  WriteBlob({{"Tag", "text"}, {"drawing.dat", "lines"}});
  EXPECT_EQ(Read().text, "text\r\n");
  EXPECT_EQ(Read().text, "text\r\n");
}

TEST_F(StoredText, EndsEveryLineWithCarriageReturnAndLineFeed) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"one", "one\r\n"},
      {"one\r\n", "one\r\n"},
      {"one\n", "one\r\n"},
      {"one\r", "one\r\n"},
      {"one\r\ntwo\nthree\rfour", "one\r\ntwo\r\nthree\r\nfour\r\n"},
      {"one\r\r\ntwo", "one\r\n\r\ntwo\r\n"},
      {"one\n\rtwo", "one\r\n\r\ntwo\r\n"},
      {"\r\n", "\r\n"},
      {"\n\n", "\r\n\r\n"},
  };
  for (const auto& [bytes, text] : cases) {
    WriteBlob({{"Tag", bytes}});
    EXPECT_EQ(Read().text, text) << testing::PrintToString(bytes);
  }
}

TEST_F(StoredText, IsAnsiText) {
  WriteBlob({{"Tag", "\xC4rmel \x80"}});
  EXPECT_EQ(Read().text, "\xC3\x84rmel \xE2\x82\xAC\r\n");
}

TEST_F(StoredText, FollowsAByteOrderMark) {
  WriteBlob({{"Tag", "\xEF\xBB\xBF\xC3\x84"}});
  EXPECT_EQ(Read().text, "\xC3\x84\r\n");
  WriteBlob({{"Tag", std::string("\xFF\xFE\xC4\0\r\0\n\0x\0", 10)}});
  EXPECT_EQ(Read().text, "\xC3\x84\r\nx\r\n");
  WriteBlob({{"Tag", std::string("\xFE\xFF\0\xC4", 4)}});
  EXPECT_EQ(Read().text, "\xC3\x84\r\n");
}

TEST_F(StoredText, KeepsTheFirstWaysStatusAlsoForSapData) {
  WriteBlob({{"Tag", "<SAPDATA/>"}});
  EXPECT_TRUE(Read().status);
}

TEST_F(StoredText, FindsTheTagFileInAnyLetterCase) {
  WriteBlob({{"TAG", "text"}, {"other", ""}});
  EXPECT_EQ(Read().text, "text\r\n");
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, DoesNotLookForTheTagFileBelowTheFolder) {
  WriteBlob({{"sub/Tag", "text"}, {"other", ""}});
  ExpectNoText(Read());
}

TEST_F(StoredText, TakesATagFileThatWasThereBefore) {
  // The folder's file counts, whoever put it there.
  WriteBlob({{"one", "1"}, {"two", "2"}});
  machine_.Write(kTagFile, "left behind");
  EXPECT_EQ(Read().text, "left behind\r\n");
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, ComesWithTheArchiveUnlessWhatWasWrittenMayBeTheArchive) {
  WriteBlob({{"Tag", "text"}});
  EXPECT_EQ(Read().archive, machine_.Read(kBlob));
  machine_.Write(kTagFile, "");
  EXPECT_EQ(Read().archive, "");
  WriteBlob({{"Tag", "text"}, {"drawing.dat", "lines"}});
  EXPECT_EQ(Read().archive, machine_.Read(kBlob));
  std::filesystem::create_symlink("unit.dat", machine_.folder.Path() / "drive_c" / "data" / "link.dat");
  EXPECT_EQ(Read("C:\\data\\link.dat").archive, "");
  WriteBlob({{"Tag", "text"}, {"sub/drawing.dat", "lines"}});
  EXPECT_EQ(Read().archive, "");
  machine_.Write(kBlob, "no archive");
  EXPECT_EQ(Read().archive, "no archive");
}

// --- The second way ---

TEST_F(StoredText, IsTheOnlyFileOfTheArchiveWhenItHoldsSapData) {
  WriteBlob({{"configuration.xml", "<SAPDATA>\r\n\xC4</SAPDATA>"}});
  const StoredTagText read = Read();
  EXPECT_EQ(read.text, "<SAPDATA>\r\n\xC3\x84</SAPDATA>");
  EXPECT_FALSE(read.status);
}

TEST_F(StoredText, DoesNotCountFoldersAsFiles) {
  WriteBlob({{"sub/", ""}, {"sub/configuration.xml", "<SAPDATA/>"}});
  EXPECT_FALSE(Read().status);
}

TEST_F(StoredText, FollowsAByteOrderMarkInTheOnlyFileToo) {
  WriteBlob({{"configuration.xml", "\xEF\xBB\xBF<SAPDATA>\xC3\x84</SAPDATA>"}});
  EXPECT_EQ(Read().text, "<SAPDATA>\xC3\x84</SAPDATA>");
}

TEST_F(StoredText, IsNoneWhenTheOnlyFileHoldsNoSapData) {
  WriteBlob({{"configuration.xml", "<SapData/>"}});
  ExpectNoText(Read());
}

TEST_F(StoredText, IsNoneWhenSeveralFilesHoldSapData) {
  WriteBlob({{"a.xml", "<SAPDATA/>"}, {"b.xml", "<SAPDATA/>"}});
  ExpectNoText(Read());
}

TEST_F(StoredText, IsNoneForAnEmptyTagFileAlone) {
  WriteBlob({{"Tag", ""}});
  ExpectNoText(Read());
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, TriesTheSecondWayWhenTheTagFileIsEmpty) {
  machine_.Write(kTagFile, "");
  WriteBlob({{"configuration.xml", "<SAPDATA/>"}});
  EXPECT_FALSE(Read().status);
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

// --- No blob, a bad blob ---

TEST_F(StoredText, IsNoneWithoutABlob) {
  ExpectNoText(Read("C:\\data\\missing.dat"));
  ExpectNoText(Read("C:\\missing\\unit.dat"));
  ExpectNoText(Read("C:\\data"));
  machine_.Write(kBlob, "");
  ExpectNoText(Read());
}

TEST_F(StoredText, IsNoneForABlobWithoutANameWhateverLiesAround) {
  machine_.Write(kTagFile, "left behind");
  machine_.Write("C:\\Tag", "left behind");
  ExpectNoText(Read(""));
  EXPECT_TRUE(machine_.Exists(kTagFile));
  EXPECT_TRUE(machine_.Exists("C:\\Tag"));
}

TEST_F(StoredText, TakesATagFileThatWasLeftBesideAMissingBlob) {
  machine_.Write(kTagFile, "left behind");
  const StoredTagText read = Read("C:\\data\\missing.dat");
  EXPECT_EQ(read.text, "left behind\r\n");
  EXPECT_TRUE(read.status);
  EXPECT_EQ(read.archive, "");
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, TakesATagFileThatWasLeftBesideAnEmptyBlob) {
  machine_.Write(kTagFile, "left behind");
  machine_.Write(kBlob, "");
  EXPECT_EQ(Read().text, "left behind\r\n");
  EXPECT_FALSE(machine_.Exists(kTagFile));
  EXPECT_TRUE(machine_.Exists(kBlob));
}

TEST_F(StoredText, TakesATagFileThatWasLeftBesideABlobThatIsNoArchiveOrAFolder) {
  machine_.Write(kTagFile, "left behind");
  machine_.Write(kBlob, "no archive");
  EXPECT_EQ(Read().text, "left behind\r\n");
  EXPECT_FALSE(machine_.Exists(kTagFile));
  machine_.Write("C:\\Tag", "beside the folder");
  EXPECT_EQ(Read("C:\\data").text, "beside the folder\r\n");
  EXPECT_FALSE(machine_.Exists("C:\\Tag"));
}

TEST_F(StoredText, LeavesATagFileOfAnotherFolderThanTheMissingBlobs) {
  machine_.Write(kTagFile, "left behind");
  ExpectNoText(Read("C:\\missing\\unit.dat"));
  ExpectNoText(Read("C:\\unit.dat"));
  EXPECT_TRUE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, DoesNotTakeAnEmptyBlobNamedTagForItsContent) {
  machine_.Write(kTagFile, "");
  ExpectNoText(Read(kTagFile));
  EXPECT_TRUE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, IsNoneForABlobThatIsNoArchive) {
  machine_.Write(kBlob, "<SAPDATA/>");
  ExpectNoText(Read());
}

TEST_F(StoredText, IsNoneForATruncatedBlob) {
  WriteBlob({{"Tag", "text"}});
  const std::string blob = machine_.Read(kBlob);
  machine_.Write(kBlob, blob.substr(0, blob.size() - 1));
  ExpectNoText(Read());
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, FailsOnAHostileBlobBeforeAnythingIsWritten) {
  WriteBlob({{"Tag", "text"}, {"..\\up.dat", "x"}});
  const std::string blob = machine_.Read(kBlob);
  try {
    Read();
    FAIL() << "accepted";
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.Description(), testing::HasSubstr(kBlob));
    EXPECT_THAT(error.Description(), testing::HasSubstr("..\\up.dat"));
  }
  EXPECT_FALSE(machine_.Exists(kTagFile));
  EXPECT_FALSE(machine_.Exists("C:\\up.dat"));
  EXPECT_EQ(machine_.Read(kBlob), blob);
}

TEST_F(StoredText, IsReadFromAnArchiveWithNamesThatOldPackersGive) {
  WriteBlob({{"UNITDA~1.XML", "unit"}, {"aux.txt", "aux"}, {"readme.", "read me"}, {"tag.", "text"}});
  for (int time = 0; time < 2; ++time) {  // what the first time wrote stands in nobody's way
    EXPECT_EQ(Read().text, "text\r\n");
    EXPECT_EQ(machine_.Read("C:\\data\\UNITDA~1.XML"), "unit");
    EXPECT_EQ(machine_.Read("C:\\data\\readme"), "read me");
    EXPECT_FALSE(machine_.Exists(kTagFile));
  }
}

TEST_F(StoredText, IsTheOnlyFileAlsoWhenNoFileCanHaveItsName) {
  WriteBlob({{"aux.txt", "<SAPDATA/>"}});
  EXPECT_EQ(Read().text, "<SAPDATA/>");
}

TEST_F(StoredText, FailsOnADamagedBlobBeforeAnythingIsWritten) {
  WriteBlob({{"Tag", "text"}, {"drawing.dat", "lines"}});
  std::string blob = machine_.Read(kBlob);
  blob[blob.rfind("drawing.dat", blob.rfind("drawing.dat") - 1) + 12] ^= 0x10;
  machine_.Write(kBlob, blob);
  EXPECT_THROW(Read(), AutomationError);
  EXPECT_FALSE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, DoesNotTakeABlobNamedTagForItsContent) {
  WriteBlob({{"configuration.xml", "<SAPDATA/>"}}, kTagFile);
  const StoredTagText read = Read(kTagFile);
  EXPECT_EQ(read.text, "<SAPDATA/>");
  EXPECT_FALSE(read.status);
  EXPECT_TRUE(machine_.Exists(kTagFile));
}

TEST_F(StoredText, ReadsABlobInTheRootFolder) {
  WriteBlob({{"Tag", "text"}}, "C:\\unit.dat");
  EXPECT_EQ(Read("C:\\unit.dat").text, "text\r\n");
}

TEST_F(StoredText, ADevicePipeOrStreamIsNeverOpened) {
  for (const char* path :
       {"\\\\.\\pipe\\x", "\\\\?\\C:\\a.dat", "C:\\data\\a.dat:stream", "C:\\data\\aux.dat", "NUL"}) {
    EXPECT_EQ(test::RaisedBy([&] { Read(path); }), 75) << path;
  }
}

}  // namespace
}  // namespace parvex
