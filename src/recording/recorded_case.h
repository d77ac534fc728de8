#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "recording/case_writer.h"
#include "seams/host_system.h"

namespace parvex::recording {

/// A file of a case.
struct KeptFile {
  std::string name;  ///< components separated by "/", none of which leads out of a folder
  std::string bytes;
  bool isFolder = false;
};

/// A case that was read back.
struct RecordedCase {
  bool isFinished = true;  ///< an archive, not a folder of a host that died
  Json facts;
  std::string command;
  std::optional<std::string> reply;
  std::vector<Json> steps;      ///< the lines of the journal, in order
  std::vector<KeptFile> files;  ///< what stands below machine/ and after/
};

/// Reads a case: an archive, or a folder that was left unfinished, of which all is taken that is whole; the facts of
/// one that has none yet say so much. An AutomationError (5) that names what is wrong for one that is damaged, hostile,
/// too large or of a later format; the error of the system for one that cannot be read. It takes about twice the memory
/// of its bytes.
RecordedCase ReadCase(HostSystem& system, const std::string& path);

/// Writes a case as an archive, one that was left unfinished too; a file of that name is replaced by the whole archive
/// or not at all. Errors are those of the system.
void WriteCase(HostSystem& system, const RecordedCase& written, const std::string& path);

}  // namespace parvex::recording
