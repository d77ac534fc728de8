#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace parvex::test {

// Makes hostile archives out of good ones: changes single fields of an archive's records.

/// Where the record of the entry begins that was added as number `index` (from 0). The archive has no comment.
std::size_t LocalRecord(const std::string& archive, std::size_t index);
std::size_t DirectoryRecord(const std::string& archive, std::size_t index);
std::size_t EndRecord(const std::string& archive);

/// Puts little-endian numbers.
void Put16(std::string& bytes, std::size_t at, std::uint16_t value);
void Put32(std::string& bytes, std::size_t at, std::uint32_t value);
std::uint16_t Get16(const std::string& bytes, std::size_t at);
std::uint32_t Get32(const std::string& bytes, std::size_t at);

}  // namespace parvex::test
