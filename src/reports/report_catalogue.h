#pragma once

#include <string>
#include <string_view>

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// The legacy application's reports are made from definition templates, XML files of fixed names, kept for each product
// data set group below the data root.

/// The category that the report server is told: the type itself for UnitReport, PerformanceReport, CertifiedDrawing,
/// GuideSpecification and AcousticSummary, "Custom" for every other name. InputSummary, WiringDiagram and TitlePage are
/// "Custom" too although they have standard templates: deliberate, the report server knows five categories.
std::string ReportCategory(std::string_view reportType);

/// `folder` (used unchanged, so with the separator that it needs) followed by the template file of a standard type, or
/// of the custom report when the type is "Custom". The custom EquipmentSchedule has a bare file name. An unknown custom
/// name shows a message box and gives an empty path; any other type gives the folder alone.
std::string ReportTemplatePath(const Platform& platform, std::string_view folder, std::string_view reportType,
                               std::string_view customName);

/// The template of a report by its own name: as a standard type where it is one, else as a custom report.
std::string TemplateOfReport(const Platform& platform, std::string_view pdsg, std::string_view reportName);

/// Folders of a product data set group, without final backslash.
std::string TemplatesFolder(const Platform& platform, std::string_view pdsg);
std::string DrawingsFolder(const Platform& platform, std::string_view pdsg);

/// Where the report server leaves what it made, without final backslash.
std::string ReportsTempFolder(const Platform& platform);

/// REPORTS with a REPORT (PARAMETER of NAME and VALUE) for every report that the product data set group of parameter
/// PDSG offers: standard types whose template exists, then the custom reports that KDCustomRpt_Cfg.xml of the program
/// folder lists. A null document when PDSG is empty.
xml::Document GetAvailableReports(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
