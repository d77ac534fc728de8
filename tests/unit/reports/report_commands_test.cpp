#include "reports/report_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tags/tag_building.h"
#include "tests/support/raised_by.h"
#include "tests/unit/reports/report_commands_fixture.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class GetReportTest : public ReportCommandsTest {};

TEST_F(GetReportTest, DrivesANewServerForEveryTag) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  EXPECT_EQ(Report(ReportName("UnitReport") + Units("SI"), {"RTU-1", "RTU-2"}), Answered(kMade));
  EXPECT_THAT(automation.lines,
              ElementsAreArray(Lines({{kCreate},
                                      Preparation("NGORLA", "SI"),
                                      {AddTag("RTU-1", "RTU47"), AddUnitReport("RTU-1"), AddTag("RTU-2", "RTU47"),
                                       AddUnitReport("RTU-2"), MakeReport()}})));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetReportTest, FetchesTheTagsOfACopyOfTheCommand) {
  const xml::Document command = ReportCommand("getReport", ReportName("UnitReport"), {"RTU-1"});
  const std::string before = command.Xml();
  GetReport(link, command);
  EXPECT_EQ(command.Xml(), before);
  EXPECT_THAT(
      machine.routers.requests,
      ElementsAre("<COMMAND><NAME>getTag</NAME><PARAMETER><NAME>pdsgFilter</NAME><VALUE/></PARAMETER><PARAMETER>"
                  "<NAME>projectName</NAME><VALUE>Clinic</VALUE></PARAMETER><PARAMETER><NAME>pdsg</NAME><VALUE>"
                  "RTU47</VALUE></PARAMETER><PARAMETER><NAME>tagName</NAME><VALUE>RTU-1</VALUE></PARAMETER>"
                  "</COMMAND>\r\n"));
}

TEST_F(GetReportTest, EmptyUnitsLeaveOutputUnitsUnset) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  for (const std::string& units : {std::string(), Units("")}) {
    Report(ReportName("UnitReport") + units);
    for (const std::string& line : TakeLines()) {
      EXPECT_EQ(line.find("OutputUnits"), std::string::npos) << line;
    }
  }
}

TEST_F(GetReportTest, ACustomReportIsToldAsCustomUnderItsOwnName) {
  WriteTemplate("RTU47", "WiringDiagram_qdf.xml");
  WriteTemplate("RTU47", "ECO_Desig_Data_Sheet.xml");
  EXPECT_EQ(Report(ReportName("WiringDiagram")), Answered(kMade));
  EXPECT_THAT(TakeLines(),
              testing::Contains(AddReport("RTU-1", "RTU47", "WiringDiagram_qdf.xml", "Custom", "WiringDiagram")));
  EXPECT_EQ(Report(ReportName("ECO__Desig_Data_Sheet")), Answered(kMade));
  EXPECT_THAT(TakeLines(), testing::Contains(AddReport("RTU-1", "RTU47", "ECO_Desig_Data_Sheet.xml", "Custom",
                                                       "ECO__Desig_Data_Sheet")));
}

TEST_F(GetReportTest, ATagWithoutTemplateIsSkippedWithoutAMessage) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  const xml::Document command = ReportCommand("getReport", ReportName("UnitReport"), {"RTU-1", "AHU-3"});
  command.All("//PDSG").back().SetText("AHE47");
  EXPECT_EQ(GetReport(link, command).Xml(), Answered(kMade));
  EXPECT_THAT(
      automation.lines,
      ElementsAreArray(
          Lines({{kCreate}, Preparation("NGORLA"), {AddTag("RTU-1", "RTU47"), AddUnitReport("RTU-1"), MakeReport()}})));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetReportTest, WhenAllTagsLackTheTemplateABoxIsShownAndNoReportIsMade) {
  EXPECT_EQ(Report(ReportName("UnitReport"), {"RTU-1", "RTU-2"}), Answered(kNotMade));
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({{kCreate}, Preparation("NGORLA")})));
  EXPECT_THAT(Boxes(), ElementsAre(Box{"The Report could not be generated. ", "Parvex", MessageBoxes::Icon::None}));
}

