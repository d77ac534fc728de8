#include "cli/commands/case_run_command.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/cases/run_text.h"
#include "cli/host/host.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"
#include "recording/case_layout.h"
#include "recording/recorded_case.h"
#include "replay/case_run.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

using recording::RecordedCase;

// A folder that is gone again when this goes.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(HostSystem& system) : system_(system) {
    const std::u8string parent = std::filesystem::temp_directory_path().generic_u8string();
    const std::string name =
        std::string(parent.begin(), parent.end()) + "/parvex-" + std::to_string(system.ThisProgram().processId) + "-";
    for (unsigned number = 0;; ++number) {
      path_ = name + std::to_string(number);
      if (system_.CreateNewFolder(path_)) {
        return;
      }
    }
  }
  ~TemporaryFolder() {
    try {
      system_.RemoveFolder(path_);
    } catch (const AutomationError&) {
      // What another program holds open stays.
    }
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  HostSystem& system_;
  std::string path_;
};

void RequireEmptyFolder(HostSystem& system, const std::string& folder) {
  std::error_code none;
  const auto status = std::filesystem::symlink_status(PathOf(folder), none);
  const bool isNew = status.type() == std::filesystem::file_type::not_found;
  if (!isNew && (!std::filesystem::is_directory(status) || !system.List(folder).empty())) {
    throw UsageError(folder + " is no empty folder");
  }
  system.CreateFolders(folder);
}

replay::RunResult Run(HostSystem& system, const RecordedCase& read, const std::string& keep, bool lenient) {
  replay::RunOptions options = {.folder = keep, .machine = MachineOfFolder, .lenient = lenient};
  if (!keep.empty()) {
    RequireEmptyFolder(system, keep);
    return replay::RunCase(system, read, options);
  }
  const TemporaryFolder folder(system);
  options.folder = folder.Path();
  return replay::RunCase(system, read, options);
}

bool IsCase(const HostSystem::Entry& entry) {
  return entry.name.ends_with(entry.isFolder ? recording::kUnfinishedSuffix : recording::kSuffix);
}

bool IsFolderOfCases(HostSystem& system, const std::string& path) {
  std::error_code none;
  if (!std::filesystem::is_directory(PathOf(path), none)) {
    return false;
  }
  const std::vector<HostSystem::Entry> entries = system.List(path);
  return std::none_of(entries.begin(), entries.end(), [](const HostSystem::Entry& entry) {
    return entry.name == recording::kFacts || entry.name == recording::kFiles;
  });
}

ExitStatus RunFolder(HostSystem& system, const RunCaseOptions& options) {
  std::vector<HostSystem::Entry> entries = system.List(options.file);
  std::erase_if(entries, [](const HostSystem::Entry& entry) { return !IsCase(entry); });
  std::ranges::sort(entries, {}, &HostSystem::Entry::name);
  if (entries.empty()) {
    throw UsageError(options.file + " holds no case");
  }
  std::size_t reproduced = 0;
  for (const HostSystem::Entry& entry : entries) {
    std::string line;
    try {
      const RecordedCase read = recording::ReadCase(system, options.file + "/" + entry.name);
      const std::string keep = options.keep.empty() ? "" : options.keep + "/" + entry.name;
      const replay::RunResult result = Run(system, read, keep, options.lenient);
      reproduced += result.IsReproduced() ? 1 : 0;
      line = LineOfRun(result);
    } catch (const AutomationError& error) {
      line = "not reproduced: " + Printable(error.Description());
    } catch (const UsageError& error) {
      line = std::string("not reproduced: ") + Printable(error.what());
    }
    WriteText(Printable(entry.name) + "  " + line + "\n");
  }
  const std::size_t others = entries.size() - reproduced;
  WriteText(std::to_string(reproduced) + " reproduced, " + std::to_string(others) + " not\n");
  return others == 0 ? kReply : kFailedReply;
}

}  // namespace

replay::RunResult RunOnce(HostSystem& system, const RecordedCase& read) { return Run(system, read, {}, false); }

ExitStatus RunCases(const RunCaseOptions& options) {
  const std::unique_ptr<HostSystem> system = ThisSystem();
  if (IsFolderOfCases(*system, options.file)) {
    if (!options.keep.empty()) {
      RequireEmptyFolder(*system, options.keep);
    }
    return RunFolder(*system, options);
  }
  try {
    const replay::RunResult result =
        Run(*system, recording::ReadCase(*system, options.file), options.keep, options.lenient);
    WriteText(TextOfRun(result));
    return result.IsReproduced() ? kReply : kFailedReply;
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
}

}  // namespace parvex::cli
