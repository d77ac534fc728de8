#include "legacy_standin/workflow/workflow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/zip/zip_writer.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kOutput = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";

constexpr const char* kUnits = R"({"units": [
  {"tagId": 11, "keys": {"PartNumber": "P1", "PDSG": "RTU47", "MarkFor": "RTU-1"},
   "stored": {"file": "p1.blb", "place": "temp", "entries": [{"name": "Tag", "text": "<Ü/>"}]},
   "accessories": [{"keys": {"PartNumber": "A1"},
                    "stored": {"file": "a1.blb", "place": "project",
                               "entries": [{"name": "Config.xml", "deflate": false, "text": "<SAPDATA/>"}]}}]},
  {"tagId": 12, "keys": {"PartNumber": "P2", "PDSG": "FCB47", "MarkFor": "Küche & <EG>"},
   "warranties": [{"Name": "W1", "Quantity": "3"}]}]})";

class WorkflowTest : public testing::Test {
 protected:
  WorkflowTest() {
    machine_.Write("C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\units.json", kUnits);
    machine_.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBInput.ini", "[Header]\r\naction=cancel\r\nQBversion=3.9N\r\n");
    HandOver("<ProjectName>Clinic</ProjectName>");
  }

  void HandOver(const std::string& content) {
    machine_.Write("C:\\Korvane\\TQ5-VX\\Temp\\HBInput.ini",
                   "<UserSelectionTransfer>" + content + "</UserSelectionTransfer>");
  }

  WorkflowResult Run(const std::vector<std::string>& arguments = {"/OrlaImportNoUI"}) {
    return RunWorkflow({*machine_.platform.files, *machine_.platform.privateProfile, *machine_.platform.codePage},
                       test::FakeMachine::kRoot, arguments, settings_);
  }

  /// The output, as UTF-8.
  std::string Output() { return machine_.platform.codePage->FromAnsi(machine_.Read(kOutput)); }

  void ExpectCancelled(const std::string& reason) {
    const WorkflowResult result = Run();
    EXPECT_EQ(result.exitCode, kWorkflowNothingSelected);
    EXPECT_THAT(result.message, HasSubstr(reason));
    EXPECT_THAT(Output(), StartsWith("[Header]\r\nAction=Cancel\r\nReason="));
    EXPECT_THAT(Output(), HasSubstr(reason));
    EXPECT_THAT(Output(), Not(HasSubstr("[PartNumber1]")));
  }

  test::FakeMachine machine_;
  StandinSettings::Workflow settings_;
};

TEST_F(WorkflowTest, WritesTheWholeProjectWhenNoTagIsNamed) {
  const WorkflowResult result = Run();
  EXPECT_EQ(result.exitCode, kWorkflowDone);
  EXPECT_EQ(result.message, "");
  EXPECT_EQ(Output(),
            "[Header]\r\nAction=OK\r\nQBversion=3.9N\r\nProjectName=Clinic\r\n"
            "\r\n[PartNumber1]\r\nPartNumber=P1\r\nPDSG=RTU47\r\nMarkFor=RTU-1\r\n"
            "FileName=C:\\Korvane\\TQ5-VX\\Temp\\p1.blb\r\n"
            "\r\n[Accessory1]\r\nPartNumber:1=A1\r\n"
            "FileName:1=C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\a1.blb\r\n"
            "\r\n[PartNumber2]\r\nPartNumber=P2\r\nPDSG=FCB47\r\nMarkFor=Küche & <EG>\r\n"
            "\r\n[Warranty2]\r\nName:1=W1\r\nQuantity:1=3\r\n");
}

TEST_F(WorkflowTest, WritesInTheAnsiCodePage) {
  Run();
  EXPECT_THAT(machine_.Read(kOutput), HasSubstr("MarkFor=K\xFC"
                                                "che"));
}

TEST_F(WorkflowTest, PutsEveryArchiveWhereTheOutputSays) {
  Run();
  ZipWriter tag;
  tag.Add("Tag", "<\xDC/>", true);
  EXPECT_EQ(machine_.Read("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb"), tag.Finish());
  ZipWriter accessory;
  accessory.Add("Config.xml", "<SAPDATA/>", false);
  EXPECT_EQ(machine_.Read("C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\a1.blb"), accessory.Finish());
}

TEST_F(WorkflowTest, TheSameSelectionGivesTheSameBytes) {
  Run();
  const std::string output = machine_.Read(kOutput);
  const std::string archive = machine_.Read("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb");
  Run();
  EXPECT_EQ(machine_.Read(kOutput), output);
  EXPECT_EQ(machine_.Read("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb"), archive);
}

TEST_F(WorkflowTest, NamedTagsAreTakenInTheOrderOfTheirNames) {
  HandOver(
      "<ProjectName>Clinic</ProjectName><TagNames><TagName>Küche &amp; &lt;EG&gt;</TagName>"
      "<TagName>RTU-1</TagName></TagNames>");
  EXPECT_EQ(Run().exitCode, kWorkflowDone);
  EXPECT_THAT(Output(), HasSubstr("[PartNumber1]\r\nPartNumber=P2"));
  EXPECT_THAT(Output(), HasSubstr("[PartNumber2]\r\nPartNumber=P1"));
}

TEST_F(WorkflowTest, LeavesTheArchivesOfTagsThatWereNotChosenAlone) {
  HandOver("<ProjectName>Clinic</ProjectName><TagNames><TagName>Küche &amp; &lt;EG&gt;</TagName></TagNames>");
  Run();
  EXPECT_FALSE(machine_.Exists("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb"));
  EXPECT_FALSE(machine_.Exists("C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\a1.blb"));
}

