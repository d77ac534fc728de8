#include "legacy_standin/sample/sample_reports.h"

#include <array>

#include "legacy_standin/reports/bitmap.h"
#include "legacy_standin/reports/rtf_text.h"
#include "protocol/command_document.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

const std::string kRoot = "drive_c/Korvane/TQ5-VX/";

struct SampleDefinition {
  std::string_view pdsg;
  std::string_view file;
  std::string_view title;
  std::string_view parts = "";  // markup behind the lines
};

// The rooftop unit has all that a front end can be offered, the summaries that are never offered among it; the
// chiller's submittal names a drawing that nobody has drawn; the other groups have no definitions at all.
constexpr std::array kDefinitions = {
    SampleDefinition{"RTU47", "UnitReport_qdf.xml", "Unit Report"},
    SampleDefinition{"RTU47", "PerformanceSmry_qdf.xml", "Performance Output Summary"},
    SampleDefinition{"RTU47", "InputSummary_qdf.xml", "Input Summary"},
    SampleDefinition{"RTU47", "CertifiedDwg_qdf.xml", "Certified Drawing Data"},
    SampleDefinition{"RTU47", "WiringDiagram_qdf.xml", "Field Wiring Diagram"},
    SampleDefinition{"RTU47", "AcousticSmry_qdf.xml", "Acoustics Data"},
    SampleDefinition{"RTU47", "GuideSpec_qdf.xml", "Guide Specifications"},
    SampleDefinition{"RTU47", "TitlePage_qdf.xml", "Title Page"},
    SampleDefinition{"RTU47", "SpecSheet_qdf.xml", "Specification Sheet"},
    SampleDefinition{"RTU47", "ECO_Desig_Data_Sheet.xml", "ECO Design Data Sheet"},
    SampleDefinition{"RTU47", "NGSubmittal_qdf.xml", "Submittal",
                     "<image>rtu-unit.bmp</image><chart/>"
                     "<section type=\"dwg\"><drawing><filename>rtu-outline.dxf</filename></drawing></section>"
                     "<section type=\"rtf\"><guide><filename>rtu-guide.rtf</filename></guide></section>"},
    SampleDefinition{"AHE47", "UnitReport_qdf.xml", "Unit Report"},
    SampleDefinition{"XRC47", "UnitReport_qdf.xml", "Unit Report"},
    SampleDefinition{"XRC47", "NGSubmittal_qdf.xml", "Submittal",
                     "<image>xrc-unit.bmp</image>"
                     "<section type=\"dwg\"><drawing><filename>xrc-outline.dxf</filename></drawing></section>"},
    SampleDefinition{"FCB47", "UnitReport_qdf.xml", "Unit Report"},
};

/// Of the names that no report has, and of those too short to have one, nothing is offered.
constexpr std::string_view kConfiguration = R"(<?xml version="1.0" encoding="windows-1252"?>
<CustomReports>
  <Builder name="RTU47">
    <report><qdf>RTU47SpecSheet_qdf.xml</qdf></report>
    <report><qdf>RTU47ECO_Desig_Data_Sheet.xml</qdf></report>
    <report><qdf>RTU47Unlisted_qdf.xml</qdf></report>
    <report><qdf>RTU47A.xml</qdf></report>
  </Builder>
  <Builder name="XRC47">
    <report><qdf>XRC47CornerWeight_qdf.xml</qdf></report>
  </Builder>
</CustomReports>
)";

/// The outline of a unit as a drawing of one rectangle.
std::string OutlineDrawing() {
  constexpr std::array<std::array<int, 4>, 4> kLines = {
      {{0, 0, 2200, 0}, {2200, 0, 2200, 1400}, {2200, 1400, 0, 1400}, {0, 1400, 0, 0}}};
  std::string text = "0\r\nSECTION\r\n2\r\nENTITIES\r\n";
  for (const auto& [x1, y1, x2, y2] : kLines) {
    text += "0\r\nLINE\r\n8\r\nOutline\r\n10\r\n" + std::to_string(x1) + "\r\n20\r\n" + std::to_string(y1) +
            "\r\n11\r\n" + std::to_string(x2) + "\r\n21\r\n" + std::to_string(y2) + "\r\n";
  }
  return text + "0\r\nENDSEC\r\n0\r\nEOF\r\n";
}

std::string GuideSpecification() {
  RtfText text;
  text.Heading("Section 23 74 13: Packaged rooftop units");
  text.Line("Units are of double-wall construction with hinged access doors.");
  text.Line("The supply fan is selected for ±0 % of the scheduled air flow.");
  return text.Bytes();
}

