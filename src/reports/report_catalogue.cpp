#include "reports/report_catalogue.h"

#include "formats/text/text.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/program_folder_document.h"
#include "protocol/command_document.h"

namespace parvex {
namespace {

struct StandardReport {
  std::string_view type;
  std::string_view templateFile;
  std::string_view displayName;  // empty: never offered
  bool isCategory;               // the report server knows a category of that name
};

// In the order in which they are offered.
constexpr StandardReport kStandardReports[] = {
    {"UnitReport", "UnitReport_qdf.xml", "Unit Report", true},
    {"PerformanceReport", "PerformanceSmry_qdf.xml", "Performance Output Summary", true},
    {"AcousticSummary", "AcousticSmry_qdf.xml", "Acoustics Data", true},
    {"CertifiedDrawing", "CertifiedDwg_qdf.xml", "Certified Drawing Data", true},
    {"WiringDiagram", "WiringDiagram_qdf.xml", "Field Wiring Diagram", false},
    {"GuideSpecification", "GuideSpec_qdf.xml", "Guide Specifications", true},
    {"InputSummary", "InputSummary_qdf.xml", "", false},
    {"TitlePage", "TitlePage_qdf.xml", "", false},
};

struct CustomReport {
  std::string_view offeredType;  // the name that front ends are offered
  std::string_view lookupName;   // the name that finds the template
  std::string_view templateFile;
  std::string_view configured;  // how KDCustomRpt_Cfg.xml names the template; empty: never offered
  std::string_view displayName;
};

// The ECO sheet is offered with one underscore and found with two, deliberately: both forms are in use on either side.
constexpr CustomReport kCustomReports[] = {
    {"DetailedPerformanceReport", "DetailedPerformanceReport", "DetailedPerfSmry_qdf.xml", "DetailedPerfSmry_qdf",
     "Detailed Performance Report"},
    {"SpecSheet", "SpecSheet", "SpecSheet_qdf.xml", "SpecSheet_qdf", "Specification Sheet"},
    {"FeatureSheet", "FeatureSheet", "UnitFeatureSheet_qdf.xml", "UnitFeatureSheet_qdf", "Feature Sheet"},
    {"CornerWeight", "CornerWeight", "CornerWeight_qdf.xml", "CornerWeight_qdf", "Corner Weights Report"},
    {"ControlSheet", "ControlSheet", "ControlsSheet_qdf.xml", "ControlsSheet_qdf", "Custom Controls Sheet"},
    {"BACNetPointsList", "BACNetPointsList", "BACNet_qdf.xml", "BACNet_qdf", "BACNet Points List"},
    {"ECO_Desig_Data_Sheet", "ECO__Desig_Data_Sheet", "ECO_Desig_Data_Sheet.xml", "ECO_Desig_Data_Sheet", "ECO Design"},
    {"EquipmentSchedule", "EquipmentSchedule", "DefaultScheduleTemplate.xml", "", ""},
    {"NGSubmittal", "NGSubmittal", "NGSubmittal_qdf.xml", "", ""},
};

constexpr std::string_view kCustom = "Custom";
constexpr std::string_view kBareFileReport = "EquipmentSchedule";

const StandardReport* FindStandard(std::string_view type) {
  for (const StandardReport& report : kStandardReports) {
    if (report.type == type) {
      return &report;
    }
  }
  return nullptr;
}

std::string CustomTemplatePath(const Platform& platform, std::string_view folder, std::string_view customName) {
  for (const CustomReport& report : kCustomReports) {
    if (report.lookupName == customName) {
      return std::string(customName == kBareFileReport ? "" : folder).append(report.templateFile);
    }
  }
  platform.messageBoxes->Show("Unrecognized Report " + std::string(customName), kDefaultCaption,
                              MessageBoxes::Icon::None);
  return {};
}

std::string ReportsFolder(const Platform& platform, std::string_view pdsg, std::string_view name) {
  return GetDataRoot(platform) + "\\" + std::string(pdsg) + "\\Code\\Reports\\" + std::string(name);
}

void Offer(const xml::Document& reports, std::string_view type, std::string_view displayName) {
  xml::AppendElement(reports.Root(), "REPORT").Append(MakeParameterElement(reports, type, displayName));
}

/// What a qdf entry names: without the five characters before the name and the extension behind it; nothing for an
/// entry of 10 characters or fewer.
std::string_view ConfiguredName(std::string_view qdf) {
  const std::size_t length = LengthInUnits(qdf);
  return length > 10 ? DropUnits(FirstUnits(qdf, length - 4), 5) : std::string_view();
}

void OfferConfigured(const xml::Document& reports, std::string_view qdf) {
  const std::string_view name = ConfiguredName(qdf);
  for (const CustomReport& report : kCustomReports) {
    if (!report.configured.empty() && report.configured == name) {
      Offer(reports, report.offeredType, report.displayName);
    }
  }
}

/// The Builder elements of a group. The name is compared here and never made part of an expression.
void OfferCustomReports(const Platform& platform, const xml::Document& reports, std::string_view pdsg) {
  const xml::Document configuration = LoadFromProgramFolder(platform, kCustomReportsFile);
  for (const xml::Node& builder : configuration.All("//Builder")) {
    if (builder.Attribute("name") != pdsg) {
      continue;
    }
    for (const xml::Node& report : builder.All(".//report")) {
      if (const xml::Node qdf = report.Descendant("qdf")) {
        OfferConfigured(reports, qdf.Text());
      }
    }
    return;
  }
}

}  // namespace

std::string ReportCategory(std::string_view reportType) {
  const StandardReport* report = FindStandard(reportType);
  return std::string(report != nullptr && report->isCategory ? reportType : kCustom);
}

std::string ReportTemplatePath(const Platform& platform, std::string_view folder, std::string_view reportType,
                               std::string_view customName) {
  if (const StandardReport* report = FindStandard(reportType)) {
    return std::string(folder).append(report->templateFile);
  }
  return reportType == kCustom ? CustomTemplatePath(platform, folder, customName) : std::string(folder);
}

std::string TemplateOfReport(const Platform& platform, std::string_view pdsg, std::string_view reportName) {
  const std::string folder = TemplatesFolder(platform, pdsg) + "\\";
  return ReportTemplatePath(platform, folder, FindStandard(reportName) != nullptr ? reportName : kCustom, reportName);
}

std::string TemplatesFolder(const Platform& platform, std::string_view pdsg) {
  return ReportsFolder(platform, pdsg, "Templates");
}

std::string ReportsTempFolder(const Platform& platform) { return GetBinPath(platform) + "\\Reports\\Temp"; }

std::string DrawingsFolder(const Platform& platform, std::string_view pdsg) {
  return ReportsFolder(platform, pdsg, "Drawings");
}

xml::Document GetAvailableReports(LegacyLink& link, const xml::Document& command) {
  const std::string pdsg = GetParamFromCmdDoc(command, "PDSG");
  if (pdsg.empty()) {
    return {};
  }
  const xml::Document reports = xml::Document::Parse("<REPORTS/>");
  for (const StandardReport& report : kStandardReports) {
    if (!report.displayName.empty() && FileExists(link.platform, TemplateOfReport(link.platform, pdsg, report.type))) {
      Offer(reports, report.type, report.displayName);
    }
  }
  OfferCustomReports(link.platform, reports, pdsg);
  return reports;
}

}  // namespace parvex
