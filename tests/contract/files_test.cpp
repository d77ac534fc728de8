#include "seams/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include "seams/file_parts.h"
#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FilesContract : public testing::Test {
 protected:
  ContractMachine machine;
  Files& files = machine.files;

  std::string Path(std::string_view name) const { return machine.Path(name); }
  void Write(std::string_view name, std::string_view bytes) { files.Replace(Path(name), bytes); }
};

const std::string kAllBytes = [] {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
  }
  return bytes;
}();

TEST_F(FilesContract, ReadsBackEveryByteThatWasWritten) {
  Write("bytes.bin", kAllBytes);
  EXPECT_EQ(files.ReadAll(Path("bytes.bin")), kAllBytes);
}

TEST_F(FilesContract, AnEmptyFileIsAFile) {
  Write("empty", "");
  EXPECT_TRUE(files.IsFile(Path("empty")));
  EXPECT_EQ(files.ReadAll(Path("empty")), "");
}

TEST_F(FilesContract, AMissingFileIsSeenAsSoonAsItIsWrittenThoughManyLooksAreExpected) {
  const auto looks = files.ExpectManyLooks();
  for (int look = 0; look < 3; ++look) {
    EXPECT_FALSE(files.IsFile(Path("Tag")));
  }
  Write("Tag", "t");
  EXPECT_TRUE(files.IsFile(Path("Tag")));
  files.Remove(Path("Tag"));
  EXPECT_FALSE(files.IsFile(Path("tag")));
}

