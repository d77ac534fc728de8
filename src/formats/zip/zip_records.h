#pragma once

#include <cstddef>
#include <cstdint>

namespace parvex {

/// Layout of the three records of the format: signature, length of the fixed part, places of the fields that are read.
/// Numbers are little-endian.
namespace end_record {
inline constexpr std::uint32_t kSignature = 0x06054B50;
inline constexpr std::size_t kLength = 22;
inline constexpr std::size_t kLongestComment = 0xFFFF;
inline constexpr std::size_t kDisk = 4, kDirectoryDisk = 6, kEntriesOnDisk = 8, kEntries = 10, kDirectoryLength = 12;
inline constexpr std::size_t kDirectoryOffset = 16, kCommentLength = 20;
}  // namespace end_record

namespace directory_record {
inline constexpr std::uint32_t kSignature = 0x02014B50;
inline constexpr std::size_t kLength = 46;
inline constexpr std::size_t kFlags = 8, kMethod = 10, kCrc = 16, kPackedLength = 20, kUnpackedLength = 24,
                             kNameLength = 28;
inline constexpr std::size_t kExtraLength = 30, kCommentLength = 32, kDisk = 34, kAttributes = 38, kOffset = 42;
}  // namespace directory_record

namespace local_record {
inline constexpr std::uint32_t kSignature = 0x04034B50;
inline constexpr std::size_t kLength = 30;
inline constexpr std::size_t kFlags = 6, kMethod = 8, kStoredLength = 18, kNameLength = 26, kExtraLength = 28;
}  // namespace local_record

// Methods of packing.
inline constexpr std::uint16_t kStored = 0;
inline constexpr std::uint16_t kDeflated = 8;

/// The flag of an entry whose name is UTF-8.
inline constexpr std::uint16_t kNameIsUtf8 = 0x0800;

}  // namespace parvex
