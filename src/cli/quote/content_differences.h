#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::cli {

/// So many bytes a content may have that is compared value by value.
inline constexpr std::size_t kLargestComparedContent = 1u << 20;
/// So many values, or lines, a content may have that is compared.
inline constexpr std::size_t kMostComparedValues = 100'000;
/// So many values may have come or gone between two contents whose differences are listed; a changed one counts twice.
inline constexpr std::size_t kMostChangedValues = 200;

/// One value in which two contents differ.
struct ContentDifference {
  std::string path;  ///< "Product/@TagVersion", "Product/Option[2]" or "line 3"; long ones begin with "…"
  std::optional<std::string> before;  ///< nothing when it was added
  std::optional<std::string> after;   ///< nothing when it was removed
};

struct ContentComparison {
  std::vector<ContentDifference> differences;
  std::string note;  ///< why there are none: "no text"; empty where there are
};

/// Compares two texts, the contents of two files. Where both are XML, value by value: every element with its text,
/// every attribute, comment and instruction has a path, and layout makes no difference. Otherwise line by line. A text
/// is UTF-8, Windows-1252 where it is no UTF-8, or what its byte order mark says. What is no text, too large or too
/// different is said so in the note, and so is it when only layout differs.
///
/// Cost: linear in both, times the values that differ.
ContentComparison CompareContents(std::string_view before, std::string_view after);

}  // namespace parvex::cli