TEST_F(FilesContract, AMissingFileThatAnotherWritesIsSeenThoughManyLooksAreExpected) {
  machine.InstallProbe(Path("probe.exe"));
  const auto looks = files.ExpectManyLooks();
  for (int look = 0; look < 3; ++look) {
    EXPECT_FALSE(files.IsFile(Path(ContractMachine::kProbeReport)));
  }
  WaitForExit(*machine.processes.Start(Path("probe.exe"), 0));
  bool isSeen = false;
  for (int look = 0; look < 100 && !isSeen; ++look) {
    isSeen = files.IsFile(Path(ContractMachine::kProbeReport));
    machine.messagePump.Sleep(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(isSeen);
}

TEST_F(FilesContract, AFolderCanBeRemovedThoughManyLooksInItAreExpected) {
  files.CreateFolder(Path("Blobs"));
  const auto looks = files.ExpectManyLooks();
  for (int look = 0; look < 3; ++look) {
    EXPECT_FALSE(files.IsFile(Path("Blobs\\Tag")));
  }
  files.RemoveFolder(Path("Blobs"));
  files.CreateFolder(Path("Blobs"));
  Write("Blobs\\Tag", "t");
  EXPECT_TRUE(files.IsFile(Path("Blobs\\Tag")));
}

TEST_F(FilesContract, PathsOfEveryFormAreAnsweredAlikeThoughManyLooksAreExpected) {
  const auto looks = files.ExpectManyLooks();
  for (const std::string& missing : {std::string(), std::string("Q"), std::string("Q:"), std::string("no such file"),
                                     std::string("Q:\\no"), std::string("\\\\")}) {
    EXPECT_FALSE(files.IsFile(missing)) << missing;
    EXPECT_FALSE(files.IsFile(missing)) << missing;
  }
}

TEST_F(FilesContract, APathOfThousandsOfNamesIsNoFileAndNoFolderIsMadeOfIt) {
  std::string path = Path("deep");
  for (int name = 0; name < 20'000; ++name) {
    path += "\\a";
  }
  EXPECT_FALSE(files.IsFile(path));
  EXPECT_FALSE(files.IsFolder(path));
  EXPECT_EQ(test::RaisedBy([&] { files.CreateFolder(path); }), 75);
  EXPECT_NE(test::RaisedBy([&] { files.CreateNew(path, "x"); }), 0);
  EXPECT_NE(test::RaisedBy([&] { files.ReadAll(path); }), 0);
  EXPECT_FALSE(files.IsFolder(Path("deep")));
}

TEST_F(FilesContract, ReadsALargeFileWhole) {
  std::string large(5'000'003, 'x');
  large.back() = 'y';
  Write("large", large);
  EXPECT_TRUE(files.ReadAll(Path("large")) == large);
}

TEST_F(FilesContract, ReadsAPartOfAFileAsFarAsItGoes) {
  Write("parts", "0123456789");
  EXPECT_EQ(ReadPart(files, Path("parts"), 0, 4), "0123");
  EXPECT_EQ(ReadPart(files, Path("parts"), 8, 4), "89");
  EXPECT_EQ(ReadPart(files, Path("parts"), 10, 4), "");
  EXPECT_EQ(ReadPart(files, Path("parts"), std::uint64_t{1} << 40, 4), "");
  EXPECT_EQ(RaisedBy([&] { ReadPart(files, Path("none"), 0, 4); }), RaisedBy([&] { files.ReadAll(Path("none")); }));
}

TEST_F(FilesContract, LetterCaseOfFoldersAndFilesDoesNotMatter) {
  files.CreateFolder(Path("Bin"));
  Write("Bin\\Tools.xml", "t");
  EXPECT_EQ(files.ReadAll(Path("BIN\\tOOLS.XML")), "t");
  EXPECT_TRUE(files.IsFolder(Path("bin")));
}

TEST_F(FilesContract, LetterCaseOfLettersBeyondAsciiDoesNotMatter) {
  Write("Gerät Größe.txt", "g");
  EXPECT_EQ(files.ReadAll(Path("GERÄT GRÖßE.TXT")), "g");
}

TEST_F(FilesContract, LettersOfOtherAlphabetsHaveOneCaseToo) {
  Write("ж λ ž.txt", "one");
  Write("Ж Λ Ž.txt", "two");
  EXPECT_EQ(files.ReadAll(Path("ж λ ž.txt")), "two");
  EXPECT_THAT(files.ListFiles(Path("*.txt")), ElementsAre("ж λ ž.txt"));
  Write("ß.dat", "one");
  Write("ss.dat", "two");
  EXPECT_THAT(files.ListFiles(Path("*.dat")), ElementsAre("ss.dat", "ß.dat")) << "what needs two capitals has none";
}

TEST_F(FilesContract, NamesAreSortedByTheCapitalsOfEveryAlphabet) {
  for (const char* name : {"жб", "ЖА", "жв"}) {
    Write(name, "");
  }
  EXPECT_THAT(files.ListFiles(Path("*")), ElementsAre("ЖА", "жб", "жв"));
}

TEST_F(FilesContract, DoubledAndForwardSlashesSeparateAsOneBackslash) {
  files.CreateFolder(Path("Bin"));
  Write("Bin\\\\a.txt", "a");
  EXPECT_EQ(files.ReadAll(Path("Bin\\a.txt")), "a");
  EXPECT_EQ(files.ReadAll(Path("Bin//a.txt")), "a");
  EXPECT_EQ(files.ReadAll(Path("\\Bin\\/\\a.txt")), "a");
}

TEST_F(FilesContract, DotsInAPathAreResolvedInItsText) {
  Write("a.txt", "a");
  EXPECT_EQ(files.ReadAll(Path(".\\a.txt")), "a");
  EXPECT_EQ(files.ReadAll(Path("no such folder\\..\\a.txt")), "a");
}

TEST_F(FilesContract, DotDotDoesNotLeadAboveTheDrive) {
  Write("a.txt", "a");
  const std::string fromRoot = machine.scratch.substr(2) + "\\a.txt";
  EXPECT_EQ(files.ReadAll(machine.scratch.substr(0, 2) + "\\..\\..\\..\\..\\..\\.." + fromRoot), "a");
}

TEST_F(FilesContract, DotsAndBlanksAtTheEndOfANameAreDropped) {
  Write("a.txt. .", "a");
  EXPECT_EQ(files.ReadAll(Path("a.txt")), "a");
  EXPECT_EQ(files.ReadAll(Path("a.txt ")), "a");
}

TEST_F(FilesContract, AFolderIsNoFileAndAFileIsNoFolder) {
  files.CreateFolder(Path("folder"));
  Write("file", "f");
  EXPECT_FALSE(files.IsFile(Path("folder")));
  EXPECT_FALSE(files.IsFolder(Path("file")));
  EXPECT_FALSE(files.IsFile(Path("file\\")));
  EXPECT_TRUE(files.IsFolder(Path("folder\\")));
}

TEST_F(FilesContract, WhatDoesNotExistIsNeither) {
  const std::vector<std::string> missing = {"", Path("no"), Path("no\\no"), "Q:\\no", "error\\no"};
  for (const std::string& path : missing) {
    EXPECT_FALSE(files.IsFile(path)) << path;
    EXPECT_FALSE(files.IsFolder(path)) << path;
  }
}

TEST_F(FilesContract, ReadingAMissingFileIsFileNotFound) {
  EXPECT_EQ(RaisedBy([&] { files.ReadAll(Path("no.txt")); }), 53);
}

TEST_F(FilesContract, ReadingBelowAMissingFolderIsPathNotFound) {
  EXPECT_EQ(RaisedBy([&] { files.ReadAll(Path("no\\no.txt")); }), 76);
}

TEST_F(FilesContract, ReadingAFolderIsAnAccessError) {
  files.CreateFolder(Path("folder"));
  EXPECT_EQ(RaisedBy([&] { files.ReadAll(Path("folder")); }), 75);
}

TEST_F(FilesContract, AnErrorNamesThePath) {
  try {
    files.ReadAll(Path("no such file.txt"));
    FAIL() << "nothing raised";
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.Description(), testing::HasSubstr(Path("no such file.txt")));
  }
}

TEST_F(FilesContract, ReplaceTakesTheWholePlaceOfALongerFile) {
  Write("a.txt", "long content");
  Write("A.TXT", "b");
  EXPECT_EQ(files.ReadAll(Path("a.txt")), "b");
  EXPECT_THAT(files.ListFiles(Path("*.*")), ElementsAre("a.txt"));
}

TEST_F(FilesContract, ReplaceNeedsItsFolder) {
  EXPECT_EQ(RaisedBy([&] { Write("no\\a.txt", "a"); }), 76);
  EXPECT_FALSE(files.IsFolder(Path("no")));
}

TEST_F(FilesContract, AFileIsNoFolderForOthers) {
  Write("file", "f");
  EXPECT_EQ(RaisedBy([&] { Write("file\\a.txt", "a"); }), 76);
  EXPECT_EQ(files.ReadAll(Path("file")), "f");
}

TEST_F(FilesContract, AFolderIsNotReplacedByAFile) {
  files.CreateFolder(Path("folder"));
  Write("folder\\inside.txt", "i");
  EXPECT_EQ(RaisedBy([&] { Write("FOLDER", "a"); }), 75);
  EXPECT_EQ(files.ReadAll(Path("folder\\inside.txt")), "i");
  EXPECT_THAT(files.ListFiles(Path("")), IsEmpty());
}

TEST_F(FilesContract, AReadOnlyFileIsNotReplacedNorRemoved) {
  Write("kept.txt", "old");
  machine.SetReadOnly(Path("kept.txt"), true);
  EXPECT_EQ(RaisedBy([&] { Write("kept.txt", "new"); }), 75);
  EXPECT_EQ(RaisedBy([&] { files.Remove(Path("kept.txt")); }), 75);
  EXPECT_EQ(files.ReadAll(Path("kept.txt")), "old");
  EXPECT_THAT(files.ListFiles(Path("*")), ElementsAre("kept.txt"));
  machine.SetReadOnly(Path("kept.txt"), false);
  Write("kept.txt", "new");
  EXPECT_EQ(files.ReadAll(Path("kept.txt")), "new");
}

TEST_F(FilesContract, CreateNewMakesAFile) {
  files.CreateNew(Path("new.txt"), kAllBytes);
  EXPECT_EQ(files.ReadAll(Path("new.txt")), kAllBytes);
  EXPECT_THAT(files.ListFiles(Path("*")), ElementsAre("new.txt"));
}

TEST_F(FilesContract, CreateNewLeavesAnExistingFileAsItIsWhateverItsLetterCase) {
  Write("old.txt", "old");
  EXPECT_EQ(RaisedBy([&] { files.CreateNew(Path("OLD.txt"), "new"); }), 58);
  EXPECT_EQ(files.ReadAll(Path("old.txt")), "old");
  EXPECT_THAT(files.ListFiles(Path("*")), ElementsAre("old.txt"));
}

TEST_F(FilesContract, CreateNewNeedsItsFolder) {
  EXPECT_EQ(RaisedBy([&] { files.CreateNew(Path("no\\a.txt"), "a"); }), 76);
}

TEST_F(FilesContract, RemoveTakesAFileAway) {
  Write("a.txt", "a");
  files.Remove(Path("A.txt"));
  EXPECT_FALSE(files.IsFile(Path("a.txt")));
}

TEST_F(FilesContract, RemovingAMissingFileIsFileNotFound) {
  EXPECT_EQ(RaisedBy([&] { files.Remove(Path("a.txt")); }), 53);
}

TEST_F(FilesContract, RemoveDoesNotTakeAFolder) {
  files.CreateFolder(Path("folder"));
  EXPECT_NE(RaisedBy([&] { files.Remove(Path("folder")); }), 0);
  EXPECT_TRUE(files.IsFolder(Path("folder")));
}

struct NameRow {
  const char* name;
  const char* reason;
};

class ImpossibleNames : public FilesContract, public testing::WithParamInterface<NameRow> {};

TEST_P(ImpossibleNames, AreNeitherFoundNorMade) {
  EXPECT_FALSE(files.IsFile(Path(GetParam().name))) << GetParam().reason;
  EXPECT_NE(RaisedBy([&] { files.ReadAll(Path(GetParam().name)); }), 0) << GetParam().reason;
  EXPECT_NE(RaisedBy([&] { Write(GetParam().name, "x"); }), 0) << GetParam().reason;
  EXPECT_THAT(files.ListFiles(Path("*")), IsEmpty()) << GetParam().reason;
}

INSTANTIATE_TEST_SUITE_P(FilesContract, ImpossibleNames,
                         testing::Values(NameRow{"a*b", "a wildcard"}, NameRow{"a?b", "a wildcard"},
                                         NameRow{"a<b", "a redirection sign"}, NameRow{"a>b", "a redirection sign"},
                                         NameRow{"a\"b", "a quote"}, NameRow{"a|b", "a pipe sign"},
                                         NameRow{"a\tb", "a control character"},
                                         NameRow{"a\nb", "a control character"}));

TEST_F(FilesContract, ListsFilesInTheOrderOfTheirUpperCasedNames) {
  for (const char* name : {"b.txt", "C.txt", "a_1.txt", "A2.txt", "Z.TXT", "é.txt"}) {
    Write(name, "");
  }
  files.CreateFolder(Path("a folder.txt"));
  EXPECT_THAT(files.ListFiles(Path("*.txt")), ElementsAre("A2.txt", "a_1.txt", "b.txt", "C.txt", "Z.TXT", "é.txt"));
}

TEST_F(FilesContract, EveryFileMatchesStarDotStarAndAnEmptyLastComponent) {
  Write("plain", "");
  Write("a.b.c", "");
  EXPECT_THAT(files.ListFiles(Path("*.*")), ElementsAre("a.b.c", "plain"));
  EXPECT_THAT(files.ListFiles(Path("*")), ElementsAre("a.b.c", "plain"));
  EXPECT_THAT(files.ListFiles(Path("")), ElementsAre("a.b.c", "plain"));
}

TEST_F(FilesContract, APatternWithoutWildcardsListsThatFileByItsOwnName) {
  Write("Tools.xml", "");
  files.CreateFolder(Path("Folder"));
  EXPECT_THAT(files.ListFiles(Path("TOOLS.XML")), ElementsAre("Tools.xml"));
  EXPECT_THAT(files.ListFiles(Path("Folder")), IsEmpty());
  EXPECT_THAT(files.ListFiles(Path("no")), IsEmpty());
}

TEST_F(FilesContract, WildcardsMatchWithoutRegardToLetterCase) {
  for (const char* name : {"Report1.RTF", "report2.rtf", "report10.rtf", "other.doc"}) {
    Write(name, "");
  }
  EXPECT_THAT(files.ListFiles(Path("REPORT?.rtf")), ElementsAre("Report1.RTF", "report2.rtf"));
  EXPECT_THAT(files.ListFiles(Path("*o*t*.*")), ElementsAre("other.doc", "Report1.RTF", "report10.rtf", "report2.rtf"));
}

TEST_F(FilesContract, ListsNothingOfAMissingFolder) {
  EXPECT_THAT(files.ListFiles(Path("no\\*.*")), IsEmpty());
  EXPECT_THAT(files.ListFolders(Path("no")), IsEmpty());
  EXPECT_THAT(files.ListFiles(""), IsEmpty());
}

TEST_F(FilesContract, ListsFoldersWithoutFiles) {
  Write("file", "");
  files.CreateFolder(Path("b"));
  files.CreateFolder(Path("A"));
  EXPECT_THAT(files.ListFolders(machine.scratch), ElementsAre("A", "b"));
  EXPECT_THAT(files.ListFolders(machine.scratch + "\\"), ElementsAre("A", "b"));
}

TEST_F(FilesContract, CreateFolderMakesTheFoldersAboveIt) {
  files.CreateFolder(Path("a\\b\\c"));
  EXPECT_TRUE(files.IsFolder(Path("a\\b\\c")));
  Write("a\\b\\c\\kept", "k");
  files.CreateFolder(Path("A\\B\\C\\"));
  EXPECT_EQ(files.ReadAll(Path("a\\b\\c\\kept")), "k");
  EXPECT_THAT(files.ListFolders(machine.scratch), ElementsAre("a"));
}

TEST_F(FilesContract, CreateFolderDoesNotTakeTheNameOfAFile) {
  Write("file", "f");
  EXPECT_NE(RaisedBy([&] { files.CreateFolder(Path("file")); }), 0);
  EXPECT_NE(RaisedBy([&] { files.CreateFolder(Path("file\\below")); }), 0);
  EXPECT_EQ(files.ReadAll(Path("file")), "f");
}

TEST_F(FilesContract, RemoveFolderTakesEverythingInIt) {
  files.CreateFolder(Path("a\\b"));
  Write("a\\b\\file", "f");
  Write("a\\file", "f");
  files.RemoveFolder(Path("A"));
  EXPECT_FALSE(files.IsFolder(Path("a")));
}

TEST_F(FilesContract, RemoveFolderNeedsAFolder) {
  Write("file", "f");
  EXPECT_EQ(RaisedBy([&] { files.RemoveFolder(Path("no")); }), 76);
  EXPECT_NE(RaisedBy([&] { files.RemoveFolder(Path("file")); }), 0);
  EXPECT_EQ(files.ReadAll(Path("file")), "f");
}

// Number and text, the same on every platform.
TEST_F(FilesContract, EachFailureHasItsNumberAndItsText) {
  files.CreateFolder(Path("folder"));
  Write("file", "f");
  Write("kept", "k");
  machine.SetReadOnly(Path("kept"), true);
  const auto quoted = [&](std::string_view name) { return "\"" + Path(name) + "\": "; };
  const auto read = [&](std::string_view name) { return ErrorIn([&] { files.ReadAll(Path(name)); }); };
  EXPECT_EQ(read("no"), "53 cannot read " + quoted("no") + "it does not exist");
  EXPECT_EQ(read("no\\no"), "76 cannot read " + quoted("no\\no") + "its folder does not exist");
  EXPECT_EQ(read("folder"), "75 cannot read " + quoted("folder") + "it is a folder");
  EXPECT_EQ(read("a*b"), "53 cannot read " + quoted("a*b") + "it does not exist");

  const auto replace = [&](std::string_view name) { return ErrorIn([&] { files.Replace(Path(name), "x"); }); };
  const auto create = [&](std::string_view name) { return ErrorIn([&] { files.CreateNew(Path(name), "x"); }); };
  for (const auto& write : {std::function<std::string(std::string_view)>(replace), {create}}) {
    EXPECT_EQ(write("no\\a"), "76 cannot write " + quoted("no\\a") + "its folder does not exist");
    EXPECT_EQ(write("file\\a"), "76 cannot write " + quoted("file\\a") + "its folder does not exist");
    EXPECT_EQ(write("folder"), "75 cannot write " + quoted("folder") + "it is a folder");
    EXPECT_EQ(write("a*b"), "75 cannot write " + quoted("a*b") + "nothing can have this name");
  }
  EXPECT_EQ(replace("kept"), "75 cannot write " + quoted("kept") + "it is read-only");
  EXPECT_EQ(create("file"), "58 cannot write " + quoted("file") + "the name is taken");
  EXPECT_EQ(create("kept"), "58 cannot write " + quoted("kept") + "the name is taken");

  const auto remove = [&](std::string_view name) { return ErrorIn([&] { files.Remove(Path(name)); }); };
  EXPECT_EQ(remove("no"), "53 cannot remove " + quoted("no") + "it does not exist");
  EXPECT_EQ(remove("no\\no"), "76 cannot remove " + quoted("no\\no") + "its folder does not exist");
  EXPECT_EQ(remove("folder"), "75 cannot remove " + quoted("folder") + "it is a folder");
  EXPECT_EQ(remove("kept"), "75 cannot remove " + quoted("kept") + "it is read-only");

  const auto make = [&](std::string_view name) { return ErrorIn([&] { files.CreateFolder(Path(name)); }); };
  EXPECT_EQ(make("file"), "75 cannot make the folder " + quoted("file") + "a file has this name");
  EXPECT_EQ(make("file\\below"), "75 cannot make the folder " + quoted("file") + "a file has this name");
  EXPECT_EQ(make("a*b"), "75 cannot make the folder " + quoted("a*b") + "nothing can have this name");

  const auto unmake = [&](std::string_view name) { return ErrorIn([&] { files.RemoveFolder(Path(name)); }); };
  EXPECT_EQ(unmake("no"), "76 cannot remove the folder " + quoted("no") + "it does not exist");
  EXPECT_EQ(unmake("file"), "75 cannot remove the folder " + quoted("file") + "it is no folder");
  machine.SetReadOnly(Path("kept"), false);
}

TEST_F(FilesContract, AFolderMadeAgainInAnotherLetterCaseIsFound) {
  files.CreateFolder(Path("Temp"));
  Write("Temp\\a.txt", "1");
  EXPECT_EQ(files.ReadAll(Path("TEMP\\A.TXT")), "1");
  files.RemoveFolder(Path("Temp"));
  EXPECT_FALSE(files.IsFile(Path("TEMP\\A.TXT")));
  files.CreateFolder(Path("temp"));
  Write("temp\\a.txt", "2");
  EXPECT_EQ(files.ReadAll(Path("TEMP\\A.TXT")), "2");
}

}  // namespace
}  // namespace parvex::test
