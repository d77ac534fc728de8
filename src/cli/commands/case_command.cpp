#include "cli/commands/case_command.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "cli/cases/case_page.h"
#include "cli/cases/case_text.h"
#include "cli/host/host.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"
#include "recording/case_layout.h"
#include "recording/recorded_case.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

using recording::RecordedCase;

RecordedCase Read(const std::string& file) {
  try {
    return recording::ReadCase(*ThisSystem(), file);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
}

void WriteInto(HostSystem& system, const std::string& folder, const std::string& name, std::string_view bytes) {
  const std::string path = folder + "/" + name;
  system.CreateFolders(path.substr(0, path.rfind('/')));
  system.WriteAll(path, bytes);
}

}  // namespace

ExitStatus ListCases(const std::string& folder) {
  const std::unique_ptr<HostSystem> system = ThisSystem();
  std::error_code none;
  if (!std::filesystem::is_directory(PathOf(folder), none)) {
    throw UsageError(folder + " is no folder");
  }
  std::vector<HostSystem::Entry> entries = system->List(folder);
  std::ranges::sort(entries, {}, &HostSystem::Entry::name);
  for (const HostSystem::Entry& entry : entries) {
    if (!entry.name.ends_with(entry.isFolder ? recording::kUnfinishedSuffix : recording::kSuffix)) {
      continue;
    }
    std::string line = Printable(entry.name) + "  ";
    try {
      line += LineOfCase(recording::ReadCase(*system, folder + "/" + entry.name));
    } catch (const AutomationError& error) {
      line += Printable(error.Description());
    }
    WriteText(line + "\n");
  }
  return kReply;
}

ExitStatus ShowCase(const ShowCaseOptions& options) {
  const RecordedCase read = Read(options.file);
  if (!options.html.empty()) {
    OutputFile(options.html).Write(CasePage(read, options.file));
    return kReply;
  }
  WriteText(options.json ? EscapedJson(JsonOfCase(read)) : TextOfCase(read));
  return kReply;
}

ExitStatus ListCaseFiles(const std::string& file) {
  WriteText(FilesOfCase(Read(file)));
  return kReply;
}

ExitStatus ExtractCase(const std::string& file, const std::string& folder) {
  const RecordedCase read = Read(file);
  const std::unique_ptr<HostSystem> system = ThisSystem();
  // Into a new folder only: nothing that stands there can lead elsewhere.
  std::error_code none;
  if (std::filesystem::symlink_status(PathOf(folder), none).type() != std::filesystem::file_type::not_found) {
    throw UsageError(folder + " exists already");
  }
  system->CreateFolders(folder);
  WriteInto(*system, folder, std::string(recording::kFacts), read.facts.dump(2));
  WriteInto(*system, folder, std::string(recording::kCommand), read.command);
  if (read.reply) {
    WriteInto(*system, folder, std::string(recording::kReply), *read.reply);
  }
  std::string journal;
  for (const recording::Json& step : read.steps) {
    journal += step.dump() + "\n";
  }
  WriteInto(*system, folder, std::string(recording::kJournal), journal);
  for (const recording::KeptFile& kept : read.files) {
    if (kept.isFolder) {
      system->CreateFolders(folder + "/" + kept.name);
    } else {
      WriteInto(*system, folder, kept.name, kept.bytes);
    }
  }
  return kReply;
}

}  // namespace parvex::cli
