#pragma once

#include <array>
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
  void* Allocate(std::size_t size);
  /// Takes back a piece that was allocated here with that size, or another that is the same number of grains.
  void Free(void* piece, std::size_t size) noexcept;

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

  static Class ClassOf(std::size_t size) noexcept;
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
  Chunk* chunks_ = nullptr;
  LargePiece ring_;
  std::array<FreePiece*, kSmallClasses + kLargeClasses> freed_{};
};

/// The arena of the documents of this thread, which may exchange nodes: new documents begin with the one that is there,
/// and it goes with the last of them.
std::shared_ptr<NodeArena> ArenaOfThread();

}  // namespace parvex::xml
