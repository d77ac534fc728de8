#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace parvex::cli {

/// Items of two lists, from begin up to end, in whose place the other has others; one of both may be empty.
struct ChangedRun {
  std::size_t beforeBegin;
  std::size_t beforeEnd;
  std::size_t afterBegin;
  std::size_t afterEnd;

  bool operator==(const ChangedRun&) const = default;
};

/// How few items have to be removed from a list and added to it to make the other of it: the runs of them in order.
/// Nothing when it takes more than `most`. Cost: the items of both lists times `most`.
template <typename Item>
std::optional<std::vector<ChangedRun>> ChangedRuns(const std::vector<Item>& before, const std::vector<Item>& after,
                                                   std::size_t most) {
  // The shortest way through the grid of both lists: along a diagonal nothing changes. How far the way with so many
  // changes gets on each diagonal is kept for every number of changes, and the way is found from its end.
  using Signed = std::ptrdiff_t;
  const auto [first, firstOther] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const Signed begin = first - before.begin();
  const Signed width = static_cast<Signed>(before.size());
  const Signed height = static_cast<Signed>(after.size());
  const Signed limit = std::min(static_cast<Signed>(most), width + height);
  std::vector<std::vector<Signed>> reached;  // by changes; [changes + diagonal], the item of `before` that is next
  const auto from = [&](Signed changes, Signed diagonal) {
    const std::vector<Signed>& last = reached[static_cast<std::size_t>(changes - 1)];
    const auto at = [&](Signed other) { return last[static_cast<std::size_t>(changes - 1 + other)]; };
    const bool isAddition = diagonal == -changes || (diagonal != changes && at(diagonal - 1) < at(diagonal + 1));
    return std::pair(isAddition ? diagonal + 1 : diagonal - 1, isAddition ? at(diagonal + 1) : at(diagonal - 1) + 1);
  };
  for (Signed changes = 0; changes <= limit; ++changes) {
    std::vector<Signed> row(static_cast<std::size_t>(2 * changes + 1), -1);
    for (Signed diagonal = -changes; diagonal <= changes; diagonal += 2) {
      Signed x = changes == 0 ? begin : from(changes, diagonal).second;
      for (; x < width && x - diagonal < height && x - diagonal >= 0 &&
             before[static_cast<std::size_t>(x)] == after[static_cast<std::size_t>(x - diagonal)];
           ++x) {
      }
      row[static_cast<std::size_t>(changes + diagonal)] = x;
      if (x < width || x - diagonal < height) {
        continue;
      }
      std::vector<ChangedRun> runs;
      for (Signed left = changes, on = diagonal; left > 0; --left) {
        const auto [previous, next] = from(left, on);
        const auto isRemoval = static_cast<std::size_t>(previous < on);
        const auto end = static_cast<std::size_t>(next);
        const auto endOther = static_cast<std::size_t>(next - on);
        const ChangedRun one{end - isRemoval, end, endOther - (1 - isRemoval), endOther};
        if (!runs.empty() && runs.back().beforeBegin == one.beforeEnd && runs.back().afterBegin == one.afterEnd) {
          runs.back().beforeBegin = one.beforeBegin;
          runs.back().afterBegin = one.afterBegin;
        } else {
          runs.push_back(one);
        }
        on = previous;
      }
      std::ranges::reverse(runs);
      return runs;
    }
    reached.push_back(std::move(row));
  }
  return std::nullopt;
}

}  // namespace parvex::cli
