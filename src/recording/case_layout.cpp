#include "recording/case_layout.h"

#include <algorithm>
#include <vector>

#include "formats/text/file_names.h"
#include "formats/zip/entry_names.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kLongestCommand = 40;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

std::string KeptOf(std::string_view command) {
  std::string kept;
  for (const char c : command) {
    if (kept.size() < kLongestCommand && (IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_')) {
      kept.push_back(c);
    }
  }
  return kept.empty() ? "unknown" : kept;
}

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

std::string CaseName(std::string_view localTime, std::uint32_t processId, std::uint64_t number,
                     std::string_view command) {
  return std::string(localTime) + "-" + std::to_string(processId) + "-" + std::to_string(number) + "-" +
         KeptOf(command);
}

std::optional<std::string> MemberOf(std::string_view path) {
  std::string member = "drive_c";
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    member = "unc";
  } else if (path.size() >= 2 && IsLetter(path[0]) && path[1] == ':') {
    member.back() = static_cast<char>(path[0] | 0x20);
    path.remove_prefix(2);
  }
  for (const std::string_view component : ComponentsOf(path)) {
    if (!IsFileName(component)) {
      return std::nullopt;
    }
    member.append("/").append(component);
  }
  return ProblemOfPackedName(member) ? std::nullopt : std::optional(member);
}

std::string AfterStep(std::uint64_t step) { return std::string(kAfter) + std::to_string(step) + "/"; }

}  // namespace parvex::recording
