#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace parvex {

/// A list whose items stand at 1 to Count(), the shape of every array that the unit model hands around: slot 0 exists
/// and is empty there, which is why a loop from 1 to the upper bound is right also for a list without items.
template <class T>
class OneBasedList {
 public:
  /// The upper bound: the number of items.
  std::size_t Count() const { return items_.size(); }

  /// The item at 1 to Count().
  T& At(std::size_t index) { return items_.at(index - 1); }
  const T& At(std::size_t index) const { return items_.at(index - 1); }

  void Append(T item) { items_.push_back(std::move(item)); }

  // For range-based loops over the items.
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::vector<T> items_;
};

}  // namespace parvex