TEST_F(GetReportTest, AnUnknownNameShowsABoxForEachTagBeforeTheOneThatNothingWasMade) {
  EXPECT_EQ(Report(ReportName("Nothing"), {"RTU-1", "RTU-2"}), Answered(kNotMade));
  const Box unknown{"Unrecognized Report Nothing", "Parvex", MessageBoxes::Icon::None};
  EXPECT_THAT(Boxes(), ElementsAre(unknown, unknown,
                                   Box{"The Report could not be generated. ", "Parvex", MessageBoxes::Icon::None}));
}

TEST_F(GetReportTest, WhatTheServerDidNotMakeIsAnsweredAsNotMade) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  using Value = automation::Value;
  for (const Value& value : {Value(false), Value(0), Value(), Value(std::string("True"))}) {
    automation.Answer(std::string(kServer) + ".MakeReport", {value});
    EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kNotMade)) << ToLine(value);
  }
  automation.Answer(std::string(kServer) + ".MakeReport", {-1});
  EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kMade));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetReportTest, TheStringOfMakeReportIsIgnoredAfterwards) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  automation.Do(std::string(kServer) + ".MakeReport", [](std::span<automation::Argument> arguments) {
    arguments[0].value = std::string("C:\\elsewhere.rtf");
    return automation::Value(true);
  });
  EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kMade));
}

TEST_F(GetReportTest, ASecondReportResetsTheServerInsteadOfCreatingOne) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  Report(ReportName("UnitReport"));
  TakeLines();
  Report(ReportName("UnitReport"));
  EXPECT_THAT(
      automation.lines,
      ElementsAreArray(
          Lines({{kReset}, Preparation("NGORLA"), {AddTag("RTU-1", "RTU47"), AddUnitReport("RTU-1"), MakeReport()}})));
  EXPECT_EQ(automation.living, 1);
}

TEST_F(GetReportTest, TheServerIsHeldByOneInstanceAndLeavesWithIt) {
  {
    LegacyLink other{link.platform};
    GetReport(other, ReportCommand("getReport", ReportName("UnitReport")));
    Report(ReportName("UnitReport"));
    EXPECT_EQ(automation.living, 2);
  }
  EXPECT_EQ(automation.living, 1);
}

TEST_F(GetReportTest, AServerDroppedByABuilderCommandIsCreatedAnew) {
  Report(ReportName("UnitReport"));
  EXPECT_EQ(automation.living, 1);
  EXPECT_EQ(RaisedBy([&] { NewTag(link, Command("newTag")); }), 429);
  EXPECT_EQ(automation.living, 0);
  TakeLines();
  Report(ReportName("UnitReport"));
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({{kCreate}, Preparation("NGORLA")})));
}

TEST_F(GetReportTest, TemporaryReportFilesAreRemovedAndOthersStay) {
  for (const char* name : {"rpt1.rtf", "rpt2.RTF", "rpt.Rtf", "rpt3.te", "rptTE", "rpt4.note", "rptRTF"}) {
    WriteTemporary(name);
  }
  for (const char* name : {"Rpt5.rtf", "RPT6.RTF", "xrpt.rtf", "rpt7.rtf.bak", "rpt8.xml", "NGreport.xml", "te"}) {
    WriteTemporary(name);
  }
  machine.Write(std::string(kReportsTemp) + "rpt.rtf folder\\rpt9.rtf", "x");
  Report(ReportName("UnitReport"));
  EXPECT_THAT(Temporary(),
              ElementsAre("NGreport.xml", "Rpt5.rtf", "RPT6.RTF", "rpt7.rtf.bak", "rpt8.xml", "te", "xrpt.rtf"));
  EXPECT_TRUE(machine.Exists(std::string(kReportsTemp) + "rpt.rtf folder\\rpt9.rtf"));
}

