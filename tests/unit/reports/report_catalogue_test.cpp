#include "reports/report_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocol/command_document.h"
#include "tests/support/command_texts.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTemplates = "C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Templates\\";
constexpr const char* kConfiguration = "C:\\Korvane\\TQ5-VX\\Bin\\KDCustomRpt_Cfg.xml";

class ReportCatalogueTest : public testing::Test {
 protected:
  FakeMachine machine;
  LegacyLink link{machine.platform};

  xml::Document Available(std::string_view pdsg) {
    const xml::Document command = Command("getAvailableReports");
    AddParameter(command, "PDSG", pdsg);
    return GetAvailableReports(link, command);
  }

  /// The names that are offered, in order.
  std::vector<std::string> Offered(std::string_view pdsg = "RTU47") {
    std::vector<std::string> names;
    for (const xml::Node& name : Available(pdsg).All("/REPORTS/REPORT/PARAMETER/NAME")) {
      names.push_back(name.Text());
    }
    return names;
  }

  /// What is offered when the group's configuration lists one template by this name.
  std::vector<std::string> OfferedFor(const std::string& qdf) {
    machine.Write(kConfiguration, "<R><Builder name='RTU47'><report><qdf>" + qdf + "</qdf></report></Builder></R>");
    return Offered();
  }
};

TEST_F(ReportCatalogueTest, OnlyFiveTypesAreCategoriesOfTheirOwn) {
  for (const char* type :
       {"UnitReport", "PerformanceReport", "CertifiedDrawing", "GuideSpecification", "AcousticSummary"}) {
    EXPECT_EQ(ReportCategory(type), type);
  }
}

TEST_F(ReportCatalogueTest, EveryOtherNameIsCustomStandardTypesAmongThem) {
  for (const char* type : {"InputSummary", "WiringDiagram", "TitlePage", "SpecSheet", "NGSubmittal", "Custom",
                           "unitreport", "UnitReport ", ""}) {
    EXPECT_EQ(ReportCategory(type), "Custom") << type;
  }
}

TEST_F(ReportCatalogueTest, EachStandardTypeHasItsTemplateBehindTheUnchangedFolder) {
  const std::pair<const char*, const char*> expected[] = {
      {"UnitReport", "UnitReport_qdf.xml"},        {"PerformanceReport", "PerformanceSmry_qdf.xml"},
      {"InputSummary", "InputSummary_qdf.xml"},    {"CertifiedDrawing", "CertifiedDwg_qdf.xml"},
      {"WiringDiagram", "WiringDiagram_qdf.xml"},  {"AcousticSummary", "AcousticSmry_qdf.xml"},
      {"GuideSpecification", "GuideSpec_qdf.xml"}, {"TitlePage", "TitlePage_qdf.xml"}};
  for (const auto& [type, file] : expected) {
    EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T", type, "SpecSheet"), "C:\\T" + std::string(file));
    EXPECT_EQ(TemplateOfReport(machine.platform, "RTU47", type), kTemplates + std::string(file));
  }
  EXPECT_THAT(machine.boxes.boxes, IsEmpty());
}

TEST_F(ReportCatalogueTest, EachCustomReportHasItsTemplate) {
  const std::pair<const char*, const char*> expected[] = {{"DetailedPerformanceReport", "DetailedPerfSmry_qdf.xml"},
                                                          {"SpecSheet", "SpecSheet_qdf.xml"},
                                                          {"FeatureSheet", "UnitFeatureSheet_qdf.xml"},
                                                          {"CornerWeight", "CornerWeight_qdf.xml"},
                                                          {"ControlSheet", "ControlsSheet_qdf.xml"},
                                                          {"BACNetPointsList", "BACNet_qdf.xml"},
                                                          {"ECO__Desig_Data_Sheet", "ECO_Desig_Data_Sheet.xml"},
                                                          {"NGSubmittal", "NGSubmittal_qdf.xml"}};
  for (const auto& [name, file] : expected) {
    EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "Custom", name), "C:\\T\\" + std::string(file));
    EXPECT_EQ(TemplateOfReport(machine.platform, "RTU47", name), kTemplates + std::string(file));
  }
  EXPECT_THAT(machine.boxes.boxes, IsEmpty());
}

TEST_F(ReportCatalogueTest, TheEquipmentScheduleIsABareFileName) {
  EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "Custom", "EquipmentSchedule"),
            "DefaultScheduleTemplate.xml");
}

TEST_F(ReportCatalogueTest, AnUnknownCustomNameShowsABoxAndHasNoTemplate) {
  EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "Custom", "specsheet"), "");
  EXPECT_THAT(machine.boxes.boxes,
              ElementsAre(FakeMessageBoxes::Box{"Unrecognized Report specsheet", "Parvex", MessageBoxes::Icon::None}));
}

TEST_F(ReportCatalogueTest, AStandardTypeIsNoCustomName) {
  EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "Custom", "UnitReport"), "");
  EXPECT_EQ(machine.boxes.boxes.size(), 1u);
}

