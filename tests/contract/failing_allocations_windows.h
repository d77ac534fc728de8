#pragma once

#include <cstddef>

namespace parvex::test {

/// While one lives, the `at`-th allocation of this thread (from 1) and all behind it fail: operator new, which is this
/// program's own. What COM allocates for itself does not fail.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t at);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  /// Allocations that were asked for while it lives.
  std::size_t Asked() const;
};

}  // namespace parvex::test