SampleFile DefinitionFile(const SampleDefinition& definition) {
  const xml::Document document = xml::Document::Parse(
      "<ReportDefinition><line label=\"Part number\" product=\"PartNumber\"/><line label=\"Model\" "
      "product=\"Model\"/><line label=\"Quantity\" product=\"Quantity\"/>" +
      std::string(definition.parts) + "</ReportDefinition>");
  document.Root().SetAttribute("title", definition.title);
  return {kRoot + std::string(definition.pdsg) + "/Code/Reports/Templates/" + std::string(definition.file),
          document.Bytes()};
}

struct SampleTag {
  std::string_view name;
  std::string_view pdsg;
};

constexpr SampleTag kRooftop = {"RTU-1", "RTU47"};
constexpr SampleTag kAirHandler = {"AHU-3", "AHE47"};
constexpr SampleTag kChiller = {"CH-1", "XRC47"};
constexpr SampleTag kHeatPump = {"HP-7", "WSH47"};
constexpr SampleTag kFanCoil = {"Küche & Café <EG>", "FCB47"};

/// One parameter that names all of these reports; at least one.
void AddReportNames(const xml::Document& command, const std::vector<std::string_view>& reportNames) {
  const xml::Node parameter = command.Append(MakeParameterElement(command, "reportName", reportNames.front()));
  for (std::size_t i = 1; i < reportNames.size(); ++i) {
    xml::AppendElement(parameter, "VALUE", reportNames[i]);
  }
}

void AddTags(const xml::Document& command, const std::vector<SampleTag>& tags) {
  const xml::Node data = command.Append(MakeParameterElement(command, "data", "")).Child("VALUE");
  for (const SampleTag& tag : tags) {
    const xml::Node entry = xml::AppendElement(data, "TAG");
    xml::AppendElement(entry, "NAME", tag.name);
    xml::AppendElement(entry, "PDSG", tag.pdsg);
    xml::AppendElement(entry, "DATATYPE", "0");
  }
}

/// A command document for reports of these tags, made by one of the report commands.
xml::Document ReportCommand(std::string_view command, std::string_view projectName,
                            const std::vector<std::string_view>& reportNames, const std::vector<SampleTag>& tags) {
  const xml::Document document = MakeCommandDocument(command, {{"projectName", projectName}});
  AddReportNames(document, reportNames);
  AddParameter(document, "UnitsOfMeasure", "English");
  AddTags(document, tags);
  return document;
}

std::vector<SampleFile> CommandFiles(std::string_view projectName) {
  const xml::Document available = MakeCommandDocument("getAvailableReports", {{"PDSG", kRooftop.pdsg}});
  const xml::Document schedule =
      ReportCommand("getReport", projectName, {"EquipmentSchedule"}, {kRooftop, kHeatPump, kFanCoil});
  const xml::Node again = xml::AppendElement(xml::AppendElement(schedule.Root(), "command"), "Report");
  xml::AppendElement(again, "Name", "EquipmentSchedule");
  return {
      {"commands/report-01-available.xml", available.Bytes()},
      {"commands/report-02-one.xml",
       ReportCommand("getReport", projectName, {"UnitReport"}, {kRooftop, kHeatPump, kFanCoil}).Bytes()},
      {"commands/report-03-several.xml",
       ReportCommand("getReports", projectName, {"UnitReport", "ECO__Desig_Data_Sheet"}, {kRooftop, kAirHandler})
           .Bytes()},
      {"commands/report-04-submittal.xml",
       ReportCommand("getSubmittal", projectName, {"NGSubmittal"}, {kRooftop, kAirHandler, kChiller}).Bytes()},
      {"commands/report-05-schedule.xml", schedule.Bytes()},
  };
}

}  // namespace

std::vector<SampleFile> SampleReportFiles(std::string_view projectName) {
  std::vector<SampleFile> files = CommandFiles(projectName);
  for (const SampleDefinition& definition : kDefinitions) {
    files.push_back(DefinitionFile(definition));
  }
  const std::string rooftop = kRoot + "RTU47/Code/Reports/";
  files.push_back({rooftop + "Drawings/rtu-unit.bmp", MakeBitmap(64, 40, 0x806020)});
  files.push_back({rooftop + "Drawings/rtu-outline.dxf", OutlineDrawing()});
  files.push_back({rooftop + "GSpec/rtu-guide.rtf", GuideSpecification()});
  files.push_back({kRoot + "XRC47/Code/Reports/Drawings/xrc-unit.bmp", MakeBitmap(40, 40, 0x204080)});
  files.push_back({kRoot + "Bin/KDCustomRpt_Cfg.xml", std::string(kConfiguration)});
  return files;
}

}  // namespace parvex::standin
