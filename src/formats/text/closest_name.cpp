#include "formats/text/closest_name.h"

#include <algorithm>
#include <vector>

namespace parvex {
namespace {

constexpr std::size_t kLongestCompared = 100;  // longer texts are no misspelt names, and would take long

char Folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::size_t EditDistance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> beforeLast(other.size() + 1);
  std::vector<std::size_t> last(other.size() + 1);
  std::vector<std::size_t> row(other.size() + 1);
  for (std::size_t j = 0; j <= other.size(); ++j) {
    row[j] = j;
  }
  for (std::size_t i = 1; i <= one.size(); ++i) {
    beforeLast.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= other.size(); ++j) {
      const char a = Folded(one[i - 1]);
      const char b = Folded(other[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a == b ? 0 : 1)});
      if (i > 1 && j > 1 && a == Folded(other[j - 2]) && Folded(one[i - 2]) == b) {
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
      }
    }
  }
  return row[other.size()];
}

std::string_view ClosestName(std::string_view misspelt, std::span<const std::string_view> names) {
  if (misspelt.size() > kLongestCompared) {
    return {};
  }
  std::string_view closest;
  std::size_t least = misspelt.size() / 3 + 1;
  for (const std::string_view name : names) {
    const std::size_t distance = EditDistance(misspelt, name);
    if (distance < least) {
      least = distance;
      closest = name;
    }
  }
  return closest;
}

}  // namespace parvex
