#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include "cli/cases/case_steps.h"
#include "cli/open/content.h"
#include "formats/registry/registry_text.h"
#include "formats/text/encoded_text.h"
#include "formats/text/windows_1252.h"
#include "seams/automation_error.h"

// Texts line by line: registry, JSON, journals.

namespace parvex::cli {
namespace {

bool IsRegistryText(std::string_view text) {
  return text.starts_with("Windows Registry Editor Version ") || text.starts_with("REGEDIT4");
}

Json Scalar(const Json& value) { return value.is_string() ? Json(ShownText(value.get<std::string>())) : value; }

// The members of an object of the substitute or a tool, or how many elements an array has.
Content ValueContent(const Json& value, Looking& looking) {
  Content content = {.kind = "json", .what = "JSON", .members = Json::object()};
  if (value.is_array()) {
    content.members["elementCount"] = value.size();
    return content;
  }
  AddAll(content.members, "keys", value.items(), looking, [](const auto& member) {
    const Json& inner = member.value();
    Json listed = {{"name", ShownText(member.key())}};
    if (inner.is_structured()) {
      listed["members"] = inner.size();
    } else {
      listed["value"] = Scalar(inner);
    }
    return listed;
  });
  return content;
}

// The lines of a journal; none when one is no line of a journal.
std::optional<std::vector<Json>> JournalLines(std::string_view bytes) {
  std::vector<Json> lines;
  std::size_t values = kMostJsonValues;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    const bool isCutOff = end == bytes.size();
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.find_first_not_of(" \r\t") == line.npos) {
      continue;
    }
    Json value;
    try {
      value = ParseBoundedJson(line, values);
    } catch (const Json::exception&) {
      if (isCutOff && !lines.empty()) {
        break;  // cut off, as the host died
      }
      throw;
    }
    if (!value.is_object() || !value.contains("kind") || !value["kind"].is_string()) {
      return std::nullopt;
    }
    lines.push_back(std::move(value));
  }
  return lines;
}

Content JournalContent(const std::vector<Json>& lines, Looking& looking) {
  Content content = {.kind = "journal", .what = "a journal of what crossed to the outside", .members = Json::object()};
  std::map<std::string, std::size_t> kinds;
  std::size_t failures = 0;
  for (const Json& line : lines) {
    ++kinds[ShownText(line["kind"].get<std::string>())];
    failures += line.contains("error") ? 1 : 0;
  }
  content.members["lineCount"] = lines.size();
  content.members["failures"] = failures;
  AddAll(content.members, "kinds", kinds, looking, [](const auto& kind) {
    return Json{{"name", kind.first}, {"value", kind.second}};
  });
  std::size_t number = 0;
  AddAll(content.members, "lines", lines, looking, [&](const Json& line) {
    Json listed = {{"line", ++number}, {"says", SayingOf(line)}};
    if (const std::string error = ErrorIn(line); !error.empty()) {
      listed["error"] = ShownText(error);
    }
    return listed;
  });
  return content;
}

}  // namespace

std::optional<Content> RegistryContent(std::string_view bytes, Looking& looking) {
  posix::Windows1252 codePage;
  const std::optional<std::string> marked = MarkedText(bytes.substr(0, 128));
  if (!IsRegistryText(marked ? std::string_view(*marked) : bytes)) {
    return std::nullopt;
  }
  Content content = {.kind = "registry", .what = "registry text", .members = Json::object()};
  const RegistryText registry(bytes, codePage);
  AddAll(content.members, "keys", registry.All(), looking, [&](const auto& key) {
    Json listed = {{"key", ShownText(key.first)}};
    AddAll(listed, "values", key.second, looking, [](const auto& value) {
      return Json{{"name", ShownText(value.first)}, {"value", ShownText(value.second)}};
    });
    return listed;
  });
  return content;
}

std::optional<Content> JsonContent(std::string_view bytes, const std::string& name, Looking& looking) {
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  if (first == bytes.npos || (bytes[first] != '{' && bytes[first] != '[')) {
    return std::nullopt;
  }
  try {
    if (const std::optional<std::vector<Json>> lines = JournalLines(bytes)) {
      return JournalContent(*lines, looking);
    }
  } catch (const std::exception&) {
    // A text over several lines, none, or too much: what it is as a whole says which.
  }
  try {
    return ValueContent(ParseBoundedJson(bytes), looking);
  } catch (const std::invalid_argument& problem) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, FailureText("the JSON", name, problem.what()));
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

}  // namespace parvex::cli
