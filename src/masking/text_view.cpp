#include "masking/text_view.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <utility>

#include "formats/text/unicode.h"
#include "formats/text/windows_1252.h"

namespace parvex::masking {
namespace {

using Form = Character::Form;

constexpr std::size_t kLongestReference = 12;
constexpr std::array<std::pair<std::u32string_view, char32_t>, 5> kReferences = {
    {{U"amp", U'&'}, {U"lt", U'<'}, {U"gt", U'>'}, {U"quot", U'"'}, {U"apos", U'\''}}};

bool IsAsciiLetter(char32_t c) { return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z'); }

int DigitOf(char32_t c) {
  if (c >= U'0' && c <= U'9') {
    return static_cast<int>(c - U'0');
  }
  const char32_t lower = c | 0x20;
  return lower >= U'a' && lower <= U'f' ? static_cast<int>(lower - U'a') + 10 : -1;
}

std::optional<char32_t> NumberIn(std::u32string_view digits, int base) {
  char32_t number = 0;
  for (const char32_t c : digits) {
    const int digit = DigitOf(c);
    if (digit < 0 || digit >= base || number > 0x10FFFF) {
      return std::nullopt;
    }
    number = number * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
  }
  return digits.empty() || number == 0 || number > 0x10FFFF ? std::nullopt : std::optional(number);
}

// The reference that a text begins with, as one character.
std::optional<std::pair<Character, std::size_t>> ReferenceAt(Part text) {
  std::u32string name;
  std::size_t at = 1;
  while (at < text.size() && text[at].code != U';' && name.size() <= kLongestReference) {
    name.push_back(text[at++].code);
  }
  if (at == text.size() || text[at].code != U';') {
    return std::nullopt;
  }
  Character found{.at = text[0].at, .length = text[at].at + text[at].length - text[0].at};
  const auto named =
      std::find_if(kReferences.begin(), kReferences.end(), [&](const auto& one) { return one.first == name; });
  if (named != kReferences.end()) {
    found.code = named->second;
    found.form = Form::Named;
    return std::pair(found, at + 1);
  }
  if (name.size() < 2 || name[0] != U'#') {
    return std::nullopt;
  }
  const bool isHex = name[1] == U'x' || name[1] == U'X';
  const auto code = NumberIn(std::u32string_view(name).substr(isHex ? 2 : 1), isHex ? 16 : 10);
  if (!code) {
    return std::nullopt;
  }
  found.code = *code;
  // What a deeper reference says is written where the outer ones are, and only its number changes.
  found.at = text[1].at;
  found.length = text[at].at - found.at;
  found.form = isHex ? Form::Hex : Form::Decimal;
  return std::pair(found, at + 1);
}

// What a backslash in rich text begins: its length, and the character that it stands for, if for one.
std::pair<std::size_t, std::optional<Character>> ControlAt(Part text) {
  if (text.size() < 2) {
    return {text.size(), std::nullopt};
  }
  if (text[1].code == U'\'' && text.size() >= 4 && DigitOf(text[2].code) >= 0 && DigitOf(text[3].code) >= 0) {
    const char byte = static_cast<char>(DigitOf(text[2].code) * 16 + DigitOf(text[3].code));
    std::size_t pos = 0;
    const char32_t code = NextCodePoint(posix::Windows1252().FromAnsi(std::string_view(&byte, 1)), pos);
    return {4, Character{code, text[0].at, 4, Form::Rtf}};
  }
  if (!IsAsciiLetter(text[1].code)) {
    Character sign = text[1];
    sign.form = Form::Opaque;
    return {2, sign};
  }
  std::size_t end = 1;
  while (end < text.size() && IsAsciiLetter(text[end].code)) {
    ++end;
  }
  const std::size_t wordEnd = end;
  while (end < text.size() && (DigitOf(text[end].code) >= 0 && DigitOf(text[end].code) < 10)) {
    ++end;
  }
  if (wordEnd == 2 && text[1].code == U'u' && end > wordEnd) {
    const auto code = NumberIn(CodesOf(text.subspan(wordEnd, end - wordEnd)), 10);
    if (end < text.size() && text[end].code == U'?') {
      ++end;
    }
    const std::uint32_t length = text[end - 1].at + text[end - 1].length - text[0].at;
    return {end, Character{code.value_or(kReplacementCharacter), text[0].at, length, Form::RtfCode}};
  }
  return {end < text.size() && text[end].code == U' ' ? end + 1 : end, std::nullopt};
}

std::string Written(Form form, char32_t code) {
  char text[24] = {};
  switch (form) {
    case Form::Decimal:
      std::snprintf(text, sizeof text, "#%lu", static_cast<unsigned long>(code));
      return text;
    case Form::Hex:
      std::snprintf(text, sizeof text, "#x%lX", static_cast<unsigned long>(code));
      return text;
    case Form::Rtf: {
      const std::string byte = posix::Windows1252().ToAnsi(Utf8Of(code));
      std::snprintf(text, sizeof text, "\\'%02x", static_cast<unsigned>(static_cast<unsigned char>(byte[0])));
      return text;
    }
    case Form::RtfCode:
      std::snprintf(text, sizeof text, "\\u%lu?", static_cast<unsigned long>(code));
      return text;
    default:
      return Utf8Of(code);
  }
}

}  // namespace

View Characters(std::string_view text) {
  View view;
  view.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const Utf8Character one = FirstCharacter(text.substr(pos));
    view.push_back({one.code, static_cast<std::uint32_t>(pos), static_cast<std::uint32_t>(one.bytes),
                    one.isCharacter ? Form::Plain : Form::Opaque});
    pos += one.bytes;
  }
  return view;
}

View Resolved(Part text) {
  View view;
  view.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    if (text[at].code == U'&') {
      if (const auto reference = ReferenceAt(text.subspan(at))) {
        view.push_back(reference->first);
        at += reference->second;
        continue;
      }
    }
    view.push_back(text[at++]);
  }
  return view;
}