TEST_F(GetReportTest, AReadOnlyReportFileIsAnErrorThatNamesIt) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  WriteTemporary("rpt1.rtf");
  std::filesystem::permissions(machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Bin/Reports/Temp/rpt1.rtf",
                               std::filesystem::perms::owner_read);
  const std::string reply = Report(ReportName("UnitReport"));
  EXPECT_THAT(reply, testing::HasSubstr("<errorMessage>Error in getReport. "));
  EXPECT_THAT(reply, testing::HasSubstr("\\Reports\\Temp\\rpt1.rtf\": it is read-only"));
  EXPECT_EQ(automation.lines.back(), MakeReport());
}

TEST_F(GetReportTest, AMissingServerIsAnsweredAsAnError) {
  automation.failAt = kServer;
  automation.failNumber = 0x800A01ADu;
  EXPECT_EQ(Report(ReportName("UnitReport")), Failed("Error in getReport. KDRPTSV47.CRemoteInterface: told to fail"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetReportTest, AFailureAtEachMemberEndsTheReportThereAndKeepsTheServer) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  WriteTemporary("rpt1.rtf");
  std::size_t lines = 1;
  for (const char* member : {"action", "ClientID", "command", "OutputType", "Project", "ProjectID", "OutputUnits",
                             "AddTag", "AddReport", "MakeReport", "Reset"}) {
    link.reportServer.reset();
    if (std::string_view(member) == "Reset") {
      link.reportServer = automation.NewObject(kServer);
      lines = 0;
    }
    TakeLines();
    automation.failAt = std::string(kServer) + "." + member;
    EXPECT_EQ(Report(ReportName("UnitReport") + Units("SI")),
              Failed("Error in getReport. " + automation.failAt + ": told to fail"));
    EXPECT_EQ(automation.lines.size(), ++lines) << member;
    EXPECT_EQ(automation.living, 1) << member;
  }
  EXPECT_THAT(Temporary(), ElementsAre("rpt1.rtf"));  // what follows the failure is not done, the clean-up among it
}

TEST_F(GetReportTest, TagDataThatLacksWhatTheServerIsToldIsAnErrorThatNamesIt) {
  const auto withAnswer = [this](const std::string& answer) {
    machine.routers.onRequest = [answer](const std::string&, std::string& text) {
      text = answer;
      return true;
    };
    return Report(ReportName("UnitReport"));
  };
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  EXPECT_EQ(withAnswer(""), Failed("Error in getReport. no //Project in the tag data"));
  EXPECT_EQ(withAnswer("<TAG><Project ProjectID='1'/></TAG>"),
            Failed("Error in getReport. no //Property[@name='proj_name']/Value in the tag data"));
  EXPECT_THAT(automation.lines, IsEmpty());
  const std::string project = "<Project ProjectID='1'><Property name='proj_name'><Value>P</Value></Property></Project>";
  EXPECT_EQ(withAnswer("<TAG>" + project + "</TAG>"), Failed("Error in getReport. no .//Application in TAG"));
  EXPECT_EQ(withAnswer("<TAG>" + project + "<Application PDSG='RTU47'/></TAG>"),
            Failed("Error in getReport. no .//TagName in TAG"));
}

TEST_F(GetReportTest, MissingAttributesOfTheTagDataReadAsEmpty) {
  machine.routers.onRequest = [](const std::string&, std::string& text) {
    text = "<TAG><Project><Property name='proj_name'><Value/></Property></Project><Application/></TAG>";
    return true;
  };
  EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kNotMade));
  EXPECT_EQ(automation.lines.at(5), "put KDRPTSV47.CRemoteInterface.Project = \"\"");
  EXPECT_EQ(automation.lines.at(6), "put KDRPTSV47.CRemoteInterface.ProjectID = \"\"");
}

TEST_F(GetReportTest, ATagWithoutNameIsNoErrorWhereItHasNoTemplate) {
  machine.routers.onRequest = [](const std::string&, std::string& text) {
    text =
        "<TAG><Project ProjectID='1'><Property name='proj_name'><Value>P</Value></Property></Project>"
        "<Application PDSG='RTU47'/></TAG>";
    return true;
  };
  EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kNotMade));
}

