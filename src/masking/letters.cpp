#include "masking/letters.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <utility>
#include <vector>

namespace parvex::masking {
namespace {

// Letters of one kind in lower case: of one length in UTF-8 and UTF-16, all in the code pages of their script. None has
// a low byte of zero, which a database cannot store in its compressed form.
constexpr std::u32string_view kDigits = U"0123456789";
constexpr std::u32string_view kNonZeroDigits = U"123456789";
constexpr std::array<std::u32string_view, 8> kLetters = {
    U"abcdefghijklmnopqrstuvwxyz",
    U"àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ",
    U"šžœ",
    U"ăąćĉċčďđēĕėęěĝğġģĥħĩīĭįĵķĺļľŀłńņňŋōŏőŕŗřśŝşţťŧũūŭůűųŵŷźż",
    U"αβγδεζηθικλμνξοπρστυφχψω",
    U"абвгдежзийклмнопрстуфхцчшщъыьэюя",
    U"あいうえおかきくけこさしすせそたちつてとなにぬねの",
    U"山川田中木林石水火土金玉竹米耳目口手足人",
};

char32_t LoweredLatinExtended(char32_t c) {
  const bool isOddUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  return (c % 2 == 1) == isOddUpper ? c + 1 : c;
}

char32_t Raised(char32_t lower) {
  if (lower == U'ÿ') {
    return lower;
  }
  if ((lower >= U'a' && lower <= U'z') || (lower >= 0xE0 && lower <= 0xFE) || (lower >= 0x3B1 && lower <= 0x3C9) ||
      (lower >= 0x430 && lower <= 0x44F)) {
    return lower - 0x20;
  }
  return lower >= 0x102 && lower <= 0x17E ? lower - 1 : lower;
}

std::u32string_view AlphabetOf(char32_t lower) {
  if (IsDigit(lower)) {
    return kDigits;
  }
  for (const std::u32string_view letters : kLetters) {
    if (letters.find(lower) != letters.npos) {
      return letters;
    }
  }
  return {};
}

// SipHash-2-4 of a message of two words: short, keyed, and not to be computed back.
std::uint64_t KeyedHash(const Key& key, std::uint64_t first, std::uint64_t second) {
  std::uint64_t v0 = key.low ^ 0x736f6d6570736575u;
  std::uint64_t v1 = key.high ^ 0x646f72616e646f6du;
  std::uint64_t v2 = key.low ^ 0x6c7967656e657261u;
  std::uint64_t v3 = key.high ^ 0x7465646279746573u;
  const auto rounds = [&](int count) {
    for (int i = 0; i < count; ++i) {
      v0 += v1, v1 = std::rotl(v1, 13) ^ v0, v0 = std::rotl(v0, 32);
      v2 += v3, v3 = std::rotl(v3, 16) ^ v2;
      v0 += v3, v3 = std::rotl(v3, 21) ^ v0;
      v2 += v1, v1 = std::rotl(v1, 17) ^ v2, v2 = std::rotl(v2, 32);
    }
  };
  for (const std::uint64_t word : {first, second, std::uint64_t{16} << 56}) {
    v3 ^= word;
    rounds(2);
    v0 ^= word;
  }
  v2 ^= 0xFF;
  rounds(4);
  return v0 ^ v1 ^ v2 ^ v3;
}

constexpr std::uint64_t kWord = 1;  // what stands in front of the first character of a word, and of a number
constexpr std::uint64_t kNumber = 2;
constexpr std::uint64_t kOrder = 3;
constexpr std::size_t kMostOrders = 200'000;

}  // namespace

bool IsDigit(char32_t character) { return character >= U'0' && character <= U'9'; }

char32_t Lowered(char32_t character) {
  if ((character >= U'A' && character <= U'Z') || (character >= 0xC0 && character <= 0xDE && character != 0xD7) ||
      (character >= 0x391 && character <= 0x3A9) || (character >= 0x410 && character <= 0x42F)) {
    return character + 0x20;
  }
  return character >= 0x102 && character <= 0x17E && character != 0x130 && character != 0x131 && character != 0x138 &&
                 character != 0x149 && character != 0x178
             ? LoweredLatinExtended(character)
             : character;
}

bool IsMasked(char32_t character) { return !AlphabetOf(Lowered(character)).empty(); }

bool IsUnknownLetter(char32_t character) {
  const bool isMark = (character >= 0x2000 && character < 0x2C00) || (character >= 0x3000 && character < 0x3040) ||
                      (character >= 0xE000 && character < 0xF900) || character >= 0xFE00;
  return character >= 0x180 && !isMark && !IsMasked(character);
}

std::uint64_t Letters::After(std::uint64_t before, char32_t character) const {
  return KeyedHash(key_, before, character);
}

// The alphabet stands in a circle whose order the key and what is in front decide; each character becomes the next one.
char32_t Letters::Other(char32_t character, std::u32string_view alphabet, std::uint64_t before) {
  if (orders_.size() > kMostOrders) {
    orders_.clear();
  }
  const std::uint64_t circle =
      KeyedHash(key_, before, (kOrder << 32) + alphabet.front() + (std::uint64_t{alphabet.size()} << 40));
  std::u32string& order = orders_[circle];
  if (order.empty()) {
    std::vector<std::pair<std::uint64_t, char32_t>> places;
    for (const char32_t one : alphabet) {
      places.emplace_back(KeyedHash(key_, circle, one), one);
    }
    std::sort(places.begin(), places.end());
    for (const auto& place : places) {
      order.push_back(place.second);
    }
  }
  return order[(order.find(character) + 1) % order.size()];
}

void Letters::Mask(std::span<char32_t> text) {
  std::uint64_t before = kWord;
  for (char32_t& character : text) {
    const char32_t lower = Lowered(character);
    const std::u32string_view alphabet = AlphabetOf(lower);
    if (alphabet.empty()) {
      before = kWord;
      continue;
    }
    const char32_t other = Other(lower, alphabet, before);
    before = After(before, lower);
    character = lower == character ? other : Raised(other);
  }
}

void Letters::MaskNumbers(std::span<char32_t> text) {
  const auto goesOn = [](char32_t c) { return IsDigit(c) || c == U'.' || c == U','; };
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && goesOn(text[end])) {
      ++end;
    }
    MaskNumber(text.subspan(at, end - at));
    at = end + 1;
  }
}

void Letters::MaskNumber(std::span<char32_t> number) {
  const std::u32string_view all(number.data(), number.size());
  const std::size_t point = std::min(all.rfind(U'.'), all.size());
  const std::size_t last = all.find_last_of(kNonZeroDigits);
  std::uint64_t before = kNumber;
  for (std::size_t i = 0; i < number.size() && last != all.npos && i <= last; ++i) {
    const char32_t digit = number[i];
    const bool isLeading = before == kNumber && i < point;
    if (!IsDigit(digit) || (isLeading && digit == U'0')) {
      continue;
    }
    if (i > point && before == kNumber) {
      before = After(before, U'.');
    }
    // The first digit, and the last one behind the point, are none of the zeros that do not count.
    const bool isNonZero = isLeading || (i == last && i > point);
    number[i] = Other(digit, isNonZero ? kNonZeroDigits : kDigits, before);
    before = After(before, digit);
  }
}

}  // namespace parvex::masking