TEST_F(WorkflowTest, AnEmptyListOfTagsSelectsNone) {
  HandOver("<ProjectName>Clinic</ProjectName><TagNames/>");
  EXPECT_EQ(Run().exitCode, kWorkflowDone);
  EXPECT_EQ(Output(), "[Header]\r\nAction=OK\r\nQBversion=3.9N\r\nProjectName=Clinic\r\n");
}

TEST_F(WorkflowTest, AnUnknownTagCancels) {
  HandOver("<ProjectName>Clinic</ProjectName><TagNames><TagName>RTU-9</TagName></TagNames>");
  ExpectCancelled("project \"Clinic\" has no tag \"RTU-9\"");
}

TEST_F(WorkflowTest, AnUnknownProjectCancels) {
  HandOver("<ProjectName>Elsewhere</ProjectName>");
  ExpectCancelled("there is no project \"Elsewhere\"");
}

TEST_F(WorkflowTest, AProjectNameThatLeadsElsewhereCancels) {
  HandOver("<ProjectName>Clinic\\..\\Clinic</ProjectName>");
  ExpectCancelled("there is no project");
}

TEST_F(WorkflowTest, ASelectionWithoutProjectNameCancels) {
  HandOver("");
  ExpectCancelled("names no project");
}

TEST_F(WorkflowTest, ASelectionThatDoesNotParseCancels) {
  HandOver("<ProjectName>Clinic");
  ExpectCancelled("is no XML document");
}

TEST_F(WorkflowTest, AMissingHandOverCancels) {
  machine_.platform.files->Remove("C:\\Korvane\\TQ5-VX\\Temp\\HBInput.ini");
  ExpectCancelled("HBInput.ini was not handed over");
}

TEST_F(WorkflowTest, AMissingBuilderInputCancels) {
  machine_.platform.files->Remove("C:\\Korvane\\TQ5-VX\\Temp\\QBInput.ini");
  ExpectCancelled("QBInput.ini was not handed over");
}

TEST_F(WorkflowTest, AProjectFileThatCannotBeReadCancelsAndSaysWhere) {
  machine_.Write("C:\\Korvane\\TQ5-VX\\Projects\\Clinic\\units.json", R"({"units":[{"tagId":1,"keys":{"Tons":"1"}}]})");
  ExpectCancelled("units[0].keys.Tons");
}

TEST_F(WorkflowTest, AnInteractiveRunTakesTheFirstProjectWithoutAnyHandOver) {
  machine_.platform.files->Remove("C:\\Korvane\\TQ5-VX\\Temp\\HBInput.ini");
  machine_.platform.files->Remove("C:\\Korvane\\TQ5-VX\\Temp\\QBInput.ini");
  machine_.Write("C:\\Korvane\\TQ5-VX\\Projects\\Zoo\\units.json", R"({"units":[]})");
  EXPECT_EQ(Run({"/OrlaProjectImport"}).exitCode, kWorkflowDone);
  EXPECT_THAT(Output(), StartsWith("[Header]\r\nAction=OK\r\nProjectName=Clinic\r\n"));
  EXPECT_THAT(Output(), HasSubstr("[PartNumber2]"));
}

TEST_F(WorkflowTest, AnInteractiveRunWithoutProjectsCancels) {
  machine_.platform.files->RemoveFolder("C:\\Korvane\\TQ5-VX\\Projects\\Clinic");
  EXPECT_EQ(Run({"/OrlaProjectImport"}).exitCode, kWorkflowNothingSelected);
  EXPECT_THAT(Output(), StartsWith("[Header]\r\nAction=Cancel\r\nReason=there is no project"));
}

TEST_F(WorkflowTest, WithoutAKnownSwitchNothingIsWritten) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"/OrlaImport"}, {"/OrlaImportNoUI", "/OrlaProjectImport"}}) {
    EXPECT_EQ(Run(arguments).exitCode, kWorkflowWrongUsage);
  }
  EXPECT_FALSE(machine_.Exists(kOutput));
}

TEST_F(WorkflowTest, ToldToCancelItSelectsNothing) {
  settings_.cancel = true;
  EXPECT_EQ(Run().exitCode, kWorkflowDone);
  EXPECT_EQ(Output(), "[Header]\r\nAction=Cancel\r\nReason=cancelled by its user\r\nQBversion=3.9N\r\n");
  EXPECT_FALSE(machine_.Exists("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb"));
}

TEST_F(WorkflowTest, ToldToWriteNothingItLeavesTheFolderAsItIs) {
  settings_.writeNothing = true;
  EXPECT_EQ(Run().exitCode, kWorkflowDone);
  EXPECT_FALSE(machine_.Exists(kOutput));
  EXPECT_FALSE(machine_.Exists("C:\\Korvane\\TQ5-VX\\Temp\\p1.blb"));
}

TEST_F(WorkflowTest, ToldAnExitCodeItStillDoesItsWork) {
  settings_.exitCode = 5;
  EXPECT_EQ(Run().exitCode, 5);
  EXPECT_THAT(Output(), HasSubstr("Action=OK"));
}

TEST_F(WorkflowTest, WithoutTempFolderThereIsNoOutputAndTheExitCodeSaysSo) {
  machine_.platform.files->RemoveFolder("C:\\Korvane\\TQ5-VX\\Temp");
  const WorkflowResult result = Run();
  EXPECT_EQ(result.exitCode, kWorkflowNoOutput);
  EXPECT_THAT(result.message, HasSubstr("QBOutput.ini"));
}

}  // namespace
}  // namespace parvex::standin
