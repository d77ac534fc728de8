#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/open/content.h"
#include "cli/quote/quote.h"
#include "cli/quote/quote_text.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

// "rowCount" is "row count" to people.
std::string Words(const std::string& key) {
  std::string words;
  for (const char c : key) {
    const bool isUpper = c >= 'A' && c <= 'Z';
    words += isUpper ? std::string(" ") + static_cast<char>(c - 'A' + 'a') : std::string(1, c);
  }
  return words;
}

// A total as a quote has it; nothing for any other value.
std::optional<Total> TotalIn(const Json& value) {
  if (!value.is_object() || value.size() != 2 || !value.contains("amount") || !value.contains("unknown") ||
      !value["amount"].is_string() || !value["unknown"].is_number_unsigned()) {
    return std::nullopt;
  }
  const std::string digits = ReplaceAll(value["amount"].get<std::string>(), ".", "");
  Total total = {.unknown = value["unknown"].get<std::size_t>()};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), total.amount);
  return error == std::errc() && end == digits.data() + digits.size() ? std::optional(total) : std::nullopt;
}

// Whether a value has lines of its own.
bool IsNested(const Json& value) { return value.is_structured() && !TotalIn(value); }

std::string Plain(const Json& value) {
  if (const std::optional<Total> total = TotalIn(value)) {
    return TotalText(*total);
  }
  return value.is_string()    ? Printable(value.get<std::string>())
         : value.is_null()    ? "-"
         : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                              : value.dump();
}

// A list of names with their values, which stands on one line.
bool IsNamesAndValues(const Json& list) {
  if (!list.is_array() || list.empty()) {
    return false;
  }
  for (const Json& item : list) {
    if (!item.is_object() || item.size() > 3 || !item.contains("name") || !item.contains("value")) {
      return false;
    }
  }
  return true;
}

std::string NamesAndValues(const Json& list) {
  std::string line;
  for (const Json& item : list) {
    const std::string value = item.contains("bytes") ? Plain(item["bytes"]) + " bytes" : Plain(item["value"]);
    line += (line.empty() ? "" : ", ") + Plain(item["name"]) + "=" + value;
  }
  return line;
}

// The list of names with their values that is all that an object has beside its head; null for any other.
const Json* OnlyNamesAndValues(const Json& object) {
  const Json* only = nullptr;
  for (const Json& value : object) {
    if (IsNested(value) && !value.empty() && std::exchange(only, &value) != nullptr) {
      return nullptr;
    }
  }
  return only != nullptr && IsNamesAndValues(*only) ? only : nullptr;
}

// Keys whose values need no word before them.
bool SaysItself(const std::string& key) {
  constexpr std::string_view kNames[] = {"name", "markFor", "partNumber", "section", "key", "path", "what", "says"};
  return std::ranges::find(kNames, key) != std::end(kNames);
}

// What of an object fits on the line that it begins with: who it is, what it is.
std::string HeadOf(const Json& object) {
  std::string head;
  for (const auto& [key, value] : object.items()) {
    if (IsNested(value) || key == "kind" || value == "" || value == false) {
      continue;
    }
    head += (head.empty() ? "" : ", ") + (SaysItself(key) ? "" : Words(key) + " ") + Plain(value);
  }
  return head;
}

void AppendLists(const Json& object, std::size_t indent, std::string& text);

void AppendList(const std::string& key, const Json& list, std::size_t indent, std::string& text) {
  const std::string margin(indent, ' ');
  if (list.empty()) {
    return;
  }
  if (IsNamesAndValues(list)) {
    text += margin + Words(key) + ": " + NamesAndValues(list) + "\n";
    return;
  }
  text += margin + Words(key) + ":\n";
  for (const Json& item : list) {
    const std::string head = item.is_object() ? HeadOf(item) : Plain(item);
    if (const Json* only = OnlyNamesAndValues(item)) {
      text += margin + "  " + head + (head.empty() ? "" : ": ") + NamesAndValues(*only) + "\n";
      continue;
    }
    text += margin + "  " + (head.empty() ? "-" : head) + "\n";
    if (item.is_object()) {
      AppendLists(item, indent + 4, text);
    }
  }
}

void AppendLists(const Json& object, std::size_t indent, std::string& text) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_array()) {
      AppendList(key, value, indent, text);
    } else if (IsNested(value)) {
      text += std::string(indent, ' ') + Words(key) + ": " + HeadOf(value) + "\n";
      AppendLists(value, indent + 2, text);
    }
  }
}

}  // namespace

std::string ContentAsText(const Content& content, const std::string& file, std::size_t bytes) {
  std::string text = Printable(file) + ": " + content.what + ", " + Counted(bytes, "byte") + "\n";
  for (const auto& [key, value] : content.members.items()) {
    if (!IsNested(value)) {
      text += "  " + Words(key) + ": " + Plain(value) + "\n";
    }
  }
  AppendLists(content.members, 2, text);
  return text;
}

std::string ContentAsJson(const Content& content, const std::string& file, std::size_t bytes) {
  Json all = {{"file", file}, {"bytes", bytes}, {"kind", content.kind}, {"what", content.what}};
  all.update(content.members);
  return EscapedJson(all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

}  // namespace parvex::cli
