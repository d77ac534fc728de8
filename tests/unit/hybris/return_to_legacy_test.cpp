#include "hybris/return_to_legacy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codec/bin_encoder.h"
#include "tests/support/full_disk.h"
#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kSelectionFile = "C:\\Korvane\\TQ5-VX\\Temp\\QPblob.tmp";
constexpr const char* kInstructionFile = "C:\\Korvane\\TQ5-VX\\Temp\\input.ini";

class ReturnToLegacyTest : public testing::Test {
 protected:
  FakeMachine machine;
  LegacyLink link{machine.platform};

  xml::Document Return(const std::string& attributes, const std::string& baseUnits = "") {
    return Return(link, attributes, baseUnits);
  }
  static xml::Document Return(LegacyLink& through, const std::string& attributes, const std::string& baseUnits = "") {
    return ReturnTagToLegacy(
        through, xml::Document::Parse("<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG>"
                                      "<ATTRIBUTES_LIST>" +
                                      attributes + "</ATTRIBUTES_LIST><BASEUNITS>" + baseUnits +
                                      "</BASEUNITS></TAG></TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>"));
  }

  std::string Outcome(const xml::Document& reply) {
    return reply.First("//returnError").Text() + " " + reply.First("//errorMessage").Text();
  }

  FakeMessageBoxes::Box Box(const std::string& text) {
    return {text, std::string(kDefaultCaption), MessageBoxes::Icon::None};
  }

  void ExpectNothingWritten() {
    EXPECT_FALSE(machine.Exists(kSelectionFile));
    EXPECT_FALSE(machine.Exists(kInstructionFile));
  }
};

TEST_F(ReturnToLegacyTest, WithoutPdsgTheTagDidNotOriginateHereAndNothingIsWritten) {
  EXPECT_EQ(Outcome(Return("<BLOB>TWFu</BLOB>")), "-1 Tag document PDSG is missing");
  EXPECT_THAT(machine.boxes.boxes, ElementsAre(Box("This Tag did not originate from Legacy ORLA. Cannot Import it.")));
  ExpectNothingWritten();
}

TEST_F(ReturnToLegacyTest, WithoutBlobAnAppliedChillerIsNotSupported) {
  EXPECT_EQ(Outcome(Return("<PDSG>XR100</PDSG>")), "-1 Tag document BLOB is missing");
  EXPECT_THAT(machine.boxes.boxes, ElementsAre(Box("Returning Applied Chiller Tags to ORLA is not supported.")));
  ExpectNothingWritten();
}

TEST_F(ReturnToLegacyTest, WithoutBlobAnyOtherUnitDidNotOriginateHere) {
  for (const char* pdsg : {"38A", "xr1", "X", "", "AXR"}) {
    machine.boxes.boxes.clear();
    EXPECT_EQ(Outcome(Return("<PDSG>" + std::string(pdsg) + "</PDSG>")), "-1 Tag document BLOB is missing") << pdsg;
    EXPECT_THAT(machine.boxes.boxes, ElementsAre(Box("Only units that originated in ORLA can be returned to ORLA")));
  }
}

TEST_F(ReturnToLegacyTest, LeavesTheSelectionAndTheInstructionsForIt) {
  EXPECT_EQ(Outcome(Return("<PDSG>38A</PDSG><BLOB><![CDATA[TWFuAP8=]]></BLOB>")), "0 No error");
  EXPECT_EQ(machine.Read(kSelectionFile), std::string("Man\0\xFF", 5));
  EXPECT_EQ(machine.Read(kInstructionFile),
            "[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=C:\\Korvane\\TQ5-VX\\Temp\\QPblob.tmp\r\n");
  EXPECT_THAT(machine.boxes.boxes, IsEmpty());
}

TEST_F(ReturnToLegacyTest, ReplacesTheFilesOfAnEarlierCall) {
  machine.Write(kSelectionFile, "old and longer than the new one");
  machine.Write(kInstructionFile, "[Header]\r\nAction=old\r\nOther=1\r\n");
  Return("<PDSG>38A</PDSG><BLOB>TWFu</BLOB>");
  EXPECT_EQ(machine.Read(kSelectionFile), "Man");
  EXPECT_THAT(machine.Read(kInstructionFile), testing::Not(testing::HasSubstr("Other")));
}

TEST_F(ReturnToLegacyTest, FailedCallsLeaveEarlierFilesUntouched) {
  machine.Write(kSelectionFile, "old");
  machine.Write(kInstructionFile, "old");
  Return("");
  Return("<PDSG>38A</PDSG>");
  EXPECT_EQ(machine.Read(kSelectionFile), "old");
  EXPECT_EQ(machine.Read(kInstructionFile), "old");
}

TEST_F(ReturnToLegacyTest, EmptyElementsCountAsPresent) {
  EXPECT_EQ(Outcome(Return("<PDSG/><BLOB/>")), "0 No error");
  EXPECT_EQ(machine.Read(kSelectionFile), "");
}

TEST_F(ReturnToLegacyTest, InvalidBase64IsReadLeniently) {
  EXPECT_EQ(Outcome(Return("<PDSG>38A</PDSG><BLOB>TW?u</BLOB>")), "0 No error");
  EXPECT_EQ(machine.Read(kSelectionFile), DecodeBase64("TW?u"));
}

