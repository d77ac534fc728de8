#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

namespace parvex::ini {

// Names of sections and keys without regard to the letter case of A to Z; every other byte counts as it stands. Inline,
// since they are most of the work of indexing a file.

namespace names {

// Eight characters with A to Z in lower case; every other byte as it stands.
inline std::uint64_t LowerCase(std::uint64_t word) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  const std::uint64_t low = word & (0x7F * kEach);
  const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
  const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
  return word | ((fromA & ~beyondZ & ~word & (0x80 * kEach)) >> 2);
}

inline std::uint64_t Load(const char* from, std::size_t size) {
  std::uint64_t word = 0;
  std::memcpy(&word, from, size);
  return word;
}

// The low and the high half of a 128-bit product, folded together.
inline std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
  constexpr std::uint64_t kLow = 0xFFFFFFFF;
  const std::uint64_t lows = (a & kLow) * (b & kLow);
  const std::uint64_t crossed = (a >> 32) * (b & kLow) + (lows >> 32);
  const std::uint64_t middle = (a & kLow) * (b >> 32) + (crossed & kLow);
  const std::uint64_t high = (a >> 32) * (b >> 32) + (crossed >> 32) + (middle >> 32);
  return ((middle << 32) | (lows & kLow)) ^ high;
#endif
}

struct Words {
  std::uint64_t first;
  std::uint64_t second;
};

// At most sixteen characters; as two halves that may overlap, since a copy of unknown size is a call.
[[gnu::always_inline]] inline Words LoadUpTo16(const char* from, std::size_t size) {
  if (size >= 8) {
    return {LowerCase(Load(from, 8)), LowerCase(Load(from + size - 8, 8))};
  }
  if (size >= 4) {
    return {LowerCase(Load(from, 4)), LowerCase(Load(from + size - 4, 4))};
  }
  if (size == 0) {
    return {0, 0};
  }
  return {LowerCase(Load(from, 1) | Load(from + size / 2, 1) << 8), LowerCase(Load(from + size - 1, 1))};
}

}  // namespace names

/// Drawn anew in every process.
inline std::uint64_t NameHashSeed() {
  static const std::uint64_t seed = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
  }();
  return seed;
}

/// With a seed of NameHashSeed nobody can make a file whose names all fall into one place.
inline std::uint32_t HashIgnoringAsciiCase(std::string_view name, std::uint64_t seed) {
  const std::uint64_t seedOfSecond = ~seed ^ name.size();
  std::uint64_t hash = seed;
  while (name.size() > 16) {
    const auto [first, second] = names::LoadUpTo16(name.data(), 16);
    hash = names::Mix(first ^ hash, second ^ seedOfSecond);
    name.remove_prefix(16);
  }
  const auto [first, second] = names::LoadUpTo16(name.data(), name.size());
  hash = names::Mix(first ^ hash, second ^ seedOfSecond);
  return static_cast<std::uint32_t>(hash >> 32 ^ hash);
}

inline bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace parvex::ini
