#include "adapters/libxml2/large_pages.h"

#include <sys/mman.h>

#include <cstdint>

namespace parvex::xml {

void PreferLargePages(void* memory, std::size_t size) noexcept {
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
  const std::uintptr_t last = (begin + size) / kLargePage * kLargePage;
  if (first < last) {
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
  }
}

}  // namespace parvex::xml
