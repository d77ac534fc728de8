#include "reports/drawing_files.h"

#include <string>

#include "formats/text/file_names.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/install_paths.h"
#include "reports/report_catalogue.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

/// Whether a name without backslash leads elsewhere all the same: a slash separates too, and a colon names a drive.
bool LeadsOut(const std::string& fileName) {
  return fileName.find(':') != std::string::npos || ("/" + fileName + "/").find("/../") != std::string::npos;
}

bool LiesBelow(std::string_view path, std::string_view folder) {
  return FoldPath(path).starts_with(FoldPath(folder) + "\\");
}

/// A full path is taken where drawings are kept, and where the legacy application leaves the pictures that it made for
/// a report. Whoever writes a template must not have any other file of the machine embedded, or deleted.
bool MayBeEmbedded(const Platform& platform, const std::string& path, std::string_view folder) {
  return LiesBelow(path, folder) || LiesBelow(path, ReportsTempFolder(platform)) ||
         LiesBelow(path, GetDesignTempFolder(platform));
}

std::string EncodedDrawing(const Platform& platform, const std::string& fileName, std::string_view folder) {
  if (fileName.empty()) {
    return {};
  }
  RefuseDevicePath(fileName);
  const bool isPath = fileName.find('\\') != std::string::npos;
  if (isPath ? !MayBeEmbedded(platform, fileName, folder) : LeadsOut(fileName)) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "the drawing file name \"" + fileName + "\" leads out of " + std::string(folder));
  }
  return EncodeFileBase64(platform, ResolveReportFile(fileName, folder));
}

void EmbedImages(const Platform& platform, const xml::Document& report, std::string_view folder) {
  for (const xml::Node& image : report.All("//image")) {
    const std::string fileName = image.Text();
    image.SetText("");
    image.Append(report.CreateCData(EncodedDrawing(platform, fileName, folder)));
    xml::AppendElement(image, "filename", fileName);
  }
}

void EmbedSections(const Platform& platform, const xml::Document& report, std::string_view folder,
                   std::string_view type) {
  for (const xml::Node& section : report.All("//section[@type='" + std::string(type) + "']")) {
    for (const xml::Node& fileName : section.All(".//filename")) {
      fileName.Parent().Append(report.CreateCData(EncodedDrawing(platform, fileName.Text(), folder)));
    }
  }
}

}  // namespace

void EmbedDrawingFiles(const Platform& platform, const xml::Document& report, std::string_view pdsg) {
  const std::string folder = DrawingsFolder(platform, pdsg);
  EmbedImages(platform, report, folder);
  EmbedSections(platform, report, folder, "dwg");
  EmbedSections(platform, report, folder, "rtf");
}

}  // namespace parvex