TEST_F(ReportCatalogueTest, AnyOtherTypeIsTheFolderAlone) {
  EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "SpecSheet", "SpecSheet"), "C:\\T\\");
  EXPECT_EQ(ReportTemplatePath(machine.platform, "C:\\T\\", "", ""), "C:\\T\\");
  EXPECT_THAT(machine.boxes.boxes, IsEmpty());
}

TEST_F(ReportCatalogueTest, TheEcoSheetIsOfferedWithOneUnderscoreAndFoundWithTwo) {
  EXPECT_THAT(OfferedFor("RTU47ECO_Desig_Data_Sheet.xml"), ElementsAre("ECO_Desig_Data_Sheet"));
  EXPECT_EQ(TemplateOfReport(machine.platform, "RTU47", "ECO_Desig_Data_Sheet"), "");
  EXPECT_NE(TemplateOfReport(machine.platform, "RTU47", "ECO__Desig_Data_Sheet"), "");
}

TEST_F(ReportCatalogueTest, FoldersLieBelowTheDataRootByGroup) {
  EXPECT_EQ(TemplatesFolder(machine.platform, "RTU47"), "C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Templates");
  EXPECT_EQ(DrawingsFolder(machine.platform, "RTU47"), "C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Drawings");
}

TEST_F(ReportCatalogueTest, AnEmptyGroupHasNoDocument) {
  EXPECT_FALSE(Available(""));
  EXPECT_FALSE(GetAvailableReports(link, Command("getAvailableReports")));
}

TEST_F(ReportCatalogueTest, AGroupWithOneTemplateListsOneReport) {
  machine.Write(kTemplates + std::string("UnitReport_qdf.xml"), "<qdf/>");
  EXPECT_EQ(Available("RTU47").Xml(),
            "<REPORTS><REPORT><PARAMETER><NAME>UnitReport</NAME><VALUE>Unit Report</VALUE></PARAMETER></REPORT>"
            "</REPORTS>\r\n");
}

TEST_F(ReportCatalogueTest, WithoutTemplatesAndConfigurationNothingIsOffered) {
  EXPECT_EQ(Available("RTU47").Xml(), "<REPORTS/>\r\n");
}

TEST_F(ReportCatalogueTest, StandardReportsStandInTheirOwnOrderBeforeCustomOnes) {
  for (const char* file : {"UnitReport", "PerformanceSmry", "InputSummary", "CertifiedDwg", "WiringDiagram",
                           "AcousticSmry", "GuideSpec", "TitlePage", "NGSubmittal", "SpecSheet"}) {
    machine.Write(kTemplates + std::string(file) + "_qdf.xml", "<qdf/>");
  }
  machine.Write(kConfiguration,
                "<R><Builder name='RTU47'>"
                "<report><qdf>RTU47ECO_Desig_Data_Sheet.xml</qdf></report>"
                "<report><qdf>RTU47BACNet_qdf.xml</qdf></report>"
                "<report><qdf>RTU47ControlsSheet_qdf.xml</qdf></report>"
                "<report><qdf>RTU47CornerWeight_qdf.xml</qdf></report>"
                "<report><qdf>RTU47UnitFeatureSheet_qdf.xml</qdf></report>"
                "<report><qdf>RTU47SpecSheet_qdf.xml</qdf></report>"
                "<report><qdf>RTU47DetailedPerfSmry_qdf.xml</qdf></report></Builder></R>");
  std::vector<std::string> offered;
  const xml::Document reports = Available("RTU47");
  for (const xml::Node& parameter : reports.All("/REPORTS/REPORT/PARAMETER")) {
    offered.push_back(parameter.Child("NAME").Text() + ": " + parameter.Child("VALUE").Text());
  }
  EXPECT_THAT(offered, ElementsAre("UnitReport: Unit Report", "PerformanceReport: Performance Output Summary",
                                   "AcousticSummary: Acoustics Data", "CertifiedDrawing: Certified Drawing Data",
                                   "WiringDiagram: Field Wiring Diagram", "GuideSpecification: Guide Specifications",
                                   "ECO_Desig_Data_Sheet: ECO Design", "BACNetPointsList: BACNet Points List",
                                   "ControlSheet: Custom Controls Sheet", "CornerWeight: Corner Weights Report",
                                   "FeatureSheet: Feature Sheet", "SpecSheet: Specification Sheet",
                                   "DetailedPerformanceReport: Detailed Performance Report"));
}

TEST_F(ReportCatalogueTest, InputSummaryAndTitlePageAreNeverOffered) {
  machine.Write(kTemplates + std::string("InputSummary_qdf.xml"), "<qdf/>");
  machine.Write(kTemplates + std::string("TitlePage_qdf.xml"), "<qdf/>");
  EXPECT_THAT(OfferedFor("RTU47InputSummary_qdf.xml"), IsEmpty());
  EXPECT_THAT(OfferedFor("RTU47TitlePage_qdf.xml"), IsEmpty());
}

