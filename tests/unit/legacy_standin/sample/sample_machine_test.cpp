#include "legacy_standin/sample/sample_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "legacy_standin/sample/sample_project.h"
#include "seams/automation_error.h"
#include "seams/xml.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kRoot = "C:\\Korvane\\TQ5-VX";

class SampleMachineTest : public testing::Test {
 protected:
  void Create() { CreateSampleMachine(Folder(), PARVEX_WORKFLOW); }

  fs::path Folder() const { return temporary_.Path() / "machine"; }

  std::uint16_t RefusedWith(const fs::path& folder, const fs::path& program) {
    try {
      CreateSampleMachine(folder, program);
    } catch (const AutomationError& error) {
      description_ = error.Description();
      return error.RuntimeNumber();
    }
    return 0;
  }

  test::TemporaryFolder temporary_;
  std::string description_;
};

/// Starts the workflow program of a machine and waits for it.
std::uint32_t RunInstalledProgram(posix::Machine& machine, const std::string& arguments) {
  const auto process = machine.GetProcesses().Start(std::string(kRoot) + "\\Bin\\\\kdwfm470.exe " + arguments, 1);
  for (std::uint32_t code = process->ExitCode();; code = process->ExitCode()) {
    if (code != kStillActive) {
      return code;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

std::string OutputValue(posix::Machine& machine, const std::string& section, const std::string& key) {
  return machine.GetPrivateProfile()
      .Section(section, std::string(kRoot) + "\\Temp\\QBOutput.ini")
      ->ReadString(key, "", 255);
}

TEST_F(SampleMachineTest, TheRegistryFileIsAsTheRegistryEditorExportsIt) {
  Create();
  EXPECT_THAT(test::ReadHostFile(Folder() / "registry.reg"), StartsWith(std::string("\xFF\xFEW\0i\0n\0", 8)));
}

TEST_F(SampleMachineTest, TheRegistryNamesTheProgramFolder) {
  Create();
  posix::Machine machine(Folder());
  EXPECT_EQ(machine.GetRegistry().LocalMachineString("SOFTWARE\\Korvane\\KDQ47", "binPath"),
            "C:\\Korvane\\TQ5-VX\\Bin\\");
}

TEST_F(SampleMachineTest, HoldsTheFoldersAndFilesOfAnInstalledApplication) {
  Create();
  posix::Machine machine(Folder());
  for (const char* name : {"Bin", "Temp", "Projects", "Archives"}) {
    EXPECT_TRUE(machine.GetFiles().IsFolder(std::string(kRoot) + "\\" + name)) << name;
  }
  for (const char* name : {"kdwfm470.exe", "UIKeys.txt", "Options.xml", "Tools.xml", "TagUpdateInfo.xml"}) {
    EXPECT_TRUE(machine.GetFiles().IsFile(std::string(kRoot) + "\\Bin\\" + name)) << name;
  }
}

TEST_F(SampleMachineTest, ItsXmlFilesParse) {
  Create();
  for (const char* name : {"Options.xml", "Tools.xml", "TagUpdateInfo.xml"}) {
    const xml::Document document =
        xml::Document::Load(test::ReadHostFile(Folder() / "drive_c/Korvane/TQ5-VX/Bin" / name));
    EXPECT_FALSE(document.IsEmpty()) << name << ": " << document.ParseError();
  }
}

TEST_F(SampleMachineTest, ThereIsAToolForEveryFamilyOfTheProject) {
  Create();
  const xml::Document tools =
      xml::Document::Load(test::ReadHostFile(Folder() / "drive_c/Korvane/TQ5-VX/Bin/Tools.xml"));
  for (const Unit& unit : SampleUnits()) {
    const std::string pdsg = FieldOf(unit.keys, "PDSG");
    EXPECT_TRUE(tools.First("//Tool[Pdsg='" + pdsg + "']/Version")) << pdsg;
  }
}

TEST_F(SampleMachineTest, TheDatabaseFindsEveryTagByFamilyVersionAndName) {
  Create();
  posix::Machine machine(Folder());
  const auto database =
      machine.GetProjectDatabases().Open(std::string(kRoot) + "\\Projects\\" + kSampleProject + "\\project.mdb");
  for (const Unit& unit : SampleUnits()) {
    const std::string pdsg = FieldOf(unit.keys, "PDSG");
    const auto rows =
        database->OpenRecordSet("SELECT * FROM TagIndex WHERE sAPP ='" + pdsg.substr(0, 3) + "' AND sAppVer='" +
                                pdsg.substr(3) + "' and sTagName='" + FieldOf(unit.keys, "MarkFor") + "'");
    ASSERT_FALSE(rows->AtEnd()) << pdsg;
    EXPECT_EQ(rows->Column("lTagId"), std::to_string(unit.tagId));
  }
}

TEST_F(SampleMachineTest, TheDatabaseHoldsTheContactProperties) {
  Create();
  posix::Machine machine(Folder());
  const auto database =
      machine.GetProjectDatabases().Open(std::string(kRoot) + "\\Projects\\" + kSampleProject + "\\Project.mdb");
  const auto rows = database->OpenRecordSet("SELECT * FROM Config WHERE sPdsg='KDQ47' and sKey='CompanyName'");
  ASSERT_FALSE(rows->AtEnd());
  EXPECT_EQ(rows->Column("sValue"), "Marsh & Lindqvist Mechanical");
}

TEST_F(SampleMachineTest, TheInstalledProgramMakesTheSelectionOfItsCommand) {
  Create();
  posix::Machine machine(Folder());
  const xml::Document command = xml::Document::Load(test::ReadHostFile(Folder() / "commands/getHybrisXMLNoUI.xml"));
  machine.GetFiles().Replace(std::string(kRoot) + "\\Temp\\HBInput.ini",
                             command.First("//UserSelectionTransfer").Xml());
  machine.GetFiles().Replace(std::string(kRoot) + "\\Temp\\QBInput.ini", "[Header]\r\naction=cancel\r\n");

  EXPECT_EQ(RunInstalledProgram(machine, "/OrlaImportNoUI"), 0u);

  EXPECT_EQ(OutputValue(machine, "Header", "Action"), "OK");
  EXPECT_EQ(OutputValue(machine, "PartNumber1", "PartNumber"), "RTUA120-460");
  EXPECT_EQ(OutputValue(machine, "Accessory1", "BaseUnit1:2"), "BU2");
  EXPECT_EQ(OutputValue(machine, "ETO Description2", "Description:3"), "Vibration isolation for a hospital roof");
  EXPECT_EQ(OutputValue(machine, "BlanketQuoteControl2", "preorderreq1"), "1");
  EXPECT_EQ(OutputValue(machine, "PartNumber3", "PDSG"), "XRC47");
  EXPECT_EQ(OutputValue(machine, "PartNumber4", "FileName"), "");
  EXPECT_EQ(OutputValue(machine, "PartNumber6", "MarkFor"), "Küche & Café <EG>");
  EXPECT_EQ(OutputValue(machine, "Warranty6", "Name:1"), "W\"FULL\"3");
  EXPECT_EQ(OutputValue(machine, "Accessory6", "Supplier:1"), " Tessel ");
  EXPECT_EQ(OutputValue(machine, "PartNumber7", "PartNumber"), "");
  for (int tag = 1; tag <= 6; ++tag) {
    const std::string archive = OutputValue(machine, "PartNumber" + std::to_string(tag), "FileName");
    EXPECT_EQ(archive.empty(), tag == 4);
    EXPECT_TRUE(archive.empty() || machine.GetFiles().IsFile(archive)) << archive;
  }
}

TEST_F(SampleMachineTest, TheInstalledProgramObeysTheMachinesSettings) {
  Create();
  test::WriteHostFile(Folder() / "standin.json", R"({"workflow":{"cancel":true,"exitCode":5}})");
  posix::Machine machine(Folder());
  EXPECT_EQ(RunInstalledProgram(machine, "/OrlaProjectImport"), 5u);
  EXPECT_EQ(OutputValue(machine, "Header", "Action"), "Cancel");
}

TEST_F(SampleMachineTest, TheInstalledProgramWritesNothingWhenTheSettingsCannotBeRead) {
  Create();
  test::WriteHostFile(Folder() / "standin.json", "{");
  posix::Machine machine(Folder());
  EXPECT_NE(RunInstalledProgram(machine, "/OrlaProjectImport"), 0u);
  EXPECT_FALSE(machine.GetFiles().IsFile(std::string(kRoot) + "\\Temp\\QBOutput.ini"));
}

TEST_F(SampleMachineTest, AnEmptyFolderIsTaken) {
  fs::create_directory(Folder());
  EXPECT_NO_THROW(Create());
}

TEST_F(SampleMachineTest, AFolderWithSomethingInItIsRefusedAndStaysAsItIs) {
  fs::create_directory(Folder());
  test::WriteHostFile(Folder() / "letter.txt", "mine");
  EXPECT_EQ(RefusedWith(Folder(), PARVEX_WORKFLOW), 75);
  EXPECT_THAT(description_, HasSubstr(Folder().string()));
  EXPECT_EQ(std::distance(fs::directory_iterator(Folder()), {}), 1);
}

TEST_F(SampleMachineTest, AFileInThePlaceOfTheFolderIsRefused) {
  test::WriteHostFile(Folder(), "mine");
  EXPECT_EQ(RefusedWith(Folder(), PARVEX_WORKFLOW), 75);
  EXPECT_EQ(test::ReadHostFile(Folder()), "mine");
}

TEST_F(SampleMachineTest, AMissingWorkflowProgramIsRefusedBeforeAnythingIsMade) {
  EXPECT_EQ(RefusedWith(Folder(), temporary_.Path() / "missing"), 53);
  EXPECT_FALSE(fs::exists(Folder()));
}

TEST_F(SampleMachineTest, AMachineMadeEarlierIsMadeAnewAndOtherFilesStay) {
  Create();
  const fs::path root = Folder() / "drive_c/Korvane/TQ5-VX";
  test::WriteHostFile(root / "Temp/QBOutput.ini", "left over");
  test::WriteHostFile(root / "Bin/Tools.xml", "<Changed/>");
  test::WriteHostFile(Folder() / "standin.json", "{}");
  Create();
  EXPECT_FALSE(fs::exists(root / "Temp/QBOutput.ini"));
  EXPECT_THAT(test::ReadHostFile(root / "Bin/Tools.xml"), HasSubstr("RTU47"));
  EXPECT_EQ(test::ReadHostFile(Folder() / "standin.json"), "{}");
}

TEST_F(SampleMachineTest, TwoMachinesHoldTheSameBytes) {
  Create();
  const fs::path other = temporary_.Path() / "other";
  CreateSampleMachine(other, PARVEX_WORKFLOW);
  int files = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(Folder())) {
    const fs::path twin = other / fs::relative(entry.path(), Folder());
    ASSERT_TRUE(fs::exists(twin)) << twin;
    if (entry.is_regular_file()) {
      EXPECT_TRUE(test::ReadHostFile(entry.path()) == test::ReadHostFile(twin)) << twin;
      ++files;
    }
  }
  EXPECT_GT(files, 8);
}

}  // namespace
}  // namespace parvex::standin