TEST_F(ReturnToLegacyTest, LineBreaksInTheBlobCountAsTheReaderDeliversThem) {
  Return("<PDSG>38A</PDSG><BLOB><![CDATA[TWFu\r\nTWFu]]></BLOB>");
  EXPECT_EQ(machine.Read(kSelectionFile), DecodeBase64("TWFu\nTWFu"));
}

TEST_F(ReturnToLegacyTest, ShowsEveryComponentOfTheDocumentOnceForEveryBaseUnit) {
  const std::string components =
      "<COMPONENTS><COMPONENT N=\"1\"/><COMPONENT N=\"2\"/><COMPONENT N=\"3\"/></COMPONENTS>";
  const std::string unit = "<BASEUNIT>" + components + "</BASEUNIT>";
  EXPECT_EQ(Outcome(Return("<PDSG>38A</PDSG><BLOB/>", unit + unit)), "0 No error");
  ASSERT_THAT(machine.boxes.boxes, SizeIs(12));
  for (std::size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(machine.boxes.boxes[i], Box("<COMPONENT N=\"" + std::to_string(i % 3 + 1) + "\"/>"));
  }
}

TEST_F(ReturnToLegacyTest, WithoutBaseUnitsShowsNothing) {
  Return("<PDSG>38A</PDSG><BLOB/>");
  EXPECT_THAT(machine.boxes.boxes, IsEmpty());
}

TEST_F(ReturnToLegacyTest, AcceptsOnlyTheReturnCommandsOwnPlaceForTheDocument) {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG><BLOB/>"
      "</ATTRIBUTES_LIST></TAG></TAGS></PROJECT></PARAMETER></COMMAND>");
  EXPECT_EQ(Outcome(ReturnTagToLegacy(link, command)), "-1 Tag document PDSG is missing");
}

TEST_F(ReturnToLegacyTest, MissingTempFolderEndsTheCallAndLeavesNoHalfFile) {
  machine.platform.files->RemoveFolder("C:\\Korvane\\TQ5-VX\\Temp");
  EXPECT_EQ(RaisedBy([&] { Return("<PDSG>38A</PDSG><BLOB>TWFu</BLOB>"); }), RuntimeError::PathNotFound);
  ExpectNothingWritten();
}

TEST_F(ReturnToLegacyTest, OnAFullDiskEndsTheCallAndLeavesNoHalfFile) {
  for (int room = 0; room <= 3; ++room) {
    machine.Write(kSelectionFile, "old");
    machine.Write(kInstructionFile, "old");
    FullDisk disk(machine.platform, room);
    LegacyLink full(disk.OfMachine());
    const auto raised = RaisedBy([&] { Return(full, "<PDSG>38A</PDSG><BLOB>TWFu</BLOB>"); });
    switch (room) {
      case 0:
        EXPECT_EQ(raised, RuntimeError::DiskFull);
        EXPECT_EQ(machine.Read(kSelectionFile), "old");
        EXPECT_EQ(machine.Read(kInstructionFile), "old");
        break;
      case 1:
        EXPECT_EQ(raised, RuntimeError::PathFileAccess);
        EXPECT_EQ(machine.Read(kSelectionFile), "Man");
        EXPECT_EQ(machine.Read(kInstructionFile), "old");
        break;
      default:
        EXPECT_EQ(raised, 0);
    }
  }
  EXPECT_THAT(machine.platform.files->ListFiles("C:\\Korvane\\TQ5-VX\\Temp\\*"),
              ElementsAre("input.ini", "QPblob.tmp"));
}

TEST_F(ReturnToLegacyTest, FilesThatAreReadOnlyEndTheCallAndStay) {
  for (const char* file : {kSelectionFile, kInstructionFile}) {
    machine.Write(file, "old");
    const auto host = machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Temp" / std::string(file).substr(23);
    std::filesystem::permissions(host, std::filesystem::perms::owner_read);
    EXPECT_EQ(RaisedBy([&] { Return("<PDSG>38A</PDSG><BLOB>TWFu</BLOB>"); }), RuntimeError::PathFileAccess) << file;
    EXPECT_EQ(machine.Read(file), "old");
    std::filesystem::permissions(host, std::filesystem::perms::owner_all);
  }
}

TEST_F(ReturnToLegacyTest, OuterBlanksOfThePdsgDoNotCount) {
  Return("<PDSG><![CDATA[  XRC47]]></PDSG>");
  EXPECT_THAT(machine.boxes.boxes, ElementsAre(Box("Returning Applied Chiller Tags to ORLA is not supported.")));
}

TEST_F(ReturnToLegacyTest, TheFirstOfSeveralTagsComesBack) {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS>"
      "<TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG><BLOB>TWFu</BLOB></ATTRIBUTES_LIST></TAG>"
      "<TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG><BLOB>TWE=</BLOB></ATTRIBUTES_LIST></TAG>"
      "</TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>");
  EXPECT_EQ(Outcome(ReturnTagToLegacy(link, command)), "0 No error");
  EXPECT_EQ(machine.Read(kSelectionFile), "Man");
}

}  // namespace
}  // namespace parvex::test
