#pragma once

#include <string>
#include <vector>

#include "replay/difference.h"
#include "replay/kept_files.h"
#include "seams/host_system.h"

namespace parvex::replay {

/// Writes the files into a folder of the system, which exists and is empty: a machine folder. Names that differ in
/// letter case only are one.
void LayOut(HostSystem& system, const std::string& folder, const KeptFiles& files);

/// In which files and folders such a folder differs from what is expected. Files are compared byte for byte; databases
/// that differ by their tables; with `asXml`, those that differ as XML, layout aside.
std::vector<Difference> CompareFiles(HostSystem& system, const std::string& folder, const KeptFiles& expected,
                                     bool asXml);

}  // namespace parvex::replay
