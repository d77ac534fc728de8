#include "formats/text/file_names.h"

#include <algorithm>
#include <array>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"

namespace parvex {
namespace {

bool IsPortNumber(std::string_view port) {
  static constexpr std::array<std::string_view, 3> kSuperscripts = {"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
  return (port.size() == 1 && port[0] >= '1' && port[0] <= '9') ||
         std::find(kSuperscripts.begin(), kSuperscripts.end(), port) != kSuperscripts.end();
}

}  // namespace

bool IsFileName(std::string_view name) {
  return !name.empty() && name == WithoutTrailingDotsAndBlanks(name) &&
         std::none_of(name.begin(), name.end(), IsForbiddenInFileName) && !IsDeviceName(name);
}

bool IsDeviceName(std::string_view name) {
  static constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  const std::string stem = ToUpper(TrimBlanks(name.substr(0, name.find('.'))));
  if (stem.starts_with("COM") || stem.starts_with("LPT")) {
    return IsPortNumber(std::string_view(stem).substr(3));
  }
  return std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end();
}

bool IsForbiddenInFileName(char c) {
  return static_cast<unsigned char>(c) < 0x20 || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
}

std::string_view WithoutTrailingDotsAndBlanks(std::string_view name) {
  const std::size_t last = name.find_last_not_of(". ");
  return name.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string FoldPath(std::string_view path) {
  std::string folded;
  for (std::size_t from = 0; from <= path.size();) {
    const std::size_t end = std::min(path.find_first_of("\\/", from), path.size());
    const std::string_view name = path.substr(from, end - from);
    from = end + 1;
    if (name == "..") {
      folded.resize(std::min(folded.rfind('\\'), folded.size()));
    } else if (!name.empty() && name != ".") {
      folded.append("\\").append(FoldName(WithoutTrailingDotsAndBlanks(name)));
    }
  }
  return folded;
}

bool IsDevicePath(std::string_view path) {
  const auto isSeparator = [](char c) { return c == '\\' || c == '/'; };
  const bool beginsWithTwo = path.size() >= 3 && isSeparator(path[0]) && isSeparator(path[1]);
  if (beginsWithTwo && (path[2] == '.' || path[2] == '?') && (path.size() == 3 || isSeparator(path[3]))) {
    return true;
  }
  if (path.starts_with("\\??\\") || (path.size() > 2 && path.find(':', 2) != std::string_view::npos)) {
    return true;
  }
  const std::size_t last = path.find_last_of("\\/:");
  return IsDeviceName(last == std::string_view::npos ? path : path.substr(last + 1));
}

}  // namespace parvex
