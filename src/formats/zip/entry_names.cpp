#include "formats/zip/entry_names.h"

#include <algorithm>

#include "formats/text/file_names.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex {
namespace {

// Why a component of an entry's name is refused; nothing when it is not.
std::optional<std::string> ProblemOfComponent(std::string_view component) {
  if (component.empty()) {
    return "is absolute or has an empty component in its name";
  }
  if (component == "." || component == "..") {
    return "has \"" + std::string(component) + "\" in its name";
  }
  if (std::any_of(component.begin(), component.end(), IsForbiddenInFileName)) {
    return "has a colon or another character in its name that file names do not hold";
  }
  const std::string_view kept = WithoutTrailingDotsAndBlanks(component);
  if (kept.empty()) {
    return "has a name component that ends with a dot or a blank and has nothing before it";
  }
  if (IsDeviceName(kept) && kept.find('.') == std::string_view::npos) {
    return "has the name of a device";
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> ProblemOfPackedName(std::string_view name) {
  constexpr std::size_t kLongestName = 255;
  if (name.empty()) {
    return "has no name";
  }
  if (!IsWellFormed(name)) {
    return "has a name that is no valid UTF-8";
  }
  if (LengthInUnits(name) > kLongestName) {
    return "has a name of more than " + std::to_string(kLongestName) + " characters";
  }
  while (!name.empty()) {
    const std::size_t separator = name.find_first_of("/\\");
    if (std::optional<std::string> problem = ProblemOfComponent(name.substr(0, separator))) {
      return problem;
    }
    name.remove_prefix(separator == std::string_view::npos ? name.size() : separator + 1);
  }
  return std::nullopt;
}

std::string WrittenName(std::string_view name) {
  std::string written;
  while (!name.empty()) {
    const std::size_t separator = name.find_first_of("/\\");
    written += WithoutTrailingDotsAndBlanks(name.substr(0, separator));
    written += separator == std::string_view::npos ? "" : "\\";
    name.remove_prefix(separator == std::string_view::npos ? name.size() : separator + 1);
  }
  return written;
}

}  // namespace parvex
