#include "formats/registry/registry_text.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "formats/text/encoded_text.h"
#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex {
namespace {

constexpr std::string_view kBlanksAndReturn = " \t\r";
constexpr std::string_view kSoftware = "HKEY_LOCAL_MACHINE\\SOFTWARE\\";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanksAndReturn);
  return first == std::string_view::npos ? std::string_view{}
                                         : text.substr(first, text.find_last_not_of(kBlanksAndReturn) - first + 1);
}

std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return Trim(line);
}

std::string Decode(std::string_view bytes, CodePage& codePage) {
  std::optional<std::string> marked = MarkedText(bytes);
  return marked ? *std::move(marked) : codePage.FromAnsi(bytes);
}

// "a\\b\" c" from its opening quote on; nothing when it is not closed. `text` is moved behind the closing quote.
std::optional<std::string> TakeQuoted(std::string_view& text) {
  if (!text.starts_with('"')) {
    return std::nullopt;
  }
  std::string unquoted;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] == '"') {
      text.remove_prefix(i + 1);
      return unquoted;
    }
    if (text[i] == '\\' && i + 1 < text.size()) {
      ++i;
    }
    unquoted.push_back(text[i]);
  }
  return std::nullopt;
}

// Comma-separated pairs of hexadecimal digits; nothing when something else stands there.
std::optional<std::string> HexBytes(std::string_view text) {
  std::string bytes;
  while (!Trim(text).empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    const std::string_view digits = Trim(text.substr(0, end));
    unsigned byte = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (error != std::errc() || stop != digits.data() + digits.size() || byte > 0xFF) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<char>(byte));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return bytes;
}

// The key in the form in which keys are compared: no empty components, the hive's long name, upper case.
std::string FoldKey(std::string_view key) {
  std::string folded;
  while (!key.empty()) {
    const std::size_t end = std::min(key.find('\\'), key.size());
    if (end > 0) {
      folded.append(folded.empty() ? "" : "\\").append(FoldName(key.substr(0, end)));
    }
    key.remove_prefix(std::min(end + 1, key.size()));
  }
  for (const auto& [shortName, longName] :
       {std::pair("HKLM", "HKEY_LOCAL_MACHINE"), std::pair("HKCU", "HKEY_CURRENT_USER")}) {
    if (folded == shortName || folded.starts_with(shortName + std::string("\\"))) {
      return longName + folded.substr(4);
    }
  }
  return folded;
}

// What stands behind the "=" of a value line.
class ValueReader {
 public:
  ValueReader(bool bytesAreAnsi, CodePage& codePage) : bytesAreAnsi_(bytesAreAnsi), codePage_(codePage) {}

  /// Nothing for what is no string.
  std::optional<std::string> Read(std::string_view data) const {
    if (data.starts_with('"')) {
      std::optional<std::string> text = TakeQuoted(data);
      data = Trim(data);
      return data.empty() || data.starts_with(';') ? text : std::nullopt;
    }
    const std::size_t colon = data.find(':');
    const std::string type = ToUpper(data.substr(0, colon));
    if (colon == std::string_view::npos || (type != "HEX(1)" && type != "HEX(2)")) {
      return std::nullopt;
    }
    const std::optional<std::string> bytes = HexBytes(data.substr(colon + 1));
    return bytes ? std::optional(Text(*bytes)) : std::nullopt;
  }

 private:
  // The bytes hold the text's terminating zero.
  std::string Text(std::string_view bytes) const {
    std::string text = bytesAreAnsi_ ? codePage_.FromAnsi(bytes) : FromUtf16(UnitsOf(bytes, TextEncoding::Utf16Little));
    if (text.ends_with('\0')) {
      text.pop_back();
    }
    return text;
  }

  bool bytesAreAnsi_;
  CodePage& codePage_;
};

// Reads registry text line by line into keys.
class Reader {
 public:
  Reader(std::string_view text, CodePage& codePage)
      : rest_(text), values_(Trim(text).starts_with("REGEDIT4"), codePage) {}

  RegistryText::Keys Read() {
    while (!rest_.empty()) {
      const std::string_view line = TakeLine(rest_);
      if (line.starts_with('[')) {
        OpenKey(line.substr(1, line.find_last_of(']') - 1));
      } else if (key_ != nullptr) {
        SetValue(line);
      }
    }
    return std::move(keys_);
  }

 private:
  // "KEY", or "-KEY", which removes the key and those below it.
  void OpenKey(std::string_view name) {
    if (!name.starts_with('-')) {
      key_ = &keys_[FoldKey(name)];
      return;
    }
    key_ = nullptr;
    const std::string removed = FoldKey(name.substr(1));
    keys_.erase(removed);
    // The keys below are those that begin with the name and a backslash; "]" is the character that follows it.
    keys_.erase(keys_.lower_bound(removed + "\\"), keys_.lower_bound(removed + "]"));
  }

  // "name"=data or @=data; data "-" removes the value.
  void SetValue(std::string_view line) {
    std::optional<std::string> name;
    if (line.starts_with('@')) {
      name.emplace();
      line.remove_prefix(1);
    } else {
      name = TakeQuoted(line);
    }
    line = Trim(line);
    if (!name || !line.starts_with('=')) {
      return;
    }
    const std::string data = WithContinuations(Trim(line.substr(1)));
    if (data == "-") {
      key_->erase(FoldName(*name));
    } else if (std::optional<std::string> text = values_.Read(data)) {
      (*key_)[FoldName(*name)] = std::move(*text);
    }
  }

  // Hexadecimal bytes go on in the next line when a backslash ends the line.
  std::string WithContinuations(std::string_view data) {
    std::string whole(data);
    while (ToUpper(whole.substr(0, 3)) == "HEX" && whole.ends_with('\\')) {
      whole.pop_back();
      whole.append(TakeLine(rest_));
    }
    return whole;
  }

  std::string_view rest_;
  ValueReader values_;
  RegistryText::Keys keys_;
  RegistryText::Values* key_ = nullptr;
};

}  // namespace

RegistryText::RegistryText(std::string_view bytes, CodePage& codePage)
    : keys_(Reader(Decode(bytes, codePage), codePage).Read()) {}

std::optional<std::string> RegistryText::Value(std::string_view key, std::string_view valueName) const {
  const auto values = keys_.find(FoldKey(key));
  if (values == keys_.end()) {
    return std::nullopt;
  }
  const auto value = values->second.find(FoldName(valueName));
  return value == values->second.end() ? std::nullopt : std::optional(value->second);
}

std::optional<std::string> RegistryText::LocalMachineString(std::string_view key, std::string_view valueName) const {
  const std::string whole = FoldKey("HKEY_LOCAL_MACHINE\\" + std::string(key));
  std::optional<std::string> text = Value(whole, valueName);
  if (!text && whole.starts_with(kSoftware)) {
    text = Value(std::string(kSoftware) + "WOW6432NODE\\" + whole.substr(kSoftware.size()), valueName);
  }
  return text;
}

}  // namespace parvex
