#include "hybris/protected_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "hybris/blob_folder.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

constexpr const char* kTemp = "C:\\Korvane\\TQ5-VX\\Temp\\";
constexpr const char* kOutput = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";
constexpr const char* kBlob = "C:\\Korvane\\TQ5-VX\\Temp\\tag.dat";

class ProtectedFiles : public testing::Test {
 protected:
  ExportMachine export_;
  FakeMachine& machine_ = export_.machine;

  ProtectedFiles() { machine_.Write(kBlob, "the blob"); }

  /// The refusal of an archive with these entries, a harmless one first; nothing when they were unpacked.
  std::optional<std::string> Refused(const std::string& name, const std::string& blob = kBlob) {
    NamedBlobs named(export_.platform, kOutput);
    const std::string harmless = std::string(FolderOf(blob)) + "harmless.xml";
    if (machine_.Exists(harmless)) {
      machine_.platform.files->Remove(harmless);
    }
    try {
      ExtractBesideBlob(*export_.platform.files, {{"harmless.xml", "x", false}, {name, "foreign", false}}, blob,
                        &named);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.RuntimeNumber(), 5u);
      EXPECT_THAT(error.Description(), HasSubstr(blob));
      EXPECT_THAT(error.Description(), HasSubstr(name));
      EXPECT_FALSE(machine_.Exists(harmless)) << "nothing is written";
      return error.Description();
    }
    return std::nullopt;
  }
};

TEST_F(ProtectedFiles, AreThoseThatRunsAreHandedOverBy) {
  export_.Select("[Header]\r\nAction=ok\r\n");
  for (const char* name : {"QBOutput.ini", "qboutput.INI", "output.ini", "ubout.ini", "QBInput.ini", "HBInput.ini",
                           "QPblob.tmp", "input.ini", "QBOutput.ini.", "QBOutput.ini ", "sub\\input.ini"}) {
    EXPECT_TRUE(Refused(name)) << name;
  }
}

TEST_F(ProtectedFiles, AreDatabasesThatExist) {
  machine_.Write("C:\\Korvane\\TQ5-VX\\Projects\\Quay\\Project.mdb", "database");
  const std::string blob = "C:\\Korvane\\TQ5-VX\\Projects\\Quay\\tag.dat";
  machine_.Write(blob, "the blob");
  EXPECT_TRUE(Refused("PROJECT.MDB", blob));
  EXPECT_EQ(machine_.Read("C:\\Korvane\\TQ5-VX\\Projects\\Quay\\Project.mdb"), "database");
}

TEST_F(ProtectedFiles, AreSettingsThatExist) {
  for (const char* name : {"UIKeys.txt", "Options.xml", "Tools.xml", "front.ini"}) {
    machine_.Write(std::string(kTemp) + name, "settings");
    EXPECT_TRUE(Refused(name)) << name;
  }
}

TEST_F(ProtectedFiles, AreNoDatabasesAndSettingsThatTheArchiveItselfLeftThere) {
  EXPECT_FALSE(Refused("own.mdb"));
  EXPECT_FALSE(Refused("own.ini"));
  EXPECT_EQ(machine_.Read(std::string(kTemp) + "own.mdb"), "foreign");
  EXPECT_EQ(Refused("own.mdb"), std::nullopt) << "an export that is repeated unpacks the same again";
}

TEST_F(ProtectedFiles, AreTheBlobsOfTheSelection) {
  export_.Select(
      "[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=A\r\nFileName=C:\\Korvane\\TQ5-VX\\Temp\\tag.dat\r\n"
      "[PartNumber2]\r\nPartNumber=B\r\nFileName=c:/korvane\\\\tq5-vx\\.\\temp\\Gr\xF6\xDF"
      "e.dat\r\n"
      "[Accessory2]\r\nPartNumber:1=C\r\nFileName:1=C:\\Korvane\\TQ5-VX\\Bin\\..\\Temp\\extra.dat\r\n");
  EXPECT_TRUE(Refused("GRÖSSE.DAT") == std::nullopt) << "another letter, another file";
  EXPECT_TRUE(Refused("GRÖßE.dat"));
  EXPECT_TRUE(Refused("EXTRA.DAT"));
  EXPECT_TRUE(Refused("sub\\extra.dat") == std::nullopt) << "it lies elsewhere";
}

TEST_F(ProtectedFiles, AreNothingElse) {
  machine_.Write(std::string(kTemp) + "UnitData.xml", "old");
  EXPECT_FALSE(Refused("UnitData.xml"));
  EXPECT_EQ(machine_.Read(std::string(kTemp) + "UnitData.xml"), "foreign");
}

TEST_F(ProtectedFiles, AFolderOfSuchANameIsNoFile) {
  const std::vector<PackedEntry> entries = {{"input.ini", "", true}};
  ExtractBesideBlob(*export_.platform.files, entries, kBlob);
  EXPECT_TRUE(export_.platform.files->IsFolder(std::string(kTemp) + "input.ini"));
}

}  // namespace
}  // namespace parvex::test
