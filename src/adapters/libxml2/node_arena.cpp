#include "adapters/libxml2/node_arena.h"

#include <algorithm>
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

void NodeArena::Free(void* piece, std::size_t size) noexcept {
  if (size <= kLargestSmall) {
    PutBack(piece, ClassOf(size));
  } else {
    FreeLarge(piece, size);
  }
}

void* NodeArena::Cut(Class of) {
  FreePieces& pieces = freed_[of.index];
  if (FreePiece* piece = pieces.first; piece != nullptr) {
    Permit(piece, of.room);
    pieces.first = piece->next;
    return piece;
  }
  if (static_cast<std::size_t>(end_ - free_) < of.room) {
    AddChunk();
  }
  Permit(free_, of.room);
  return std::exchange(free_, free_ + of.room);
}

void NodeArena::PutBack(void* piece, Class of) noexcept {
  FreePieces& pieces = freed_[of.index];
  auto* freed = new (piece) FreePiece{pieces.first};
  if (pieces.first == nullptr) {
    pieces.last = freed;
  }
  pieces.first = freed;
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
  held_ += of.room;
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
  held_ -= ClassOf(sizeof(LargePiece) + size).room;
  ::operator delete(header);
}

void NodeArena::Absorb(NodeArena& other) noexcept {
  if (other.chunks_ != nullptr) {
    (chunks_ == nullptr ? chunks_ : lastChunk_->next) = other.chunks_;
    lastChunk_ = other.lastChunk_;
    other.chunks_ = nullptr;
  }
  if (other.end_ - other.free_ > end_ - free_) {
    free_ = other.free_;
    end_ = other.end_;
  }
  other.free_ = other.end_ = nullptr;
  held_ += std::exchange(other.held_, 0);
  nextChunk_ = std::max(nextChunk_, std::exchange(other.nextChunk_, kFirstChunk));
  for (std::size_t i = 0; i < freed_.size(); ++i) {
    FreePieces& theirs = other.freed_[i];
    if (theirs.first == nullptr) {
      continue;
    }
    FreePieces& ours = freed_[i];
    Permit(theirs.last, sizeof(FreePiece));
    theirs.last->next = ours.first;
    Forbid(theirs.last, sizeof(FreePiece));
    ours = {theirs.first, ours.first == nullptr ? theirs.last : ours.last};
    theirs = {};
  }
  if (other.ring_.next != &other.ring_) {
    other.ring_.next->previous = ring_.previous;
    ring_.previous->next = other.ring_.next;
    other.ring_.previous->next = &ring_;
    ring_.previous = other.ring_.previous;
    other.ring_ = {&other.ring_, &other.ring_};
  }
}

void NodeArena::AddChunk() {
  static_assert(kFirstChunk >= sizeof(Chunk) + kLargestSmall);
  static_assert(kLargestChunk / kLargePieceOfChunk <= std::size_t{kLargestSmall} << (kLargeClasses / 4));
  const std::size_t size = nextChunk_;
  void* memory = size < kLargePage ? ::operator new(size) : ::operator new(size, kOnLargePage);
  PreferLargePages(memory, size);
  auto* chunk = new (memory) Chunk{chunks_, size};
  lastChunk_ = chunks_ == nullptr ? chunk : lastChunk_;
  chunks_ = chunk;
  held_ += size;
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

SharedArena::SharedArena() : group_(LastJoined().lock()) {
  if (group_ == nullptr) {
    group_ = std::make_shared<Group>();
  }
}

std::weak_ptr<SharedArena::Group>& SharedArena::LastJoined() noexcept {
  thread_local std::weak_ptr<Group> joined;
  return joined;
}

bool SharedArena::IsShared() noexcept {
  Joined();
  return group_.use_count() > 1;
}

void SharedArena::JoinWith(SharedArena& other) noexcept {
  Joined();
  other.Joined();
  if (group_ == other.group_) {
    return;
  }
  // The shallower group leads to the deeper one, so that a way through many of them stays short.
  const bool intoOther = group_->depth < other.group_->depth;
  const std::shared_ptr<Group> kept = intoOther ? other.group_ : group_;
  const std::shared_ptr<Group> absorbed = intoOther ? group_ : other.group_;
  if (kept->depth == absorbed->depth) {
    ++kept->depth;
  }
  kept->memory.Absorb(absorbed->memory);
  absorbed->joined = kept;
  group_ = other.group_ = kept;
  LastJoined() = kept;
}

}  // namespace parvex::xml
