#include "hybris/selection_section.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>

namespace parvex {
namespace {

constexpr std::size_t kBufferSize = 255;  // with its terminating zero

}  // namespace

SelectionSection::SelectionSection(const Platform& platform, std::string_view qbOutputFile, std::string_view word,
                                   std::int32_t tagIndex)
    : section_(platform.privateProfile->Section(std::string(word) + std::to_string(tagIndex), qbOutputFile)) {}

std::string SelectionSection::Text(std::string_view key, std::string_view fallback) {
  return section_->ReadString(key, fallback, kBufferSize);
}

std::int32_t SelectionSection::Integer(std::string_view key, std::int32_t fallback) {
  return section_->ReadInteger(key, fallback);
}

std::string SelectionSection::Numbered(std::string_view prefix, std::int32_t number) {
  constexpr std::size_t kMostDigits = std::numeric_limits<std::int32_t>::digits10 + 2;  // sign included
  key_.resize(std::max(key_.size(), prefix.size() + kMostDigits));
  char* const digits = std::copy(prefix.begin(), prefix.end(), key_.data());
  const char* const end = std::to_chars(digits, digits + kMostDigits, number).ptr;
  return Text({key_.data(), end});
}

}  // namespace parvex
