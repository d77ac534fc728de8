#include "adapters/libxml2/node_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace parvex::xml {
namespace {

using Piece = std::pair<unsigned char*, std::size_t>;

Piece Filled(NodeArena& arena, std::size_t size, unsigned char with) {
  auto* piece = static_cast<unsigned char*>(arena.Allocate(size));
  std::memset(piece, with, size);
  return {piece, size};
}

bool HoldsOnly(const Piece& piece, unsigned char value) {
  for (std::size_t i = 0; i < piece.second; ++i) {
    if (piece.first[i] != value) {
      return false;
    }
  }
  return true;
}

TEST(NodeArena, GivesPiecesThatDoNotOverlapAndAreAlignedForPointers) {
  NodeArena arena;
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < 40'000; ++i) {
    pieces.push_back(Filled(arena, 1 + i % 300, static_cast<unsigned char>(i % 251)));
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    ASSERT_TRUE(HoldsOnly(pieces[i], static_cast<unsigned char>(i % 251))) << i;
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(pieces[i].first) % alignof(void*), 0u) << i;
  }
}

TEST(NodeArena, UsesFreedPiecesAgainForTheirSize) {
  NodeArena arena;
  void* first = arena.Allocate(120);
  void* other = arena.Allocate(96);
  arena.Free(first, 120);
  EXPECT_NE(arena.Allocate(96), first);
  EXPECT_EQ(arena.Allocate(113), first);
  arena.Free(other, 96);
  EXPECT_EQ(arena.Allocate(96), other);
}

TEST(NodeArena, FreesLargePiecesInAnyOrder) {
  NodeArena arena;
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < 9; ++i) {
    pieces.push_back(Filled(arena, 100'000, static_cast<unsigned char>(i)));
  }
  for (const std::size_t i : {4u, 0u, 8u, 7u}) {
    EXPECT_TRUE(HoldsOnly(pieces[i], static_cast<unsigned char>(i)));
    arena.Free(pieces[i].first, pieces[i].second);
  }
  EXPECT_TRUE(HoldsOnly(pieces[5], 5));  // the rest goes with the arena
}

TEST(ArenaOfThread, IsOneAsLongAsSomebodyUsesIt) {
  std::shared_ptr<NodeArena> one = ArenaOfThread();
  const std::weak_ptr<NodeArena> first = one;
  std::shared_ptr<NodeArena> other = ArenaOfThread();
  EXPECT_EQ(other, one);
  one = nullptr;
  EXPECT_EQ(ArenaOfThread(), other);
  other = nullptr;
  EXPECT_TRUE(first.expired());
}

TEST(ArenaOfThread, IsAnotherInEachThread) {
  const std::shared_ptr<NodeArena> here = ArenaOfThread();
  std::shared_ptr<NodeArena> there;
  std::thread([&] { there = ArenaOfThread(); }).join();
  EXPECT_NE(there, here);
}

}  // namespace
}  // namespace parvex::xml
