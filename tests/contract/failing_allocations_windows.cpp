#include "tests/contract/failing_allocations_windows.h"

#include <cstdlib>
#include <new>

namespace parvex::test {
namespace {

thread_local std::size_t failsAt = 0;  // 0: nothing fails
thread_local std::size_t asked = 0;

void* AllocateOrNull(std::size_t size) {
  if (failsAt != 0 && ++asked >= failsAt) {
    return nullptr;
  }
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

FailingAllocations::FailingAllocations(std::size_t at) {
  asked = 0;
  failsAt = at;
}

FailingAllocations::~FailingAllocations() { failsAt = 0; }

std::size_t FailingAllocations::Asked() const { return asked; }

}  // namespace parvex::test

void* operator new(std::size_t size) {
  void* block = parvex::test::AllocateOrNull(size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return parvex::test::AllocateOrNull(size); }

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
