#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace parvex::standin {

/// A file of a machine folder.
struct SampleFile {
  std::string path;  ///< in the machine folder, with slashes; ASCII
  std::string bytes;
};

/// What the sample machine's reports are made of: report definitions, drawings and guide specifications by product data
/// set group, KDCustomRpt_Cfg.xml, and command documents that ask for reports of the tags of `projectName`.
std::vector<SampleFile> SampleReportFiles(std::string_view projectName);

}  // namespace parvex::standin
