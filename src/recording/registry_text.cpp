#include "recording/registry_text.h"

#include <algorithm>
#include <cstdio>

#include "formats/text/encoded_text.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex::recording {
namespace {

std::string QuotedValue(const std::string& text) {
  return "\"" + ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\"", "\\\"") + "\"";
}

// The bytes of the text with its terminating zero.
std::string HexValue(const std::string& text) {
  std::string written = "hex(1):";
  for (const char byte : BytesOf(ToUtf16(text) + u'\0', TextEncoding::Utf16Little)) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x,", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    written += digits;
  }
  written.pop_back();
  return written;
}

std::string DataOf(const std::string& text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
  return std::any_of(text.begin(), text.end(), isControl) ? HexValue(text) : QuotedValue(text);
}

}  // namespace

std::string RegistryBytes(std::span<const RegistryValue> values) {
  std::string text = "Windows Registry Editor Version 5.00\r\n";
  std::string key;
  for (const RegistryValue& value : values) {
    if (value.key != key) {
      key = value.key;
      text += "\r\n[" + key + "]\r\n";
    }
    text += (value.name.empty() ? "@" : QuotedValue(value.name)) + "=" + DataOf(value.text) + "\r\n";
  }
  return WithMark(text, TextEncoding::Utf16Little);
}

}  // namespace parvex::recording
