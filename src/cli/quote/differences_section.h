#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/quote/quote_differences.h"

namespace parvex::cli {

/// So many differences a page lists; how many more there are is said.
inline constexpr std::size_t kMostListedDifferences = 10'000;

/// Puts the differences behind the page, as a section of it: a row each, which leads to the tag or base unit that it is
/// about.
void AppendDifferences(std::string& page, const std::vector<Difference>& differences);

/// The way back: from a tag or a base unit to the rows about it.
class DifferenceLinks {
 public:
  explicit DifferenceLinks(const std::vector<Difference>& differences);

  /// Markup of a link to the first of them that says how many there are (no link when it is not listed); nothing when
  /// there are none.
  std::string FromTag(std::size_t place) const;
  std::string FromUnit(std::size_t tag, std::size_t place) const;
  /// `place` is that in the earlier quote.
  std::string FromRemovedTag(std::size_t place) const;

 private:
  struct Rows {
    std::size_t first;
    std::size_t count;
  };
  using Place = std::pair<std::size_t, std::optional<std::size_t>>;  // of a tag and, maybe, its unit

  static void Add(std::map<Place, Rows>& places, const Place& place, std::size_t row);
  static std::string LinkTo(const std::map<Place, Rows>& places, const Place& place);

  std::map<Place, Rows> after_;
  std::map<Place, Rows> removed_;
};

}  // namespace parvex::cli
