#include "formats/text/new_file_names.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <random>

namespace parvex {
namespace {

constexpr std::string_view kStart = "~parvex-";
constexpr std::string_view kEnd = ".tmp";
constexpr std::string_view kDigits = "0123456789abcdef";

// Spreads consecutive numbers over all 64 bits (the finalizer of SplitMix64).
std::uint64_t Spread(std::uint64_t number) {
  number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9u;
  number = (number ^ (number >> 27)) * 0x94D049BB133111EBu;
  return number ^ (number >> 31);
}

std::uint64_t NextRandom() {
  static std::atomic<std::uint64_t> state = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
  }();
  return Spread(state.fetch_add(0x9E3779B97F4A7C15u));
}

}  // namespace

std::string MakeNewFileName() {
  std::uint64_t random = NextRandom();
  std::array<char, 16> digits{};
  for (char& digit : digits) {
    digit = kDigits[random % kDigits.size()];
    random /= kDigits.size();
  }
  return std::string(kStart).append(digits.data(), digits.size()).append(kEnd);
}

bool IsNewFileName(std::string_view name) {
  if (!name.starts_with(kStart) || !name.ends_with(kEnd) || name.size() <= kStart.size() + kEnd.size()) {
    return false;
  }
  name = name.substr(kStart.size(), name.size() - kStart.size() - kEnd.size());
  // Earlier versions wrote two decimal numbers with a hyphen between.
  return std::ranges::all_of(name, [](char c) { return c == '-' || kDigits.find(c) != std::string_view::npos; });
}

}  // namespace parvex
