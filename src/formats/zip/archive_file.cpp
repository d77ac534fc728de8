#include "formats/zip/archive_file.h"

#include <zlib.h>

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

std::uint32_t ChecksumOf(std::string_view bytes, std::uint32_t before) {
  uLong checksum = before;
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, 1u << 30);
    checksum = crc32(checksum, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(piece.size()));
    bytes.remove_prefix(piece.size());
  }
  return static_cast<std::uint32_t>(checksum);
}

std::uint32_t ArchiveFile::Add(std::string_view name, std::string_view bytes) {
  CheckRoom(name.size() + bytes.size());
  const std::uint32_t checksum = ChecksumOf(bytes);
  const std::string shared = SharedFields(name, checksum, bytes.size());
  try {
    std::string record = LocalRecord(name, shared);
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
  Enter(name, shared);
  end_ += local_record::kLength + name.size() + bytes.size();
  return checksum;
}

void ArchiveFile::Begin(std::string_view name) {
  CheckRoom(name.size());
  name_ = name;
  length_ = 0;
  checksum_ = 0;
  // Until the entry has ended its record is none, and whoever reads the unfinished archive stops there.
  file_.Append(std::string(local_record::kLength, '\0') + name_);
}

void ArchiveFile::Append(std::string_view bytes) {
  CheckRoom(name_.size() + length_ + bytes.size());
  file_.Append(bytes);
  length_ += bytes.size();
  checksum_ = ChecksumOf(bytes, checksum_);
}

std::uint32_t ArchiveFile::End() {
  const std::string shared = SharedFields(name_, checksum_, length_);
  file_.Overwrite(end_, LocalRecord(name_, shared));
  Enter(name_, shared);
  end_ += local_record::kLength + name_.size() + length_;
  return checksum_;
}

void ArchiveFile::Drop() noexcept {
  try {
    file_.Truncate(end_);
  } catch (...) {
    // The next entry meets the same trouble and tells of it.
  }
}

void ArchiveFile::Finish() { file_.Append(directory_ + EndRecord(entries_, directory_.size(), end_)); }

void ArchiveFile::CheckRoom(std::uint64_t more) const {
  if (end_ + directory_.size() + more > kLongestArchive || entries_ >= kMostEntries) {
    throw MakeRuntimeError(RuntimeError::DiskFull, "the archive would become too large");
  }
}

void ArchiveFile::Enter(std::string_view name, const std::string& shared) {
  directory_ += DirectoryRecord(name, shared, static_cast<std::uint32_t>(end_));
  ++entries_;
}

}  // namespace parvex
