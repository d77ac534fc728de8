#include "recording/recorded_case.h"

#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "formats/json/bounded_json.h"
#include "formats/zip/archive_file.h"
#include "recording/case_layout.h"
#include "recording/case_members.h"
#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kLongestLine = 64u << 20;

// Null for what is no JSON; `refuse` is told what is beyond the bounds.
template <typename Refuse>
Json Parsed(std::string_view text, std::size_t& values, Refuse refuse) {
  try {
    return ParseBoundedJson(text, values);
  } catch (const std::invalid_argument& problem) {
    refuse("is damaged: " + std::string(problem.what()));
  } catch (const Json::exception&) {
    // Damaged, or the last line of an unfinished journal.
  }
  return nullptr;
}

Json ReadFacts(const std::string& path, const CaseMembers& members) {
  const auto member = members.own.find(std::string(kFacts));
  if (member == members.own.end()) {
    if (members.isFinished) {
      RefuseCase(path, "it has no " + std::string(kFacts));
    }
    return {{"format", kFormat}, {"outcome", "unfinished"}};  // the host died with its first step
  }
  std::size_t values = kMostJsonValues;
  Json facts = Parsed(member->second, values,
                      [&](const std::string& problem) { RefuseCase(path, std::string(kFacts) + " " + problem); });
  const Json format = facts.is_object() ? facts.value("format", Json()) : Json();
  if (!format.is_number_unsigned() || format == 0) {
    RefuseCase(path, std::string(kFacts) + " is damaged");
  }
  if (format.get<std::uint64_t>() > kFormat) {
    RefuseCase(path, "its format " + format.dump() + " is later than what this version reads (" +
                         std::to_string(kFormat) + ")");
  }
  return facts;
}

bool IsStep(const Json& line) {
  return line.is_object() && line.value("n", Json()).is_number_unsigned() && line.value("at", Json()).is_string();
}

// Of an unfinished journal the last line may be cut off.
std::vector<Json> ReadSteps(const std::string& path, std::string_view journal, bool isFinished) {
  std::vector<Json> steps;
  const auto refuse = [&](const std::string& problem) {
    RefuseCase(path, "line " + std::to_string(steps.size() + 1) + " of " + std::string(kJournal) + " " + problem);
  };
  std::size_t values = kMostJsonValues;  // of the whole journal
  while (!journal.empty()) {
    const std::size_t end = journal.find('\n');
    const std::string_view line = journal.substr(0, end);
    if (line.size() > kLongestLine) {
      refuse("has " + std::to_string(line.size()) + " bytes, more than are read");
    }
    Json step = Parsed(line, values, refuse);
    if (IsStep(step)) {
      steps.push_back(std::move(step));
    } else if (isFinished || end != std::string_view::npos) {
      refuse("is damaged");
    }
    journal.remove_prefix(end == std::string_view::npos ? journal.size() : end + 1);
  }
  return steps;
}

RecordedCase ReadBounded(HostSystem& system, const std::string& path) {
  CaseMembers members = ReadMembers(system, path);
  if (members.isFinished && members.own.empty()) {
    RefuseCase(path, "it is no case");
  }
  RecordedCase read;
  read.isFinished = members.isFinished;
  read.facts = ReadFacts(path, members);
  read.steps = ReadSteps(path, members.own[std::string(kJournal)], read.isFinished);
  read.command = std::move(members.own[std::string(kCommand)]);
  if (const auto reply = members.own.find(std::string(kReply)); reply != members.own.end()) {
    read.reply = std::move(reply->second);
  }
  read.files = std::move(members.files);
  return read;
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
  try {
    return ReadBounded(system, path);
  } catch (const std::bad_alloc&) {
    RefuseCase(path, "reading it takes more memory than there is");
  }
}

void WriteCase(HostSystem& system, const RecordedCase& written, const std::string& path) {
  const std::unique_ptr<HostSystem::Replacement> file = system.MakeReplacement(path, HostSystem::Readers::OwnerOnly);
  {
    ArchiveFile archive(*file);
    AddAll(archive, written);
  }
  file->TakeName();
}

}  // namespace parvex::recording
