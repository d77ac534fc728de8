#include "formats/text/xml_characters.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "formats/text/unicode.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace parvex::xml {
namespace {

// Whether any of eight bytes is above 0x7F or below 0x20.
bool NeedsALook(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  constexpr std::uint64_t kHigh = 0x8080808080808080u;
  constexpr std::uint64_t kBlank = 0x2020202020202020u;
  return ((word | (word - kBlank)) & kHigh) != 0;
}

// The same of a longer block.
constexpr std::size_t kBlock = 64;

bool BlockNeedsALook(const char* bytes) {
#ifdef __SSE2__
  __m128i hits = _mm_setzero_si128();
  for (std::size_t i = 0; i < kBlock; i += 16) {
    const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    hits = _mm_or_si128(hits, _mm_cmplt_epi8(part, _mm_set1_epi8(0x20)));  // signed: bytes above 0x7F are negative
  }
  return _mm_movemask_epi8(hits) != 0;
#else
  bool hit = false;
  for (std::size_t i = 0; i < kBlock; i += 8) {
    hit |= NeedsALook(bytes + i);
  }
  return hit;
#endif
}

// Bytes of the allowed character that a text beyond ASCII begins with; 0 when there is none.
std::size_t AllowedSequence(std::string_view text) {
  const Utf8Character character = FirstCharacter(text);
  const bool isAllowed = character.isCharacter && character.code != 0xFFFE && character.code != 0xFFFF;
  return isAllowed ? character.bytes : 0;
}

bool IsLetterOrUnderscore(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

// The names of nearly every document.
bool IsAsciiName(std::string_view text) {
  const auto mayFollow = [](char c) {
    return IsLetterOrUnderscore(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  };
  return !text.empty() && IsLetterOrUnderscore(text[0]) && std::all_of(text.begin(), text.end(), mayFollow);
}

struct Range {
  char32_t first;
  char32_t last;
};

// Characters that a name may begin with, the colon left out.
constexpr Range kNameStart[] = {{'A', 'Z'},       {'_', '_'},       {'a', 'z'},        {0xC0, 0xD6},
                                {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},    {0x37F, 0x1FFF},
                                {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},  {0x3001, 0xD7FF},
                                {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
// Characters that may follow besides.
constexpr Range kNameOther[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t count>
bool IsIn(const Range (&ranges)[count], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [character](const Range& range) { return character >= range.first && character <= range.last; });
}

}  // namespace

std::size_t FindForbidden(std::string_view text) {
  std::size_t pos = 0;
  while (pos < text.size()) {
    if (pos + 8 <= text.size() && !NeedsALook(text.data() + pos)) {
      pos += 8;
      while (pos + kBlock <= text.size() && !BlockNeedsALook(text.data() + pos)) {
        pos += kBlock;
      }
      continue;
    }
    const auto c = static_cast<unsigned char>(text[pos]);
    if (c < 0x80) {
      if (c < 0x20 && !IsBlank(text[pos])) {
        return pos;
      }
      ++pos;
      continue;
    }
    const std::size_t length = AllowedSequence(text.substr(pos));
    if (length == 0) {
      return pos;
    }
    pos += length;
  }
  return std::string_view::npos;
}

bool IsPlainName(std::string_view text) {
  if (IsAsciiName(text)) {
    return true;
  }
  if (text.empty() || FindForbidden(text) != std::string_view::npos) {
    return false;
  }
  std::size_t pos = 0;
  if (!IsIn(kNameStart, NextCodePoint(text, pos))) {
    return false;
  }
  while (pos < text.size()) {
    const char32_t character = NextCodePoint(text, pos);
    if (!IsIn(kNameStart, character) && !IsIn(kNameOther, character)) {
      return false;
    }
  }
  return true;
}

bool IsBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return IsBlank(c); });
}

std::string PlaceOf(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t lineStart = before.rfind('\n');
  const std::size_t column = offset - (lineStart == std::string_view::npos ? 0 : lineStart + 1) + 1;
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace parvex::xml
