#include "formats/text/unicode.h"

namespace parvex {

void AppendUtf8(std::string& text, char32_t code) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | (code >> 6));
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

std::string Utf8Of(char32_t code) {
  std::string text;
  AppendUtf8(text, code);
  return text;
}

std::u16string ToUtf16(std::string_view text, LoneSurrogates lone) { return EncodeUtf16<char16_t>(text, lone); }

std::string FromUtf16(std::u16string_view units, LoneSurrogates lone) { return DecodeUtf16<char16_t>(units, lone); }

bool IsWellFormed(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character character = FirstCharacter(text);
    if (!character.isCharacter) {
      return false;
    }
    text.remove_prefix(character.bytes);
  }
  return true;
}

std::string WellFormed(std::string_view text) {
  std::string wellFormed;
  wellFormed.reserve(text.size());
  while (!text.empty()) {
    const Utf8Character character = FirstCharacter(text);
    if (character.isCharacter) {
      wellFormed.append(text.substr(0, character.bytes));
    } else {
      AppendUtf8(wellFormed, kReplacementCharacter);
    }
    text.remove_prefix(character.bytes);
  }
  return wellFormed;
}

}  // namespace parvex