View RichText(Part text) {
  View view;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at].code == U'\\') {
      const auto [length, character] = ControlAt(text.subspan(at));
      if (character) {
        view.push_back(*character);
      }
      at += length;
      continue;
    }
    if (text[at].code != U'{' && text[at].code != U'}' && text[at].code != U'\r' && text[at].code != U'\n') {
      view.push_back(text[at]);
    }
    ++at;
  }
  return view;
}

std::u32string CodesOf(Part text) {
  std::u32string codes;
  codes.reserve(text.size());
  for (const Character& one : text) {
    codes.push_back(one.code);
  }
  return codes;
}

std::string Utf8(Part text) {
  std::string utf8;
  for (const Character& one : text) {
    AppendUtf8(utf8, one.code);
  }
  return utf8;
}

bool StartsWith(Part text, std::u32string_view what) {
  return text.size() >= what.size() && std::equal(what.begin(), what.end(), text.begin(),
                                                  [](char32_t c, const Character& one) { return one.code == c; });
}

std::size_t Find(Part text, char32_t code) {
  return static_cast<std::size_t>(
      std::find_if(text.begin(), text.end(), [&](const Character& one) { return one.code == code; }) - text.begin());
}

Part Trimmed(Part text) {
  const auto isBlank = [](const Character& c) {
    return c.code == U' ' || c.code == U'\t' || c.code == U'\r' || c.code == U'\n';
  };
  while (!text.empty() && isBlank(text.front())) {
    text = text.subspan(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text = text.first(text.size() - 1);
  }
  return text;
}

Part Unquoted(Part value) {
  value = Trimmed(value);
  if (value.size() >= 2 && value.front().code == value.back().code &&
      (value.front().code == U'"' || value.front().code == U'\'')) {
    return value.subspan(1, value.size() - 2);
  }
  return value;
}

void Changes::Put(const Character& character, char32_t code) {
  if (code != character.code) {
    Put(character.at, character.length, Written(character.form, code));
  }
}

void Changes::Put(std::uint32_t at, std::uint32_t length, std::string text) {
  made_.try_emplace(at, Change{length, std::move(text)});
}

std::string Changes::Made() const {
  std::string made;
  made.reserve(written_.size());
  std::size_t done = 0;
  for (const auto& [at, change] : made_) {
    if (at < done) {
      continue;
    }
    made.append(written_.substr(done, at - done)).append(change.text);
    done = at + change.length;
  }
  return made.append(written_.substr(done));
}

}  // namespace parvex::masking