TEST_F(GetReportTest, APrototypeTagIsNotReported) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  machine.routers.onRequest = [](const std::string&, std::string& text) {
    text = Tag("RTU-1", "RTU47");
    text.replace(1, 3, "PROTOTAG").replace(text.rfind("TAG>"), 3, "PROTOTAG");
    return true;
  };
  EXPECT_EQ(Report(ReportName("UnitReport")), Answered(kNotMade));
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({{kCreate}, Preparation("NGORLA")})));
}

TEST_F(GetReportTest, AFailingRouterIsAnsweredAsAnError) {
  machine.routers.onRequest = [](const std::string&, std::string&) -> bool {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject, "the router is gone");
  };
  EXPECT_EQ(Report(ReportName("UnitReport")), Failed("Error in getReport. the router is gone"));
}

class EquipmentScheduleTest : public ReportCommandsTest {
 protected:
  EquipmentScheduleTest() {
    automation.Offer(kSchedule);
    automation.Answer(std::string(kSchedule) + ".SendRequest", {true});
  }
  std::string Schedule(const std::string& more = "<command><Report><Name>EquipmentSchedule</Name></Report></command>") {
    return Report(ReportName("EquipmentSchedule") + more, {"RTU-1", "RTU-2"});
  }
};

TEST_F(EquipmentScheduleTest, IsShownByOneRequestWithTheFilledCollection) {
  EXPECT_EQ(Schedule(), Answered(kMade));
  EXPECT_THAT(
      automation.lines,
      ElementsAre(std::string("create ") + kSchedule,
                  "call KDQU470.CKDScheduleRequest.SendRequest(\"SHOWSCHEDULE\", {pdsg: \"QRT52\", projectName: "
                  "\"Clinic\", projectID: \"P-7\", tags: \"" +
                      Tag("RTU-1", "RTU47") + Tag("RTU-2", "RTU47") + "\"}) -> True",
                  std::string("release ") + kSchedule));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(EquipmentScheduleTest, ThatIsNotShownIsAnsweredAsNotMade) {
  automation.Answer(std::string(kSchedule) + ".SendRequest", {false});
  EXPECT_EQ(Schedule(), Answered(kNotMade));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(EquipmentScheduleTest, NeedsNoReportServerAndLeavesAHeldOneAlone) {
  link.reportServer = automation.NewObject(kServer);
  EXPECT_EQ(Schedule(), Answered(kMade));
  EXPECT_EQ(automation.lines.size(), 3u);
  EXPECT_EQ(automation.living, 1);
}

TEST_F(EquipmentScheduleTest, WithoutItsSecondNameInTheCommandIsAnError) {
  for (const char* more :
       {"", "<COMMAND><Report><Name>EquipmentSchedule</Name></Report></COMMAND>", "<command><Report/></command>"}) {
    EXPECT_EQ(Schedule(more), Failed("Error in getReport. no //command/Report/Name in the command document")) << more;
  }
  EXPECT_THAT(automation.lines, IsEmpty());
}

TEST_F(EquipmentScheduleTest, WithoutItsRequestClassOrWithAFailingRequestIsAnError) {
  automation.failAt = std::string(kSchedule) + ".SendRequest";
  EXPECT_EQ(Schedule(), Failed("Error in getReport. KDQU470.CKDScheduleRequest.SendRequest: told to fail"));
  automation.failAt = kSchedule;
  EXPECT_EQ(Schedule(), Failed("Error in getReport. KDQU470.CKDScheduleRequest: told to fail"));
}

TEST_F(EquipmentScheduleTest, IsNoReportAmongSeveral) {
  EXPECT_EQ(Reports(ReportNames({"EquipmentSchedule"})), Answered(kNotMade));
  EXPECT_THAT(automation.lines,
              ElementsAreArray(Lines({{kCreate}, Preparation("NGORLA"), {AddTag("RTU-1", "RTU47")}})));
}

}  // namespace
}  // namespace parvex::test
