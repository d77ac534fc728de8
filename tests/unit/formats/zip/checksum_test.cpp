#include "formats/zip/checksum.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace parvex {
namespace {

// Bit by bit, as the checksum is defined.
std::uint32_t ByBits(std::string_view bytes, std::uint32_t before = 0) {
  std::uint32_t remainder = ~before;
  for (const char byte : bytes) {
    remainder ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder >> 1) ^ ((remainder & 1) != 0 ? 0xEDB88320 : 0);
    }
  }
  return ~remainder;
}

std::string RandomBytes(std::size_t size) {
  std::mt19937 random(20261122);
  std::string bytes(size, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  return bytes;
}

TEST(Checksum, IsTheFormatsOwn) { EXPECT_EQ(ChecksumOf("123456789"), 0xCBF43926u); }

TEST(Checksum, IsRightForEveryLengthAndPlace) {
  const std::string bytes = RandomBytes(700);
  for (std::size_t from = 0; from < 17; ++from) {
    for (std::size_t size = 0; from + size <= bytes.size(); ++size) {
      const std::string_view part = std::string_view(bytes).substr(from, size);
      ASSERT_EQ(ChecksumOf(part), ByBits(part)) << from << " " << size;
    }
  }
}

TEST(Checksum, GoesOnBehindWhatCameBefore) {
  const std::string bytes = RandomBytes(5'000);
  const std::uint32_t whole = ByBits(bytes);
  for (std::size_t split = 0; split <= bytes.size(); split += 37) {
    const std::string_view all = bytes;
    EXPECT_EQ(ChecksumOf(all.substr(split), ChecksumOf(all.substr(0, split))), whole) << split;
  }
}

}  // namespace
}  // namespace parvex
