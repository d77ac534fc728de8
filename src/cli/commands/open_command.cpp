#include "cli/commands/open_command.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "cli/cases/case_text.h"
#include "cli/host/host.h"
#include "cli/open/content.h"
#include "cli/terminal/standard_streams.h"
#include "recording/case_layout.h"
#include "recording/recorded_case.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

// Of what is no case.
constexpr std::size_t kLargestFile = 256u << 20;

// What is shown of a case is what `case show` shows.
void TellCase(const OpenOptions& options, const recording::RecordedCase& read, std::size_t bytes) {
  Content content = {.kind = "case", .what = "a recorded call", .members = Json::object()};
  if (options.json) {
    content.members["case"] = Json::parse(JsonOfCase(read));
    WriteText(ContentAsJson(content, options.file, bytes));
  } else {
    WriteText(ContentAsText(content, options.file, bytes) + "\n" + TextOfCase(read));
  }
}

// Whether bytes may be a case, whose own reader then says whether they are.
bool MayBeCase(std::string_view bytes) {
  return bytes.starts_with("PK\3\4") && bytes.find(recording::kFacts) != bytes.npos &&
         bytes.find(recording::kJournal) != bytes.npos;
}

// A case, or why a file that may be one cannot be read as one; neither for any other file.
struct Tried {
  std::optional<recording::RecordedCase> read;
  std::string problem;
};

Tried TryAsCase(const OpenOptions& options, HostSystem& system, std::string_view bytes) {
  if (options.file == "-" || !MayBeCase(bytes)) {
    return {};
  }
  try {
    return {.read = recording::ReadCase(system, options.file), .problem = {}};
  } catch (const AutomationError& error) {
    return {.read = std::nullopt, .problem = error.Description()};
  }
}

std::string Unknown(const OpenOptions& options, std::string_view bytes) {
  return options.file + (bytes.empty() ? " is empty"
                                       : " is nothing that is known here: no XML document, archive or Jet database, no "
                                         "registry text, journal or JSON, no ini file");
}

void TellFolder(const OpenOptions& options, HostSystem& system) {
  const bool isCase = std::ranges::any_of(system.List(options.file), [](const HostSystem::Entry& entry) {
    return entry.name == recording::kFacts || entry.name == recording::kFiles || entry.name == recording::kJournal;
  });
  if (!isCase) {
    throw UsageError(options.file + " is a folder, and no case that was left unfinished");
  }
  TellCase(options, recording::ReadCase(system, options.file), 0);
}

void TellLargeCase(const OpenOptions& options, HostSystem& system, std::uint64_t size) {
  try {
    TellCase(options, recording::ReadCase(system, options.file), size);
  } catch (const AutomationError& error) {
    throw UsageError(options.file + " has more than " + std::to_string(kLargestFile) +
                     " bytes, as only a case may have: " + error.Description());
  }
}

void TellFile(const OpenOptions& options) {
  const std::unique_ptr<HostSystem> system = ThisSystem();
  if (options.file != "-" && system->IsFolder(options.file)) {
    TellFolder(options, *system);
    return;
  }
  if (const std::uint64_t size = options.file == "-" ? 0 : system->SizeOf(options.file); size > kLargestFile) {
    TellLargeCase(options, *system, size);
    return;
  }
  const std::string bytes = ReadInput(options.file, kLargestFile);
  const Tried tried = TryAsCase(options, *system, bytes);
  if (tried.read) {
    TellCase(options, *tried.read, bytes.size());
    return;
  }
  Looking looking;
  std::optional<Content> content = ContentOf(bytes, options.file, looking);
  if (!content) {
    throw UsageError(Unknown(options, bytes));
  }
  if (content->kind == "case" && !tried.problem.empty()) {
    content->members["problem"] = tried.problem;
  }
  WriteText(options.json ? ContentAsJson(*content, options.file, bytes.size())
                         : ContentAsText(*content, options.file, bytes.size()));
}

}  // namespace

ExitStatus Open(const OpenOptions& options) {
  try {
    TellFile(options);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
  return kReply;
}

}  // namespace parvex::cli
