#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/windows/folder_machine.h"
#include "formats/jet/writer.h"
#include "seams/file_parts.h"
#include "tests/contract/contract_fixture.h"

// A folder of this Windows stands for a machine, whose files have other names there.

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class FolderMachine : public testing::Test {
 protected:
  // A machine whose code page is 1251.
  static std::string LaidOut(Files& files, const std::string& folder) {
    files.CreateFolder(folder + "\\drive_c\\Korvane");
    files.CreateFolder(folder + "\\unc\\server\\share");
    files.Replace(folder + "\\secret.txt", "outside");
    files.Replace(folder + "\\registry.reg",
                  "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\K]\r\n\"v\"=\"\xD0\"\r\n"
                  "[HKEY_CURRENT_USER\\SOFTWARE\\K]\r\n\"user\"=\"x\"\r\n");
    return folder;
  }

  ContractMachine outside;
  const std::string folder = LaidOut(outside.files, outside.Path("machine"));
  windows::FolderMachine inside{folder, 1251};
  Files& files = *inside.AsPlatform().files;
};

TEST_F(FolderMachine, APathIsOneBelowItsDrivesFolder) {
  files.Replace("C:\\Korvane\\a.txt", "a");
  EXPECT_EQ(outside.files.ReadAll(folder + "\\drive_c\\Korvane\\a.txt"), "a");
  for (const char* same : {"c:/korvane//A.TXT", "\\Korvane\\a.txt", "C:\\x\\..\\Korvane\\.\\a.txt. "}) {
    EXPECT_TRUE(files.IsFile(same)) << same;
    EXPECT_EQ(files.ReadAll(same), "a") << same;
  }
  EXPECT_EQ(ReadPart(files, "C:\\Korvane\\a.txt", 1, 5), "");
  EXPECT_FALSE(files.IsFile("D:\\Korvane\\a.txt"));
  EXPECT_FALSE(files.IsFile("C:\\Korvane\\a.txt\\"));
  EXPECT_TRUE(files.IsFolder("C:\\Korvane\\"));
  files.CreateNew("\\\\server\\share\\b.txt", "b");
  EXPECT_EQ(outside.files.ReadAll(folder + "\\unc\\server\\share\\b.txt"), "b");
}

TEST_F(FolderMachine, NoPathLeadsOutOfTheFolder) {
  const std::string host = folder + "\\secret.txt";
  EXPECT_TRUE(outside.files.IsFile(host));
  for (const std::string& path : {std::string("C:\\..\\secret.txt"), std::string("..\\secret.txt"),
                                  std::string("C:\\Korvane\\..\\..\\secret.txt"), "\\\\?\\" + host, "\\\\.\\" + host,
                                  host, std::string("\\\\server\\..\\..\\secret.txt"), std::string("C:\\nul"),
                                  std::string("CON"), std::string("C:\\Korvane\\a.txt:stream"), std::string()}) {
    EXPECT_FALSE(files.IsFile(path)) << path;
    EXPECT_NE(RaisedBy([&] { files.ReadAll(path); }), 0) << path;
    EXPECT_NE(RaisedBy([&] { files.Remove(path); }), 0) << path;
  }
  EXPECT_THAT(files.ListFiles("C:\\..\\*"), IsEmpty());
  EXPECT_THAT(files.ListFiles("C:\\..\\..\\sec*"), IsEmpty());
  files.CreateFolder("C:\\..\\..\\drive_c");
  EXPECT_TRUE(outside.files.IsFolder(folder + "\\drive_c\\drive_c"));
  EXPECT_EQ(RaisedBy([&] { files.Replace("C:\\Korvane\\nul", "x"); }), RuntimeError::PathFileAccess);
}

TEST_F(FolderMachine, ListingsAreOfTheFolder) {
  for (const char* name : {"b.ini", "A.ini", "c.txt"}) {
    files.Replace(std::string("C:\\Korvane\\") + name, "");
  }
  files.CreateFolder("C:\\Korvane\\Bin\\Deep");
  EXPECT_THAT(files.ListFiles("C:\\Korvane\\*.ini"), ElementsAre("A.ini", "b.ini"));
  EXPECT_THAT(files.ListFiles("c:\\korvane\\"), ElementsAre("A.ini", "b.ini", "c.txt"));
  EXPECT_THAT(files.ListFiles("C:\\Korvane\\*.*"), ElementsAre("A.ini", "b.ini", "c.txt"));
  EXPECT_THAT(files.ListFiles("C:\\Korvane\\c.txt"), ElementsAre("c.txt"));
  EXPECT_THAT(files.ListFolders("C:\\Korvane"), ElementsAre("Bin"));
  EXPECT_THAT(files.ListFiles("C:\\Korvane\\\"<"), IsEmpty());
  EXPECT_THAT(files.ListFiles("C:\\Nowhere\\*"), IsEmpty());
  files.RemoveFolder("C:\\Korvane\\Bin");
  EXPECT_FALSE(files.IsFolder("C:\\Korvane\\Bin"));
}

