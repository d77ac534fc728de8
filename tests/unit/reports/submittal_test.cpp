#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/unit/reports/report_commands_fixture.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class GetSubmittalTest : public ReportCommandsTest {
 protected:
  static constexpr const char* kTemplate = "NGSubmittal_qdf.xml";

  GetSubmittalTest() {
    WriteTemplate("RTU47", kTemplate);
    WriteTemporary("NGreport.xml", "<r><root><title>T</title></root></r>");
  }
  std::string Submittal(const std::string& parameters = "", const std::vector<std::string>& tags = {"RTU-1"}) {
    return GetSubmittal(link, ReportCommand("getSubmittal", ReportName("NGSubmittal") + parameters, tags)).Xml();
  }
  static std::vector<std::string> OneTag(const std::string& name, const std::string& units = "") {
    return Lines({{kReset},
                  Preparation("NGSubmittal", units),
                  {AddTag(name, "RTU47"), AddReport(name, "RTU47", kTemplate, "Custom", "NGSubmittal"), MakeReport()}});
  }
};

TEST_F(GetSubmittalTest, MakesOneReportPerTagUnderAClientNameOfItsOwn) {
  EXPECT_EQ(Submittal(Units("SI"), {"RTU-1", "RTU-2"}),
            "<TAGS><TAG><root><title>T</title></root></TAG><TAG><root><title>T</title></root></TAG></TAGS>\r\n");
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({{kCreate}, OneTag("RTU-1", "SI"), OneTag("RTU-2", "SI")})));
}

TEST_F(GetSubmittalTest, AHeldServerIsResetForEachTagOnly) {
  Submittal();
  TakeLines();
  Submittal("", {"RTU-1", "RTU-2"});
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({OneTag("RTU-1"), OneTag("RTU-2")})));
}

TEST_F(GetSubmittalTest, TakesItsOwnTemplateWhateverTheReportName) {
  GetSubmittal(link, ReportCommand("getSubmittal", ReportName("UnitReport")));
  EXPECT_EQ(automation.lines.at(9), AddReport("RTU-1", "RTU47", kTemplate, "UnitReport", "UnitReport"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetSubmittalTest, WithoutReportNameIsTheSame) {
  GetSubmittal(link, ReportCommand("getSubmittal", ""));
  EXPECT_EQ(automation.lines.at(9), AddReport("RTU-1", "RTU47", kTemplate, "Custom", ""));
}

TEST_F(GetSubmittalTest, TagsWithoutTemplateAreSkippedWithoutAMessage) {
  const xml::Document command = ReportCommand("getSubmittal", ReportName("NGSubmittal"), {"AHU-3", "RTU-1"});
  command.First("//PDSG").SetText("AHE47");
  EXPECT_EQ(GetSubmittal(link, command).Xml(), "<TAGS><TAG><root><title>T</title></root></TAG></TAGS>\r\n");
  EXPECT_THAT(automation.lines, ElementsAreArray(Lines({{kCreate}, OneTag("RTU-1")})));
  EXPECT_EQ(GetSubmittal(link, ReportCommand("getSubmittal", "", {"AHU-3"}, "AHE47")).Xml(), "<TAGS/>\r\n");
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(GetSubmittalTest, EmbedsTheDrawingsOfEachTagsGroup) {
  machine.Write("C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Drawings\\unit.bmp", "picture");
  WriteTemporary("chart.bmp", "chart");
  WriteTemporary("NGreport.xml", "<r><root><image>unit.bmp</image><image>" + std::string(kReportsTemp) +
                                     "chart.bmp</image></root></r>");
  EXPECT_EQ(Submittal(),
            "<TAGS><TAG><root><image><![CDATA[cGljdHVyZQ==]]><filename>unit.bmp</filename></image><image>"
            "<![CDATA[Y2hhcnQ=]]><filename>" +
                std::string(kReportsTemp) + "chart.bmp</filename></image></root></TAG></TAGS>\r\n");
  EXPECT_THAT(Temporary(), ElementsAre("NGreport.xml"));
}

TEST_F(GetSubmittalTest, WhetherTheServerMadeTheReportIsNotLookedAt) {
  automation.Answer(std::string(kServer) + ".MakeReport", {false});
  EXPECT_EQ(Submittal(), "<TAGS><TAG><root><title>T</title></root></TAG></TAGS>\r\n");
}

TEST_F(GetSubmittalTest, RemovesTemporaryFilesAfterTheLastTag) {
  WriteTemporary("rpt1.rtf");
  automation.onAccess = [this](const std::string& line) {
    EXPECT_TRUE(machine.Exists(std::string(kReportsTemp) + "rpt1.rtf")) << line;
  };
  Submittal("", {"RTU-1", "RTU-2"});
  EXPECT_THAT(Temporary(), ElementsAre("NGreport.xml"));
}

TEST_F(GetSubmittalTest, AReportThatCannotBeReadEndsTheCall) {
  const auto failure = [this] {
    try {
      return Submittal();
    } catch (const AutomationError& error) {
      return std::to_string(error.RuntimeNumber()) + " " + error.Description();
    }
  };
  const std::string path = "C:\\Korvane\\TQ5-VX\\Bin\\\\Reports\\Temp\\NGreport.xml";
  WriteTemporary("NGreport.xml", "<r/>");
  EXPECT_EQ(failure(), "91 no //root in " + path);
  WriteTemporary("NGreport.xml", "<r><root>");
  EXPECT_THAT(failure(), testing::StartsWith("91 " + path + " is no XML document: "));
  machine.platform.files->Remove(path);
  EXPECT_EQ(failure(), "53 cannot read \"" + path + "\": it does not exist");
}

TEST_F(GetSubmittalTest, AFailureAtEachMemberEndsTheCall) {
  WriteTemporary("rpt1.rtf");
  for (const char* member : {"", ".Reset", ".action", ".ClientID", ".command", ".OutputType", ".Project", ".ProjectID",
                             ".OutputUnits", ".AddTag", ".AddReport", ".MakeReport"}) {
    link.reportServer.reset();
    automation.failAt = std::string(kServer) + member;
    try {
      Submittal(Units("SI"));
      ADD_FAILURE() << automation.failAt;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Description(), automation.failAt + ": told to fail");
    }
  }
  EXPECT_THAT(Temporary(), ElementsAre("NGreport.xml", "rpt1.rtf"));
}

}  // namespace
}  // namespace parvex::test
