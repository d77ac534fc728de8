#include "recording/case_writer.h"

#include <atomic>
#include <exception>

#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kPiece = 1u << 20;
constexpr std::size_t kMostMissing = 1'000;
constexpr int kMostTriesForName = 100;

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
  } while (!system_.CreateNewFolder(part_));
  files_ = system_.MakeFile(Path(kFiles));
  archive_.emplace(*files_);
  journal_ = system_.MakeFile(Path(kJournal));
}

CaseWriter::~CaseWriter() = default;

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
  Write(step, "before", line);
  FailureOf([&] { begun_[step] = line; });
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

void CaseWriter::NoteStep(std::uint64_t step, const Json& line) noexcept { Write(step, "once", line); }

void CaseWriter::Write(std::uint64_t step, const char* at, const Json& line) noexcept {
  const auto failure = FailureOf([&] {
    Json whole = {{"n", step}, {"at", at}, {"us", system_.Microseconds() - began_}};
    whole.update(line);
    const std::string text = TextOf(whole) + "\n";
    try {
      journal_->Append(text);
    } catch (...) {
      journal_->Truncate(journalSize_);
      throw;
    }
    journalSize_ += text.size();
  });
  if (failure) {
    Missing(std::string(kJournal) + " " + std::to_string(step) + " " + at, *failure);
  }
}

std::optional<std::uint32_t> CaseWriter::Keep(const std::string& member, std::string_view bytes) noexcept {
  std::optional<std::uint32_t> checksum;
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
  const auto failure = FailureOf([&] {
    std::uint64_t size = 0;
    std::string piece = read(0);
    CheckLimit(piece.size());
    archive_->Begin(member);
    while (!piece.empty()) {
      size += piece.size();
      CheckLimit(size);
      archive_->Append(piece);
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
    throw MakeRuntimeError(RuntimeError::DiskFull, "it would bring the case to more bytes than are kept");
  }
}

void CaseWriter::Missing(std::string_view what, std::string_view why) noexcept {
  FailureOf([&] {
    if (missing_.size() < kMostMissing) {
      missing_.push_back({{"what", std::string(what)}, {"why", std::string(why)}});
    }
  });
}

void CaseWriter::AddJournal() {
  archive_->Begin(kJournal);
  for (std::uint64_t at = 0; at < journalSize_;) {
    const std::string piece = journal_->Read(at, kPiece);
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
    WriteMember(kFacts, TextOf(facts));
    try {
      AddJournal();
      for (const auto& [member, bytes] : members_) {
        archive_->Add(member, bytes);
      }
      archive_->Finish();
    } catch (...) {
      archive_->Drop();
      throw;
    }
    files_.reset();
    system_.Rename(Path(kFiles), folder_ + "/" + name_ + std::string(kSuffix));
    journal_.reset();
    system_.RemoveFolder(part_);
  });
  if (failure) {
    Missing("the archive", *failure);
    FailureOf([&] {
      Json unfinished = facts;
      unfinished["missing"] = missing_;
      WriteMember(kFacts, TextOf(unfinished));
    });
  }
}

void CaseWriter::Discard() noexcept {
  FailureOf([&] {
    files_.reset();
    journal_.reset();
    system_.RemoveFolder(part_);
  });
}

}  // namespace parvex::recording
