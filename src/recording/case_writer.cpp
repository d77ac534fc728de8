#include "recording/case_writer.h"

#include <algorithm>
#include <atomic>
#include <exception>

#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kGathered = 256u << 10;
constexpr std::uint64_t kLongestWait = 50'000;  // microseconds that a kept file may not be with the system
constexpr std::size_t kMostMissing = 1'000;
constexpr int kMostTriesForName = 100;

constexpr const char* kBefore = "before";

// Runs a step of the recording; what it throws is given as a text, and never goes further.
template <typename Step>
std::optional<std::string> FailureOf(Step step) noexcept {
  try {
    step();
    return std::nullopt;
  } catch (const std::exception& failure) {
    try {
      return failure.what();
    } catch (...) {
      return std::string();
    }
  } catch (...) {
    return std::string();
  }
}

// Whether a step leaves this program for another, or for what may end it: files and the registry do not.
bool IsOutside(const Json& line) {
  const auto kind = line.find("kind");
  return kind == line.end() || (*kind != "file" && *kind != "registry" && *kind != "ini");
}

[[noreturn]] void RefuseSize() {
  throw MakeRuntimeError(RuntimeError::DiskFull, "it would bring the case to more bytes than are kept");
}

std::string TextOf(const Json& line) { return line.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace

CaseWriter::CaseWriter(HostSystem& system, const std::string& folder, const std::string& command, std::uint64_t largest)
    : system_(system), largest_(largest), folder_(folder), began_(system.Microseconds()) {
  static std::atomic<std::uint64_t> calls = 0;
  const std::uint32_t process = system.ThisProgram().processId;
  int tries = 0;
  do {
    if (++tries > kMostTriesForName) {
      throw MakeFileError(RuntimeError::FileExists, "make the folder", part_);
    }
    name_ = CaseName(system.LocalTime(), process, ++calls, command);
    part_ = folder_ + "/" + name_ + std::string(kUnfinishedSuffix);
  } while (system_.SizeOf(folder_ + "/" + name_ + std::string(kSuffix)) > 0 || !system_.CreateNewFolder(part_));
  files_ = system_.MakeFile(Path(kFiles));
  archive_.emplace(*files_, kGathered, [this](std::string_view member, std::string_view why) { Missing(member, why); });
  journalFile_ = system_.MakeFile(Path(kJournal));
  journal_.emplace(*journalFile_, [this](std::uint64_t step, const char* at, std::string_view why) {
    FailureOf([&] { Missing(std::string(kJournal) + " " + std::to_string(step) + " " + at, why); });
  });
}

CaseWriter::~CaseWriter() { Flush(); }

void CaseWriter::WriteMember(std::string_view member, std::string_view bytes) noexcept {
  const auto failure = FailureOf([&] {
    members_[std::string(member)] = bytes;
    system_.WriteAll(Path(member), bytes);
  });
  if (failure) {
    Missing(member, *failure);
  }
}

void CaseWriter::KeepMember(std::string_view member, std::string_view bytes) noexcept {
  if (const auto failure = FailureOf([&] { archive_->Add(member, bytes); })) {
    Missing(member, *failure);
  }
}

std::uint64_t CaseWriter::Begin(const Json& line) {
  const std::uint64_t step = NextStep();
  FailureOf([&] {
    if (IsOutside(line)) {
      Flush();
    }
    begun_[step] = line;
  });
  Write(step, kBefore, line);
  return step;
}

void CaseWriter::End(std::uint64_t number, const Json& line, const AutomationError* error) {
  FailureOf([&] {
    const auto begun = begun_.find(number);
    Json news = Json::object();
    for (const auto& [key, value] : line.items()) {
      if (begun == begun_.end() || !begun->second.contains(key) || begun->second[key] != value) {
        news[key] = value;
      }
    }
    if (error != nullptr) {
      news["error"] = journal::ErrorJson(*error);
    }
    if (begun != begun_.end()) {
      begun_.erase(begun);
    }
    Write(number, "after", news);
  });
}

void CaseWriter::BeginMember(std::string_view member) noexcept {
  const auto failure = FailureOf([&] {
    archive_->Begin(member);
    member_ = member;
  });
  if (failure) {
    archive_->Drop();
    Missing(member, *failure);
  }
}

void CaseWriter::AppendToMember(std::string_view piece) noexcept {
  if (member_.empty()) {
    return;
  }
  if (const auto failure = FailureOf([&] { archive_->Append(piece); })) {
    DropMember(*failure);
  }
}

void CaseWriter::EndMember() noexcept {
  if (member_.empty()) {
    return;
  }
  if (const auto failure = FailureOf([&] { archive_->End(); })) {
    DropMember(*failure);
  }
  member_.clear();
}

void CaseWriter::DropMember(std::string_view why) noexcept {
  if (member_.empty()) {
    return;
  }
  archive_->Drop();
  Missing(member_, why);
  member_.clear();
}

void CaseWriter::Flush() noexcept {
  if (!IsOpen()) {
    return;
  }
  archive_->Flush();
  journal_->Flush();
  flushed_ = system_.Microseconds();
}

void CaseWriter::NoteStep(std::uint64_t step, const Json& line) noexcept { Write(step, "once", line); }

void CaseWriter::Write(std::uint64_t step, const char* at, const Json& line) noexcept {
  if (!IsOpen()) {  // a program that outlived the call
    return;
  }
  const auto failure = FailureOf([&] {
    const std::uint64_t now = system_.Microseconds();
    if (now - flushed_ > kLongestWait) {
      Flush();
    }
    std::string text =
        "{\"n\":" + std::to_string(step) + ",\"at\":\"" + at + "\",\"us\":" + std::to_string(now - began_);
    if (!line.empty()) {
      text.append(",").append(TextOf(line), 1);  // without its opening brace
    } else {
      text += "}";
    }
    journal_->Add(step, at, text += "\n");
    if (at == kBefore) {
      journal_->Flush();
    }
  });
  if (failure) {
    Missing(std::string(kJournal) + " " + std::to_string(step) + " " + at, *failure);
  }
}

std::optional<std::uint32_t> CaseWriter::Keep(const std::string& member, std::string_view bytes) noexcept {
  std::optional<std::uint32_t> checksum;
  if (!IsOpen()) {
    return checksum;
  }
  const auto failure = FailureOf([&] {
    CheckLimit(bytes.size());
    checksum = archive_->Add(member, bytes);
  });
  if (failure) {
    Missing(member, *failure);
  }
  return checksum;
}

std::optional<std::uint32_t> CaseWriter::KeepPieces(const std::string& member, const ReadPiece& read) noexcept {
  std::optional<std::uint32_t> checksum;
  if (!IsOpen()) {
    return checksum;
  }
  const auto failure = FailureOf([&] {
    std::string piece = read(0);
    CheckLimit(piece.size());
    if (piece.size() < kPiece) {
      checksum = archive_->Add(member, piece);
      return;
    }
    if (!read(largest_ - archive_->Size()).empty()) {  // so that not all is copied that there is room for
      RefuseSize();
    }
    archive_->Begin(member);
    for (std::uint64_t size = piece.size();; size += piece.size()) {
      CheckLimit(size);
      archive_->Append(piece);
      if (piece.size() < kPiece) {
        break;
      }
      piece = read(size);
    }
    checksum = archive_->End();
  });
  if (failure) {
    archive_->Drop();
    Missing(member, *failure);
    return std::nullopt;
  }
  return checksum;
}

void CaseWriter::CheckLimit(std::uint64_t more) const {
  if (archive_->Size() + more > largest_) {
    RefuseSize();
  }
}

void CaseWriter::Missing(std::string_view what, std::string_view why) noexcept {
  ++lost_;
  FailureOf([&] {
    if (missing_.size() < kMostMissing) {
      missing_.push_back({{"what", std::string(what)}, {"why", std::string(why)}});
    }
  });
}

void CaseWriter::AddJournal() {
  journal_->Flush();
  archive_->Begin(kJournal);
  for (std::uint64_t at = 0; at < journal_->Size();) {
    const std::string piece = journalFile_->Read(at, std::min<std::uint64_t>(kPiece, journal_->Size() - at));
    if (piece.empty()) {
      break;
    }
    archive_->Append(piece);
    at += piece.size();
  }
  archive_->End();
}

void CaseWriter::Finish(const Json& facts) noexcept {
  const auto failure = FailureOf([&] {
    try {
      AddJournal();
      AddMembers(facts);
      archive_->Finish();
    } catch (...) {
      archive_->Drop();
      throw;
    }
    files_.reset();
    system_.Rename(Path(kFiles), folder_ + "/" + name_ + std::string(kSuffix));
  });
  if (failure) {
    Missing("the archive", *failure);
    FailureOf([&] { WriteMember(kFacts, TextOf(WithMissing(facts))); });
    return;
  }
  // The case is whole; what is left of its folder goes with the old cases when it cannot go now.
  FailureOf([&] {
    journalFile_.reset();
    system_.RemoveFolder(part_);
  });
}

// What is lost until now the facts tell; without them it would be no case.
void CaseWriter::AddMembers(const Json& facts) {
  members_[std::string(kFacts)] = TextOf(WithMissing(facts));
  const std::uint64_t lost = lost_;
  for (const auto& [member, bytes] : members_) {
    archive_->Add(member, bytes);
  }
  archive_->Flush();
  if (lost_ != lost) {
    throw MakeRuntimeError(RuntimeError::DiskFull, "its members cannot be written");
  }
}

Json CaseWriter::WithMissing(const Json& facts) const {
  Json all = facts;
  all["missing"] = missing_;
  return all;
}

void CaseWriter::Discard() noexcept {
  FailureOf([&] {
    files_.reset();
    journalFile_.reset();
    system_.RemoveFolder(part_);
  });
}

}  // namespace parvex::recording
