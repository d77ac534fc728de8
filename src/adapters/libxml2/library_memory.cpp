#include "adapters/libxml2/library_memory.h"

#include <libxml/xmlmemory.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <functional>
#include <mutex>
#include <new>

namespace parvex::xml {
namespace {

thread_local unsigned long refused = 0;  // requests, so far

// Pieces of powers of two, cut from a block that no page is given to before somebody needs it.
class Reserve {
 public:
  /// Null for what is too large, and when nothing is left.
  void* Allocate(std::size_t size) noexcept {
    const std::size_t of = ClassOf(size);
    if (of >= kClasses) {
      return nullptr;
    }
    const std::lock_guard held(lock_);
    if (Piece* piece = free_[of]; piece != nullptr) {
      free_[of] = piece->next;
      return piece + 1;
    }
    const std::size_t room = sizeof(Piece) + (kSmallest << of);
    if (room > memory_.size() - used_) {
      return nullptr;
    }
    auto* piece = new (memory_.data() + used_) Piece{of, nullptr};
    used_ += room;
    return piece + 1;
  }

  bool Holds(const void* memory) const noexcept {
    const auto* at = static_cast<const std::byte*>(memory);
    return std::less_equal<>()(memory_.data(), at) && std::less<>()(at, memory_.data() + memory_.size());
  }

  static std::size_t RoomOf(void* memory) noexcept { return kSmallest << (static_cast<Piece*>(memory) - 1)->of; }

  void Free(void* memory) noexcept {
    const std::lock_guard held(lock_);
    Piece* piece = static_cast<Piece*>(memory) - 1;
    piece->next = free_[piece->of];
    free_[piece->of] = piece;
  }

 private:
  static constexpr std::size_t kSize = std::size_t{1} << 20;
  static constexpr std::size_t kSmallest = 32;
  static constexpr std::size_t kClasses = 12;  // up to 64 KB

  struct alignas(std::max_align_t) Piece {
    std::size_t of;
    Piece* next;
  };

  static std::size_t ClassOf(std::size_t size) noexcept {
    return std::bit_width((std::max<std::size_t>(size, 1) - 1) / kSmallest);
  }

  std::mutex lock_;
  std::size_t used_ = 0;
  std::array<Piece*, kClasses> free_{};
  alignas(Piece) std::array<std::byte, kSize> memory_;
};

Reserve reserve;

xmlFreeFunc freeBefore = nullptr;
xmlMallocFunc mallocBefore = nullptr;
xmlReallocFunc reallocBefore = nullptr;

void* FromReserve(std::size_t size) noexcept {
  ++refused;
  return reserve.Allocate(size);
}

void* Allocate(std::size_t size) noexcept {
  void* memory = mallocBefore(size);
  return memory != nullptr ? memory : FromReserve(size);
}

void Free(void* memory) noexcept {
  if (reserve.Holds(memory)) {
    reserve.Free(memory);
  } else {
    freeBefore(memory);
  }
}

void* Reallocate(void* memory, std::size_t size) noexcept {
  const bool isReserved = memory != nullptr && reserve.Holds(memory);
  void* larger = isReserved ? mallocBefore(size) : reallocBefore(memory, size);
  if (larger != nullptr && !isReserved) {
    return larger;
  }
  if (larger == nullptr) {
    larger = FromReserve(size);
  }
  if (larger != nullptr && memory != nullptr) {
    const std::size_t room = isReserved ? Reserve::RoomOf(memory) : malloc_usable_size(memory);
    std::memcpy(larger, memory, std::min(room, size));
    Free(memory);
  }
  return larger;
}

char* Duplicate(const char* text) noexcept {
  const std::size_t size = std::strlen(text) + 1;
  void* copy = Allocate(size);
  return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

}  // namespace

LibraryMemory::LibraryMemory() noexcept {
  [[maybe_unused]] static const bool taken = [] {
    xmlStrdupFunc duplicateBefore = nullptr;
    xmlMemGet(&freeBefore, &mallocBefore, &reallocBefore, &duplicateBefore);
    return xmlMemSetup(Free, Allocate, Reallocate, Duplicate) == 0;
  }();
  refusedBefore_ = refused;
}

void LibraryMemory::Check() const {
  if (refused != refusedBefore_) {
    throw std::bad_alloc();
  }
}

}  // namespace parvex::xml
