#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/reports/report_commands_fixture.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class GetReportsTest : public ReportCommandsTest {};

TEST_F(GetReportsTest, AddEveryTagAndForEachTheReportsThatHaveATemplateInTheirOrder) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  WriteTemplate("RTU47", "SpecSheet_qdf.xml");
  const xml::Document command =
      ReportCommand("getReports", ReportNames({"SpecSheet", "AcousticSummary", "UnitReport"}) + Units("SI"),
                    {"RTU-1", "AHU-3", "RTU-2"});
  command.All("//PDSG")[1].SetText("AHE47");
  EXPECT_EQ(GetReports(link, command).Xml(), Answered(kMade));
  EXPECT_THAT(automation.lines,
              ElementsAreArray(Lines(
                  {{kCreate},
                   Preparation("NGORLA", "SI"),
                   {AddTag("RTU-1", "RTU47"), AddReport("RTU-1", "RTU47", "SpecSheet_qdf.xml", "Custom", "SpecSheet"),
                    AddUnitReport("RTU-1"), AddTag("AHU-3", "AHE47"), AddTag("RTU-2", "RTU47"),
                    AddReport("RTU-2", "RTU47", "SpecSheet_qdf.xml", "Custom", "SpecSheet"), AddUnitReport("RTU-2"),
                    MakeReport()}})));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetReportsTest, WithoutNamesSayThatAndDoNothing) {
  for (const std::string& parameters : {std::string(), ReportNames({}), Units("SI")}) {
    EXPECT_EQ(Reports(parameters), Answered("No Report names were specified"));
  }
  EXPECT_THAT(automation.lines, IsEmpty());
  EXPECT_THAT(machine.routers.requests, IsEmpty());
}

TEST_F(GetReportsTest, NamesOfASecondParameterDoNotCount) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  WriteTemplate("RTU47", "SpecSheet_qdf.xml");
  Reports(ReportNames({"SpecSheet"}) + ReportNames({"UnitReport"}));
  EXPECT_THAT(automation.lines,
              ElementsAreArray(
                  Lines({{kCreate},
                         Preparation("NGORLA"),
                         {AddTag("RTU-1", "RTU47"),
                          AddReport("RTU-1", "RTU47", "SpecSheet_qdf.xml", "Custom", "SpecSheet"), MakeReport()}})));
}

TEST_F(GetReportsTest, WithoutAnyTemplateShowABoxOfTheirOwn) {
  EXPECT_EQ(Reports(ReportNames({"UnitReport", "SpecSheet"})), Answered(kNotMade));
  EXPECT_THAT(automation.lines,
              ElementsAreArray(Lines({{kCreate}, Preparation("NGORLA"), {AddTag("RTU-1", "RTU47")}})));
  EXPECT_THAT(Boxes(), ElementsAre(Box{"The Reports could not be generated. ", "Parvex", MessageBoxes::Icon::None}));
}

TEST_F(GetReportsTest, AnEmptyNameIsAnUnknownReport) {
  EXPECT_EQ(Reports(ReportNames({""})), Answered(kNotMade));
  EXPECT_EQ(Boxes().front().text, "Unrecognized Report ");
}

TEST_F(GetReportsTest, ResetAHeldServerAndRemoveTemporaryFiles) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  WriteTemporary("rpt1.te");
  Report(ReportName("UnitReport"));
  TakeLines();
  WriteTemporary("rpt1.te");
  automation.Answer(std::string(kServer) + ".MakeReport", {false});
  EXPECT_EQ(Reports(ReportNames({"UnitReport"})), Answered(kNotMade));
  EXPECT_EQ(automation.lines.front(), kReset);
  EXPECT_THAT(Temporary(), IsEmpty());
}

TEST_F(GetReportsTest, ATagWithoutNameIsAnErrorAlsoWithoutTemplate) {
  machine.routers.onRequest = [](const std::string&, std::string& text) {
    text =
        "<TAG><Project ProjectID='1'><Property name='proj_name'><Value>P</Value></Property></Project>"
        "<Application PDSG='RTU47'/></TAG>";
    return true;
  };
  EXPECT_EQ(Reports(ReportNames({"UnitReport"})), Failed("Error in getReports(). no .//TagName in TAG"));
}

TEST_F(GetReportsTest, AFailureAtEachMemberIsAnsweredUnderTheirOwnName) {
  WriteTemplate("RTU47", "UnitReport_qdf.xml");
  for (const char* member : {"", ".action", ".ClientID", ".command", ".OutputType", ".Project", ".ProjectID",
                             ".OutputUnits", ".AddTag", ".AddReport", ".MakeReport"}) {
    link.reportServer.reset();
    automation.failAt = std::string(kServer) + member;
    EXPECT_EQ(Reports(ReportNames({"UnitReport"}) + Units("SI")),
              Failed("Error in getReports(). " + automation.failAt + ": told to fail"));
  }
}

}  // namespace
}  // namespace parvex::test
