#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace parvex {

// The records of an archive as this system writes them: every time stamp is the format's first day, no entry has a
// comment or an extra field.

struct EntryShape {
  std::string_view name;
  std::uint16_t method = 0;
  std::uint32_t checksum = 0;
  std::uint32_t packedLength = 0;
  std::uint32_t length = 0;
};

/// The fields that an entry's record and its line in the directory have in common.
std::string EntryFields(const EntryShape& entry);
/// The record in front of the entry's bytes.
std::string LocalRecord(std::string_view name, std::string_view fields);
/// The line in the directory; `offset` is where the local record begins.
std::string DirectoryRecord(std::string_view name, std::string_view fields, std::uint32_t offset);
/// What stands behind the directory.
std::string EndRecord(std::uint16_t entries, std::size_t directoryLength, std::uint64_t directoryOffset);

}  // namespace parvex
