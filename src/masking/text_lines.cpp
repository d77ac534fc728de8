// Texts in lines: ini files and registry files; and conditions of statements.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "masking/letters.h"
#include "masking/text_walk.h"

namespace parvex::masking {
namespace {

using Work = Masker::Work;

constexpr std::size_t kLongestKey = 60;

template <typename TakeLine>
void ForEachLine(Part text, TakeLine take) {
  while (!text.empty()) {
    const auto isEnd = [](const Character& one) { return one.code == U'\n' || one.code == U'\r'; };
    const auto end = static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isEnd) - text.begin());
    take(text.first(end));
    text = text.subspan(std::min(end + 1, text.size()));
  }
}

bool IsKey(Part key) {
  key = Trimmed(key);
  return !key.empty() && key.size() <= kLongestKey && std::all_of(key.begin(), key.end(), [](const Character& one) {
    return IsMasked(one.code) || one.code == U'_' || one.code == U':' || one.code == U'-' || one.code == U' ' ||
           one.code == U'"' || one.code == U'.';
  });
}

}  // namespace

bool LooksLikeLines(Part text) {
  std::size_t lines = 0;
  bool hasSection = false;
  bool beginsWithKey = false;
  ForEachLine(text, [&](Part line) {
    line = Trimmed(line);
    if (line.empty()) {
      return;
    }
    hasSection = hasSection || (line.front().code == U'[' && line.back().code == U']');
    const std::size_t equals = Find(line, U'=');
    beginsWithKey = beginsWithKey || (lines == 0 && equals < line.size() && IsKey(line.first(equals)));
    ++lines;
  });
  return (hasSection && lines > 1) || beginsWithKey;
}

void TextWalk::WalkLines(Part text) {
  const bool isRegistry = StartsWith(text, U"Windows Registry Editor") || StartsWith(text, U"REGEDIT4");
  ForEachLine(text, [&](Part line) { isRegistry ? WalkRegistryLine(line) : WalkLine(Trimmed(line)); });
}

void TextWalk::WalkLine(Part line) {
  if (!line.empty() && line.front().code == U'[') {
    if (masker_.Now() == Work::Collect) {
      names_.AddProtocolText(Utf8(line));
    }
    return;
  }
  const std::size_t equals = Find(line, U'=');
  if (equals >= line.size() || !IsKey(line.first(equals))) {
    return;
  }
  const std::string key = Utf8(Trimmed(line.first(equals)));
  const Part value = Unquoted(line.subspan(equals + 1));
  if (masker_.Now() == Work::Collect) {
    names_.AddProtocolText(key);
    if (EqualIgnoringCase(key, "pdsg")) {
      names_.AddFamily(Utf8(value));
    }
  }
  Walk(value, PlaceNamed(key));
}

// "name"="value", in which a backslash stands before backslashes and quotes; "name"=hex(1):41,00, UTF-16 in bytes.
void TextWalk::WalkRegistryLine(Part line) {
  const std::size_t equals = Find(line, U'=');
  if (equals >= line.size()) {
    return;
  }
  const Part value = Trimmed(line.subspan(equals + 1));
  if (!StartsWith(value, U"hex(")) {
    Walk(Unquoted(value), PlaceNamed(Utf8(Unquoted(line.first(equals)))));
    return;
  }
  const std::string digits = Utf8(value.subspan(std::min(Find(value, U':') + 1, value.size())));
  std::u16string units;
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 3) {
    bytes.push_back(static_cast<char>(std::strtoul(digits.substr(i, 2).c_str(), nullptr, 16)));
  }
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units.push_back(
        static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8));
  }
  const std::string masked = masker_.Text(FromUtf16(units, LoneSurrogates::Kept));
  if (masker_.Now() != Work::Mask || value.empty()) {
    return;
  }
  std::string written;
  for (const char16_t unit : ToUtf16(masked, LoneSurrogates::Kept)) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "%02x,%02x,", unit & 0xFFu, unit >> 8u);
    written += hex;
  }
  if (!written.empty()) {
    written.pop_back();
  }
  const Part old = value.subspan(std::min(Find(value, U':') + 1, value.size()));
  if (!old.empty()) {
    changes_.Put(old.front().at, old.back().at + old.back().length - old.front().at, written);
  }
}

// name='value', as in statements for a database.
void TextWalk::WalkConditions(Part text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at].code != U'=') {
      continue;
    }
    std::size_t from = at + 1;
    while (from < text.size() && text[from].code == U' ') {
      ++from;
    }
    if (from == text.size() || (text[from].code != U'\'' && text[from].code != U'"')) {
      continue;
    }
    std::size_t end = from + 1;
    while (end < text.size() && text[end].code != text[from].code) {
      ++end;
    }
    const Part before = Trimmed(text.first(at));
    std::size_t start = before.size();
    while (start > 0 && (IsMasked(before[start - 1].code) || before[start - 1].code == U'_')) {
      --start;
    }
    const Place place = PlaceNamed(Utf8(before.subspan(start)));
    if (place != Place::Other) {
      Walk(text.subspan(from + 1, end - from - 1), place);
    }
    at = end;
  }
}

}  // namespace parvex::masking
