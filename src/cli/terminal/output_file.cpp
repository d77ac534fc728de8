#include "cli/terminal/output_file.h"

#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "cli/terminal/standard_streams.h"
#include "seams/automation_error.h"

namespace parvex::cli {

OutputFile::OutputFile(const std::string& name, Readers readers) : system_(ThisSystem()) {
  if (name == "-" || name == "/dev/stdout") {
    return;
  }
  try {
    file_ = system_->MakeReplacement(name, readers);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
}

OutputFile::~OutputFile() = default;

void OutputFile::Write(std::string_view bytes) {
  if (file_ == nullptr) {
    WriteDocument(bytes);
    return;
  }
  file_->Append(bytes);
  file_->TakeName();
}

}  // namespace parvex::cli