TEST_F(ReportCatalogueTest, ACustomReportIsOfferedWithoutItsTemplate) {
  EXPECT_THAT(OfferedFor("RTU47SpecSheet_qdf.xml"), ElementsAre("SpecSheet"));
}

TEST_F(ReportCatalogueTest, AConfiguredNameLosesFiveAndFourCharactersWhateverTheyAre) {
  EXPECT_THAT(OfferedFor("12345BACNet_qdf.abc"), ElementsAre("BACNetPointsList"));
  EXPECT_THAT(OfferedFor("äöüß€BACNet_qdf.xml"), ElementsAre("BACNetPointsList"));
  EXPECT_THAT(OfferedFor("  RTU47BACNet_qdf.xml\n"), ElementsAre("BACNetPointsList"));  // text is read trimmed
}

TEST_F(ReportCatalogueTest, AConfiguredNameThatMatchesNothingIsSkipped) {
  for (const char* qdf :
       {"BACNet_qdf.xml", "RTU47bacnet_qdf.xml", "RTU47BACNet_qdf", "RTU47UnitReport_qdf.xml",
        "RTU47ECO__Desig_Data_Sheet.xml", "RTU47DefaultScheduleTemplate.xml", "RTU47NGSubmittal_qdf.xml", ""}) {
    EXPECT_THAT(OfferedFor(qdf), IsEmpty()) << qdf;
  }
}

TEST_F(ReportCatalogueTest, AConfiguredNameOfTenCharactersOrFewerIsSkipped) {
  // Nothing that short could match: what shows is that cutting it neither ends the call nor finds a report without
  // name.
  EXPECT_THAT(OfferedFor("RTU47B.xml"), IsEmpty());
  EXPECT_THAT(OfferedFor("RTU47.xml"), IsEmpty());
  EXPECT_THAT(OfferedFor("x"), IsEmpty());
}

TEST_F(ReportCatalogueTest, AConfiguredReportWithoutNameIsSkipped) {
  machine.Write(kConfiguration,
                "<R><Builder name='RTU47'><report/><report><qdf>RTU47BACNet_qdf.xml</qdf></report></Builder></R>");
  EXPECT_THAT(Offered(), ElementsAre("BACNetPointsList"));
}

TEST_F(ReportCatalogueTest, ReportsAreFoundAtAnyDepthAndInEveryRepetition) {
  machine.Write(kConfiguration,
                "<R><G><Builder name='RTU47'><list><report><a><qdf>RTU47BACNet_qdf.xml</qdf></a></report>"
                "<report><qdf>RTU47BACNet_qdf.xml</qdf></report></list></Builder></G></R>");
  EXPECT_THAT(Offered(), ElementsAre("BACNetPointsList", "BACNetPointsList"));
}

TEST_F(ReportCatalogueTest, TheFirstBuilderOfTheGroupCountsLetterCaseIncluded) {
  machine.Write(kConfiguration,
                "<R><Builder name='rtu47'><report><qdf>RTU47SpecSheet_qdf.xml</qdf></report></Builder><Builder/>"
                "<Builder name='RTU47'><report><qdf>RTU47BACNet_qdf.xml</qdf></report></Builder>"
                "<Builder name='RTU47'><report><qdf>RTU47CornerWeight_qdf.xml</qdf></report></Builder></R>");
  EXPECT_THAT(Offered(), ElementsAre("BACNetPointsList"));
}

TEST_F(ReportCatalogueTest, AGroupThatWouldBreakAnExpressionFindsItsOwnBuilderOnly) {
  machine.Write(kConfiguration,
                "<R><Builder name='A'><report><qdf>RTU47SpecSheet_qdf.xml</qdf></report></Builder>"
                "<Builder name=\"it's\"><report><qdf>RTU47BACNet_qdf.xml</qdf></report></Builder></R>");
  EXPECT_THAT(Offered("it's"), ElementsAre("BACNetPointsList"));
  EXPECT_THAT(Offered("x' or 'a'='a"), IsEmpty());
}

TEST_F(ReportCatalogueTest, WithoutReadableConfigurationTheStandardReportsAreLeft) {
  machine.Write(kTemplates + std::string("GuideSpec_qdf.xml"), "<qdf/>");
  EXPECT_THAT(Offered(), ElementsAre("GuideSpecification"));
  machine.Write(kConfiguration, "<R><Builder name='RTU47'><report>");
  EXPECT_THAT(Offered(), ElementsAre("GuideSpecification"));
  machine.Write(kConfiguration, "");
  EXPECT_THAT(Offered(), ElementsAre("GuideSpecification"));
  machine.Write(kConfiguration, "<R/>");
  EXPECT_THAT(Offered(), ElementsAre("GuideSpecification"));
}

TEST_F(ReportCatalogueTest, WithoutInstallationNothingIsOffered) {
  machine.Write(kTemplates + std::string("GuideSpec_qdf.xml"), "<qdf/>");
  machine.SetBinPath("");
  EXPECT_EQ(Available("RTU47").Xml(), "<REPORTS/>\r\n");
}

}  // namespace
}  // namespace parvex::test
