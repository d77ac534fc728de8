#include "adapters/libxml2/node_arena.h"

#include <algorithm>
#include <bit>
#include <new>
#include <utility>

#include "adapters/libxml2/large_pages.h"

#if defined(__SANITIZE_ADDRESS__)
#define PARVEX_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PARVEX_POISONS 1
#endif
#endif
#ifdef PARVEX_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace parvex::xml {
namespace {

constexpr std::align_val_t kOnLargePage{kLargePage};

// Pieces that nobody holds are out of bounds for the sanitizer, as freed memory is elsewhere.
void Forbid([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef PARVEX_POISONS
  __asan_poison_memory_region(memory, size);
#endif
}

void Permit([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef PARVEX_POISONS
  __asan_unpoison_memory_region(memory, size);
#endif
}

}  // namespace

NodeArena::NodeArena() noexcept : ring_{&ring_, &ring_} {}

NodeArena::~NodeArena() {
  while (chunks_ != nullptr) {
    Release(std::exchange(chunks_, chunks_->next));
  }
  for (LargePiece* piece = ring_.next; piece != &ring_;) {
    ::operator delete(std::exchange(piece, piece->next));
  }
}

void* NodeArena::Allocate(std::size_t size) { return size <= kLargestSmall ? Cut(ClassOf(size)) : AllocateLarge(size); }

void NodeArena::Free(void* piece, std::size_t size) noexcept {
  if (size <= kLargestSmall) {
    PutBack(piece, ClassOf(size));
  } else {
    FreeLarge(piece, size);
  }
}

// Small pieces by the grain, larger ones four sizes to each doubling.
NodeArena::Class NodeArena::ClassOf(std::size_t size) noexcept {
  if (size <= kLargestSmall) {
    const std::size_t grains = (size + kGrain - 1) / kGrain;
    return {grains * kGrain, grains - 1};
  }
  const auto bits = static_cast<std::size_t>(std::bit_width(size - 1));
  const std::size_t step = std::size_t{1} << (bits - 3);
  const std::size_t steps = (size + step - 1) / step;  // 5 to 8
  constexpr auto kFirstBits = static_cast<std::size_t>(std::bit_width(kLargestSmall));
  return {steps * step, kSmallClasses + 4 * (bits - kFirstBits) + steps - 5};
}

void* NodeArena::Cut(Class of) {
  FreePiece*& first = freed_[of.index];
  if (FreePiece* piece = first; piece != nullptr) {
    Permit(piece, of.room);
    first = piece->next;
    return piece;
  }
  if (static_cast<std::size_t>(end_ - free_) < of.room) {
    AddChunk();
  }
  Permit(free_, of.room);
  return std::exchange(free_, free_ + of.room);
}

void NodeArena::PutBack(void* piece, Class of) noexcept {
  FreePiece*& first = freed_[of.index];
  first = new (piece) FreePiece{first};
  Forbid(piece, of.room);
}

bool NodeArena::IsCutFromChunk(std::size_t room) const noexcept { return room <= nextChunk_ / kLargePieceOfChunk; }

void* NodeArena::AllocateLarge(std::size_t size) {
  const Class of = ClassOf(sizeof(LargePiece) + size);
  if (IsCutFromChunk(of.room)) {
    return new (Cut(of)) LargePiece{nullptr, nullptr} + 1;
  }
  auto* piece = new (::operator new(sizeof(LargePiece) + size)) LargePiece{ring_.previous, &ring_};
  ring_.previous->next = piece;
  ring_.previous = piece;
  return piece + 1;
}

void NodeArena::FreeLarge(void* piece, std::size_t size) noexcept {
  LargePiece* header = static_cast<LargePiece*>(piece) - 1;
  if (header->next == nullptr) {
    PutBack(header, ClassOf(sizeof(LargePiece) + size));
    return;
  }
  header->previous->next = header->next;
  header->next->previous = header->previous;
  ::operator delete(header);
}

void NodeArena::AddChunk() {
  static_assert(kFirstChunk >= sizeof(Chunk) + kLargestSmall);
  static_assert(kLargestChunk / kLargePieceOfChunk <= std::size_t{kLargestSmall} << (kLargeClasses / 4));
  const std::size_t size = nextChunk_;
  void* memory = size < kLargePage ? ::operator new(size) : ::operator new(size, kOnLargePage);
  PreferLargePages(memory, size);
  auto* chunk = new (memory) Chunk{chunks_, size};
  chunks_ = chunk;
  free_ = static_cast<std::byte*>(memory) + sizeof(Chunk);
  end_ = static_cast<std::byte*>(memory) + size;
  nextChunk_ = std::min(2 * size, kLargestChunk);
  Forbid(free_, size - sizeof(Chunk));
}

void NodeArena::Release(Chunk* chunk) noexcept {
  const std::size_t size = chunk->size;
  Permit(chunk, size);
  if (size < kLargePage) {
    ::operator delete(chunk);
  } else {
    ::operator delete(chunk, kOnLargePage);
  }
}

std::shared_ptr<NodeArena> ArenaOfThread() {
  thread_local std::weak_ptr<NodeArena> current;
  std::shared_ptr<NodeArena> arena = current.lock();
  if (arena == nullptr) {
    arena = std::make_shared<NodeArena>();
    current = arena;
  }
  return arena;
}

}  // namespace parvex::xml
