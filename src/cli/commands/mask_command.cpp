#include "cli/commands/mask_command.h"

#include <filesystem>
#include <memory>
#include <system_error>

#include "cli/cases/run_text.h"
#include "cli/commands/case_run_command.h"
#include "cli/host/host.h"
#include "cli/terminal/output_file.h"
#include "masking/masked_case.h"
#include "recording/recorded_case.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

namespace fs = std::filesystem;

bool IsSameFile(const std::string& left, const std::string& right) {
  std::error_code none;
  return left == right || fs::equivalent(PathOf(left), PathOf(right), none);
}

}  // namespace

ExitStatus MaskCase(const MaskCaseOptions& options) {
  if (IsSameFile(options.output, options.file)) {
    throw UsageError(options.output + " is the case that is to be masked");
  }
  if (!options.table.empty() &&
      (IsSameFile(options.table, options.output) || IsSameFile(options.table, options.file))) {
    throw UsageError("the table needs a file of its own");
  }
  const std::unique_ptr<HostSystem> system = ThisSystem();
  try {
    const recording::RecordedCase whole = recording::ReadCase(*system, options.file);
    const auto run = [&](const recording::RecordedCase& one) {
      const replay::RunResult result = RunOnce(*system, one);
      return result.IsReproduced() ? std::string() : TextOfRun(result);
    };
    const masking::Options how = {.key = masking::NewKey(), .keepPrices = options.keepPrices};
    const masking::MaskedCase masked = masking::MaskCase(whole, how, run);
    if (!options.table.empty()) {
      OutputFile(options.table, OutputFile::Readers::OwnerOnly).Write(masking::TextOf(masked.table));
    }
    recording::WriteCase(*system, masked.masked, options.output);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
  return kReply;
}

}  // namespace parvex::cli