TEST_F(FolderMachine, ErrorsNameThePathThatWasAskedFor) {
  EXPECT_EQ(ErrorIn([&] { files.ReadAll("c:\\Korvane\\none.txt"); }),
            "53 cannot read \"c:\\Korvane\\none.txt\": it does not exist");
  EXPECT_EQ(RaisedBy([&] { files.ReadAll("C:\\Nowhere\\none.txt"); }), RuntimeError::PathNotFound);
  EXPECT_EQ(ErrorIn([&] { files.Replace("C:\\Korvane", "x"); }), "75 cannot write \"C:\\Korvane\": it is a folder");
  files.Replace("C:\\Korvane\\a", "");
  EXPECT_EQ(ErrorIn([&] { files.CreateFolder("C:\\Korvane\\a\\b"); }),
            "75 cannot make the folder \"C:\\Korvane\\a\": a file has this name");
  EXPECT_EQ(RaisedBy([&] { files.CreateNew("C:\\Korvane\\a", ""); }), RuntimeError::FileExists);
  EXPECT_EQ(RaisedBy([&] { files.CreateFolder("D:\\x"); }), RuntimeError::PathNotFound);
  for (const char* path : {"C:\\Nowhere\\a", "C:\\Korvane\\?"}) {
    EXPECT_THAT(DescriptionOfErrorIn([&] { files.Replace(path, ""); }), Not(HasSubstr("drive_c"))) << path;
  }
}

TEST_F(FolderMachine, APathMayBeLongerThanTheSystemsOwnLimit) {
  const std::string deep =
      "C:\\Korvane\\" + std::string(100, 'a') + "\\" + std::string(100, 'b') + "\\" + std::string(100, 'c');
  files.CreateFolder(deep);
  files.Replace(deep + "\\a.txt", "x");
  EXPECT_EQ(files.ReadAll(deep + "\\a.txt"), "x");
  EXPECT_THAT(files.ListFiles(deep + "\\*"), ElementsAre("a.txt"));
  files.RemoveFolder("C:\\Korvane\\" + std::string(100, 'a'));
}

TEST_F(FolderMachine, TheRegistryIsTheTextInTheFolder) {
  Registry& registry = *inside.AsPlatform().registry;
  EXPECT_EQ(registry.LocalMachineString("Software\\K\\", "V"), "\u0420") << "in the code page of the machine";
  EXPECT_FALSE(registry.LocalMachineString("Software\\K", "user"));
  EXPECT_FALSE(registry.LocalMachineString("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "SystemRoot"));
}

TEST_F(FolderMachine, IniFilesAndDatabasesAreThoseOfTheFolder) {
  const Platform machine = inside.AsPlatform();
  files.CreateFolder("C:\\Windows");
  EXPECT_TRUE(machine.privateProfile->Section("s", "own.ini")->WriteString("k", "\u0420"));
  EXPECT_EQ(outside.files.ReadAll(folder + "\\drive_c\\Windows\\own.ini"), "[s]\r\nk=\xD0\r\n");
  outside.files.Replace(folder + "\\drive_c\\Windows\\own.ini", "[s]\r\nk=2\r\n");
  EXPECT_EQ(machine.privateProfile->Section("S", "C:\\WINDOWS\\own.ini")->ReadInteger("K", 0), 2);

  const std::vector<standin::JetTable> tables = {{"T", {{"a"}}, {{"x"}}}};
  files.Replace("C:\\Korvane\\p.mdb", standin::MakeJetDatabase(tables, jet::Version::Jet4));
  const auto rows = machine.projectDatabases->Open("C:\\Korvane\\P.MDB")->OpenRecordSet("SELECT * FROM T");
  EXPECT_EQ(rows->Column("a"), "x");
  EXPECT_THAT(DescriptionOfErrorIn([&] { machine.projectDatabases->Open("C:\\Korvane\\q.mdb"); }),
              HasSubstr("\"C:\\Korvane\\q.mdb\""));
}

TEST_F(FolderMachine, TheCodePageIsTheMachines) {
  CodePage& codePage = *inside.AsPlatform().codePage;
  EXPECT_EQ(codePage.FromAnsi("\xD0"), "\u0420");
  EXPECT_EQ(codePage.ToAnsi("\u0420\u00E9"), "\xD0?");
  EXPECT_TRUE(codePage.IsSingleByte());
  EXPECT_EQ(RaisedBy([&] { windows::FolderMachine(folder, 12345); }), RuntimeError::InvalidCall);
}

TEST_F(FolderMachine, AFolderThatDoesNotExistIsRefused) {
  EXPECT_EQ(RaisedBy([&] { windows::FolderMachine(folder + "-none", 1252); }), RuntimeError::PathNotFound);
}

}  // namespace
}  // namespace parvex::test
