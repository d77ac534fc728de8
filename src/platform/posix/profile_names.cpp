#include "platform/posix/profile_names.h"

#include <cstddef>
#include <cstring>
#include <random>

namespace parvex::posix {
namespace {

// Eight characters with A to Z in lower case; every other byte as it stands.
std::uint64_t LowerCase(std::uint64_t word) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  const std::uint64_t low = word & (0x7F * kEach);
  const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
  const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
  return word | ((fromA & ~beyondZ & ~word & (0x80 * kEach)) >> 2);
}

std::uint64_t Load(const char* from, std::size_t size) {
  std::uint64_t word = 0;
  std::memcpy(&word, from, size);
  return word;
}

// Up to eight characters; as two overlapping halves, since a copy of unknown size is a call.
std::uint64_t LoadTail(const char* from, std::size_t size) {
  if (size >= 4) {
    return Load(from, 4) | Load(from + size - 4, 4) << 32;
  }
  return size == 0 ? 0 : Load(from, 1) | Load(from + size / 2, 1) << 8 | Load(from + size - 1, 1) << 16;
}

std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t Seed() {
  static const std::uint64_t seed = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
  }();
  return seed;
}

}  // namespace

std::uint32_t HashIgnoringAsciiCase(std::string_view name, std::uint64_t salt) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  std::uint64_t hash = Mix(Seed() ^ salt, kOdd ^ name.size());
  const char* at = name.data();
  std::size_t left = name.size();
  for (; left > 8; at += 8, left -= 8) {
    hash = Mix(hash ^ LowerCase(Load(at, 8)), kOdd);
  }
  hash = Mix(hash ^ LowerCase(left == 8 ? Load(at, 8) : LoadTail(at, left)), kOdd);
  return static_cast<std::uint32_t>(hash >> 32);
}

bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  std::size_t i = 0;
  for (; i + 8 <= a.size(); i += 8) {
    if (LowerCase(Load(a.data() + i, 8)) != LowerCase(Load(b.data() + i, 8))) {
      return false;
    }
  }
  return LowerCase(LoadTail(a.data() + i, a.size() - i)) == LowerCase(LoadTail(b.data() + i, b.size() - i));
}

}  // namespace parvex::posix
