#include "recording/recorded_case.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <utility>

#include "formats/text/windows_1252.h"
#include "formats/zip/archive_file.h"
#include "formats/zip/zip_reader.h"
#include "journal/bounded_json.h"
#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

constexpr std::uint64_t kLargestCase = std::uint64_t{1} << 30;
constexpr std::size_t kMostSteps = 5'000'000;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, FailureText("the case", path, "it is refused: " + reason));
}

using Members = std::map<std::string, std::string>;

// The members of an archive; files of the machine go into `files`.
Members Take(const std::string& path, std::string_view archive, std::vector<KeptFile>& files) {
  posix::Windows1252 codePage;
  Members members;
  const UnpackLimits limits = {.entry = kLargestCase, .total = kLargestCase, .what = "case"};
  for (PackedEntry& entry : Unpack(codePage, archive, path, limits)) {
    std::replace(entry.name.begin(), entry.name.end(), '\\', '/');
    if (entry.name.find('/') == std::string::npos) {
      members[entry.name] = std::move(entry.bytes);
    } else {
      files.push_back({std::move(entry.name), std::move(entry.bytes), entry.isFolder});
    }
  }
  return members;
}

Members ReadFolder(HostSystem& system, const std::string& path, std::vector<KeptFile>& files) {
  const auto read = [&](std::string_view name) { return system.ReadAll(path + "/" + std::string(name)); };
  std::vector<std::string> present;
  for (const HostSystem::Entry& entry : system.List(path)) {
    present.push_back(entry.name);
  }
  const auto has = [&](std::string_view name) {
    return std::find(present.begin(), present.end(), name) != present.end();
  };
  Members members;
  if (has(kFiles)) {
    members = Take(path, WithDirectory(read(kFiles)), files);
  }
  for (const std::string_view name : {kFacts, kCommand, kReply, kJournal}) {
    if (has(name)) {
      members[std::string(name)] = read(name);
    }
  }
  return members;
}

Json ParsedOrNull(std::string_view text) {
  try {
    return journal::ParseBounded(text);
  } catch (const std::exception&) {
    return nullptr;
  }
}

Json ReadFacts(const std::string& path, const Members& members) {
  const auto member = members.find(std::string(kFacts));
  if (member == members.end()) {
    Refuse(path, "it has no " + std::string(kFacts));
  }
  const Json facts = ParsedOrNull(member->second);
  if (!facts.is_object() || !facts.contains("format") || !facts["format"].is_number_unsigned()) {
    Refuse(path, std::string(kFacts) + " is damaged");
  }
  if (facts["format"].get<std::uint64_t>() > kFormat) {
    Refuse(path, "its format " + facts["format"].dump() + " is later than what this version reads (" +
                     std::to_string(kFormat) + ")");
  }
  return facts;
}

// Of an unfinished journal the last line may be cut off.
std::vector<Json> ReadSteps(const std::string& path, std::string_view journal, bool isFinished) {
  std::vector<Json> steps;
  while (!journal.empty()) {
    const std::size_t end = journal.find('\n');
    Json step = ParsedOrNull(journal.substr(0, end));
    const bool isStep = step.is_object() && step.contains("n") && step["n"].is_number_unsigned() &&
                        step.contains("at") && step["at"].is_string();
    if (isStep) {
      steps.push_back(std::move(step));
    } else if (isFinished || end != std::string_view::npos) {
      Refuse(path, "line " + std::to_string(steps.size() + 1) + " of " + std::string(kJournal) + " is damaged");
    }
    if (steps.size() > kMostSteps) {
      Refuse(path, "it has more steps than are read");
    }
    journal.remove_prefix(end == std::string_view::npos ? journal.size() : end + 1);
  }
  return steps;
}

bool IsFolder(HostSystem& system, const std::string& path) {
  const std::vector<HostSystem::Entry> entries = system.List(path);
  return std::any_of(entries.begin(), entries.end(),
                     [](const HostSystem::Entry& entry) { return entry.name == kFiles || entry.name == kFacts; });
}

std::string LineOf(const Json& line) { return line.dump(-1, ' ', false, Json::error_handler_t::replace); }

void AddAll(ArchiveFile& archive, const RecordedCase& written) {
  archive.Add(kFacts, LineOf(written.facts));
  archive.Add(kCommand, written.command);
  if (written.reply) {
    archive.Add(kReply, *written.reply);
  }
  archive.Begin(kJournal);
  for (const Json& step : written.steps) {
    archive.Append(LineOf(step) + "\n");
  }
  archive.End();
  for (const KeptFile& file : written.files) {
    archive.Add(file.isFolder ? file.name + "/" : file.name, file.bytes);
  }
  archive.Finish();
}

}  // namespace

RecordedCase ReadCase(HostSystem& system, const std::string& path) {
  RecordedCase read;
  read.isFinished = !IsFolder(system, path);
  const Members members =
      read.isFinished ? Take(path, system.ReadAll(path), read.files) : ReadFolder(system, path, read.files);
  if (members.empty()) {
    Refuse(path, "it is no case");
  }
  read.facts = ReadFacts(path, members);
  const auto textOf = [&](std::string_view name) {
    const auto member = members.find(std::string(name));
    return member == members.end() ? std::nullopt : std::optional(member->second);
  };
  read.command = textOf(kCommand).value_or("");
  read.reply = textOf(kReply);
  read.steps = ReadSteps(path, textOf(kJournal).value_or(""), read.isFinished);
  return read;
}

void WriteCase(HostSystem& system, const RecordedCase& written, const std::string& path) {
  const std::string beside = path + ".parvex-new";
  std::unique_ptr<HostSystem::File> file = system.MakeFile(beside);
  try {
    ArchiveFile archive(*file);
    AddAll(archive, written);
    file.reset();
    system.Rename(beside, path);
  } catch (...) {
    file.reset();
    try {
      system.Remove(beside);
    } catch (const AutomationError&) {
      // What the system said first counts.
    }
    throw;
  }
}

}  // namespace parvex::recording
