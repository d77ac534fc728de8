#include "formats/zip/archive_file.h"

#include <exception>
#include <utility>

#include "formats/zip/written_records.h"
#include "formats/zip/zip_records.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::uint64_t kLongestArchive = 0xFFFF'0000;
constexpr std::uint16_t kMostEntries = 0xFFFE;
constexpr std::size_t kWrittenAtOnce = 1u << 16;  // a copy in memory takes less time than a second call of the system

// The fields that the record of a stored entry and its line in the directory have in common.
std::string SharedFields(std::string_view name, std::uint32_t checksum, std::uint64_t length) {
  return EntryFields({.name = name,
                      .method = kStored,
                      .checksum = checksum,
                      .packedLength = static_cast<std::uint32_t>(length),
                      .length = static_cast<std::uint32_t>(length)});
}

}  // namespace

std::uint32_t ArchiveFile::Add(std::string_view name, std::string_view bytes) {
  CheckRoom(name.size() + bytes.size());
  const std::uint32_t checksum = ChecksumOf(bytes);
  const std::string shared = SharedFields(name, checksum, bytes.size());
  std::string record = LocalRecord(name, shared);
  std::string line = LineOf(name, shared);
  const std::size_t length = record.size() + bytes.size();
  if (length <= most_ / 2) {
    Gather(record, bytes, {std::string(name), std::move(line), length});
    return checksum;
  }
  Flush();
  try {
    if (bytes.size() <= kWrittenAtOnce) {
      file_.Append(record.append(bytes));
    } else {
      file_.Append(record);
      file_.Append(bytes);
    }
  } catch (...) {
    Drop();
    throw;
  }
  Enter(line, length);
  return checksum;
}

void ArchiveFile::Gather(std::string_view record, std::string_view bytes, Waiting entry) {
  if (gathered_.size() + entry.length > most_) {
    Flush();
  }
  gathered_.reserve(most_);
  waiting_.push_back(std::move(entry));
  waitingLines_ += waiting_.back().line.size();
  gathered_.append(record).append(bytes);
}

void ArchiveFile::Begin(std::string_view name) {
  CheckRoom(name.size());
  Flush();
  name_ = name;
  length_ = 0;
  checksum_ = 0;
  piece_.clear();
  // Until the entry has ended its record is none, and whoever reads the unfinished archive stops there.
  file_.Append(std::string(local_record::kLength, '\0') + name_);
}

void ArchiveFile::Append(std::string_view bytes) {
  CheckRoom(name_.size() + length_ + bytes.size());
  if (bytes.size() >= most_) {
    AppendPiece();
    file_.Append(bytes);
  } else {
    if (piece_.size() + bytes.size() > most_) {
      AppendPiece();
    }
    piece_.reserve(most_);
    piece_ += bytes;
  }
  length_ += bytes.size();
  checksum_ = ChecksumOf(bytes, checksum_);
}

void ArchiveFile::AppendPiece() {
  if (!piece_.empty()) {
    file_.Append(piece_);
    piece_.clear();
  }
}

std::uint32_t ArchiveFile::End() {
  const std::string shared = SharedFields(name_, checksum_, length_);
  std::string line = LineOf(name_, shared);
  AppendPiece();
  file_.Overwrite(end_, LocalRecord(name_, shared));
  Enter(line, local_record::kLength + name_.size() + length_);
  return checksum_;
}

void ArchiveFile::Drop() noexcept {
  try {
    file_.Truncate(end_);
  } catch (...) {
    // The next entry meets the same trouble and tells of it.
  }
}

void ArchiveFile::Flush() noexcept {
  if (waiting_.empty()) {
    return;
  }
  try {
    file_.Append(gathered_);
    for (Waiting& entry : waiting_) {
      Enter(entry.line, entry.length);
    }
  } catch (...) {
    Drop();
    FlushOneByOne();
  }
  waiting_.clear();
  waitingLines_ = 0;
  gathered_.clear();
}

// Where not all of them can be written, some of them may.
void ArchiveFile::FlushOneByOne() noexcept {
  std::string_view rest = gathered_;
  for (Waiting& entry : waiting_) {
    try {
      file_.Append(rest.substr(0, entry.length));
      Enter(entry.line, entry.length);
    } catch (const std::exception& failure) {
      Drop();
      lost_(entry.name, failure.what());
    }
    rest.remove_prefix(entry.length);
  }
}

void ArchiveFile::Finish() {
  Flush();
  file_.Append(directory_ + EndRecord(entries_, directory_.size(), end_));
}

void ArchiveFile::CheckRoom(std::uint64_t more) const {
  if (Size() + directory_.size() + waitingLines_ + more > kLongestArchive ||
      entries_ + waiting_.size() >= kMostEntries) {
    throw MakeRuntimeError(RuntimeError::DiskFull, "the archive would become too large");
  }
}

// Makes room for the line, too, so that what is in the file can be entered without fail.
std::string ArchiveFile::LineOf(std::string_view name, std::string_view shared) {
  std::string line = DirectoryRecord(name, shared, 0);
  directory_.reserve(directory_.size() + waitingLines_ + line.size());
  return line;
}

void ArchiveFile::Enter(std::string& line, std::uint64_t length) noexcept {
  for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i) {
    line[directory_record::kOffset + i] = static_cast<char>(end_ >> (8 * i));
  }
  directory_ += line;
  ++entries_;
  end_ += length;
}

}  // namespace parvex
