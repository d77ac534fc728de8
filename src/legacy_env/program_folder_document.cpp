#include "legacy_env/program_folder_document.h"

#include <string>

#include "legacy_env/install_paths.h"
#include "seams/automation_error.h"

namespace parvex {

xml::Document LoadDocument(const Platform& platform, std::string_view path) {
  xml::Document document = xml::Document::Load(platform.files->ReadAll(path));
  if (const std::string reason = document.ParseError(); !reason.empty() && platform.notes != nullptr) {
    platform.notes->Take(path, "it does not parse as XML: " + reason);
  }
  return document;
}

xml::Document LoadFromProgramFolder(const Platform& platform, std::string_view fileName) {
  return LoadFromFolder(platform, GetBinPath(platform), fileName);
}

xml::Document LoadFromFolder(const Platform& platform, std::string_view folder, std::string_view fileName) {
  try {
    return LoadDocument(platform, std::string(folder).append("\\").append(fileName));
  } catch (const AutomationError&) {
    return xml::Document::New();
  }
}

}  // namespace parvex
