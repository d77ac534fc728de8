#include "adapters/posix/machine_path.h"

#include <algorithm>

#include "formats/text/file_names.h"

namespace parvex::posix {
namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// One component between separators. False when no file can be called that.
bool AppendComponent(std::vector<std::string>& names, std::string_view component) {
  if (component.empty() || component == ".") {
    return true;
  }
  if (component == "..") {
    if (!names.empty()) {
      names.pop_back();
    }
    return true;
  }
  const std::string_view name = WithoutTrailingDotsAndBlanks(component);
  if (!IsFileName(name)) {
    return false;
  }
  names.emplace_back(name);
  return true;
}

}  // namespace

std::optional<MachinePath> MachinePath::Parse(std::string_view text) {
  MachinePath path;
  if (text.empty() || (text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]))) {
    return std::nullopt;
  }
  if (text.size() >= 2 && text[1] == ':' && IsLetter(text[0])) {
    path.drive = static_cast<char>(text[0] & ~0x20);
    text.remove_prefix(2);
  }
  path.endsInSeparator = !text.empty() && IsSeparator(text.back());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    if (!AppendComponent(path.names, text.substr(0, end)) || path.names.size() > kMostNamesOfPath) {
      return std::nullopt;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return path;
}

std::string MachinePath::Text() const {
  std::string text{drive, ':'};
  for (const std::string& name : names) {
    text.append("\\").append(name);
  }
  return names.empty() ? text + "\\" : text;
}

MachinePath MachinePath::Parent() const {
  MachinePath parent{drive, names, true};
  if (!names.empty()) {
    parent.names.pop_back();
  }
  return parent;
}

}  // namespace parvex::posix
