#include "formats/text/machine_folder_places.h"

#include <algorithm>
#include <vector>

#include "formats/text/file_names.h"

namespace parvex {
namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// The components of a path, "." and ".." resolved, without the dots and blanks that Windows drops.
std::vector<std::string_view> ComponentsOf(std::string_view path) {
  std::vector<std::string_view> components;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find_first_of("\\/"), path.size());
    const std::string_view component = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    if (component == "..") {
      if (!components.empty()) {
        components.pop_back();
      }
    } else if (const std::string_view kept = WithoutTrailingDotsAndBlanks(component); !kept.empty()) {
      components.push_back(kept);
    }
  }
  return components;
}

}  // namespace

std::optional<std::string> PlaceInMachineFolder(std::string_view path) {
  std::string member = "drive_c";
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    member = "unc";
  } else if (path.size() >= 2 && IsLetter(path[0]) && path[1] == ':') {
    member.back() = static_cast<char>(path[0] | 0x20);
    path.remove_prefix(2);
  }
  const std::vector<std::string_view> components = ComponentsOf(path);
  if (components.size() > kMostNamesOfPath) {
    return std::nullopt;
  }
  for (const std::string_view component : components) {
    if (!IsFileName(component)) {
      return std::nullopt;
    }
    member.append("/").append(component);
  }
  return member;
}

}  // namespace parvex
