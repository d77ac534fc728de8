#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <memory>

namespace parvex::xml {

// Memory for the nodes of documents and their texts. Pieces are cut from large chunks, freed ones are used again for
// pieces of their size, and everything is given back at once with the arena: a large document goes without a visit to
// each of its nodes. A piece that is large beside the chunks so far has memory of its own.

class NodeArena {
 public:
  NodeArena() noexcept;
  ~NodeArena();
  NodeArena(const NodeArena&) = delete;
  NodeArena& operator=(const NodeArena&) = delete;

  /// Memory for `size` bytes (at least one), aligned for pointers. Throws std::bad_alloc.
  void* Allocate(std::size_t size) { return size <= kLargestSmall ? Cut(ClassOf(size)) : AllocateLarge(size); }
  /// Takes back a piece that was allocated here, or in an arena that was absorbed, with that size or another that is
  /// the same number of grains.
  void Free(void* piece, std::size_t size) noexcept;
  /// Takes over all that another arena holds; it is empty afterwards. The cost does not depend on how much that is.
  void Absorb(NodeArena& other) noexcept;
  /// Bytes that it has of the system, for pieces in use or free.
  std::size_t Held() const noexcept { return held_; }

  static constexpr std::size_t kGrain = 8;           ///< small pieces take a multiple of it
  static constexpr std::size_t kLargestSmall = 256;  ///< larger pieces take up to a quarter more than their size

 private:
  static constexpr std::size_t kFirstChunk = 1024;
  static constexpr std::size_t kLargestChunk = std::size_t{4} << 20;
  static constexpr std::size_t kLargePieceOfChunk = 16;  // what is larger than this part of a chunk is not cut from it
  static constexpr std::size_t kSmallClasses = kLargestSmall / kGrain;
  static constexpr std::size_t kLargeClasses = 48;

  struct Chunk {
    Chunk* next;
    std::size_t size;
  };
  struct FreePiece {
    FreePiece* next;
  };
  struct FreePieces {
    FreePiece* first = nullptr;
    FreePiece* last = nullptr;
  };
  // Stands before each large piece. Those with memory of their own form a ring; those cut from a chunk are in none.
  struct LargePiece {
    LargePiece* previous;
    LargePiece* next;
  };
  // How much room pieces of some size take, and which of `freed_` has those that are free.
  struct Class {
    std::size_t room;
    std::size_t index;
  };

  // Small pieces by the grain, larger ones four sizes to each doubling.
  static constexpr Class ClassOf(std::size_t size) noexcept {
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
  void* Cut(Class of);
  bool IsCutFromChunk(std::size_t room) const noexcept;
  void* AllocateLarge(std::size_t size);
  void FreeLarge(void* piece, std::size_t size) noexcept;
  void PutBack(void* piece, Class of) noexcept;
  void AddChunk();
  static void Release(Chunk* chunk) noexcept;

  std::byte* free_ = nullptr;  // the rest of the newest chunk
  std::byte* end_ = nullptr;
  std::size_t nextChunk_ = kFirstChunk;
  std::size_t held_ = 0;
  Chunk* chunks_ = nullptr;
  Chunk* lastChunk_ = nullptr;
  LargePiece ring_;
  std::array<FreePieces, kSmallClasses + kLargeClasses> freed_{};
};

/// The arena of a document. Documents that have exchanged nodes use one and the same, which lives as long as any of
/// them. New documents of the thread begin with the one that was joined last, as long as it lives: otherwise a document
/// that takes from one short-lived document after another would gather their arenas.
class SharedArena {
 public:
  SharedArena();

  NodeArena& operator*() noexcept { return Joined().memory; }
  NodeArena* operator->() noexcept { return &Joined().memory; }
  /// Whether another document uses it too.
  bool IsShared() noexcept;
  /// From here on both documents use the same.
  void JoinWith(SharedArena& other) noexcept;

 private:
  struct Group {
    NodeArena memory;
    std::shared_ptr<Group> joined;  // the group that took this one over
    int depth = 0;                  // of the groups that lead here
  };

  Group& Joined() noexcept {
    while (group_->joined != nullptr) {
      group_ = std::shared_ptr<Group>(group_->joined);
    }
    return *group_;
  }

  static std::weak_ptr<Group>& LastJoined() noexcept;

  std::shared_ptr<Group> group_;
};

}  // namespace parvex::xml
