#include "tests/support/zip_patch.h"

namespace parvex::test {

std::size_t EndRecord(const std::string& archive) { return archive.size() - 22; }

std::size_t DirectoryRecord(const std::string& archive, std::size_t index) {
  std::size_t at = Get32(archive, EndRecord(archive) + 16);
  for (; index > 0; --index) {
    at += 46u + Get16(archive, at + 28) + Get16(archive, at + 30) + Get16(archive, at + 32);
  }
  return at;
}

std::size_t LocalRecord(const std::string& archive, std::size_t index) {
  return Get32(archive, DirectoryRecord(archive, index) + 42);
}

void Put16(std::string& bytes, std::size_t at, std::uint16_t value) {
  bytes.at(at) = static_cast<char>(value & 0xFF);
  bytes.at(at + 1) = static_cast<char>(value >> 8);
}

void Put32(std::string& bytes, std::size_t at, std::uint32_t value) {
  Put16(bytes, at, static_cast<std::uint16_t>(value & 0xFFFF));
  Put16(bytes, at + 2, static_cast<std::uint16_t>(value >> 16));
}

std::uint16_t Get16(const std::string& bytes, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes.at(at)) |
                                    static_cast<unsigned char>(bytes.at(at + 1)) << 8);
}

std::uint32_t Get32(const std::string& bytes, std::size_t at) {
  return Get16(bytes, at) | static_cast<std::uint32_t>(Get16(bytes, at + 2)) << 16;
}

}  // namespace parvex::test
