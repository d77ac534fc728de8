#include "adapters/libxml2/node_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
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

TEST(NodeArena, TakesOverEverythingOfAnother) {
  NodeArena arena;
  std::vector<Piece> pieces;
  void* freed = nullptr;
  {
    NodeArena other;
    for (std::size_t i = 0; i < 1000; ++i) {
      pieces.push_back(Filled(other, 200, 7));
      pieces.push_back(Filled(other, 2000, 7));
      pieces.push_back(Filled(arena, 200, 7));
      pieces.push_back(Filled(arena, 2000, 7));
    }
    freed = other.Allocate(48);
    other.Free(freed, 48);
    arena.Free(arena.Allocate(48), 48);
    arena.Absorb(other);
    pieces.push_back(Filled(other, 200, 7));  // goes with the other one
    pieces.pop_back();
  }
  EXPECT_TRUE(arena.Allocate(48) == freed || arena.Allocate(48) == freed);
  for (const Piece& piece : pieces) {
    ASSERT_TRUE(HoldsOnly(piece, 7));
    arena.Free(piece.first, piece.second);
  }
  EXPECT_EQ(arena.Allocate(200), pieces[pieces.size() - 2].first);
}

TEST(SharedArena, IsSharedAsLongAsTwoDocumentsLive) {
  SharedArena one;
  EXPECT_FALSE(one.IsShared());
  void* piece = nullptr;
  {
    SharedArena two;
    piece = two->Allocate(64);
    std::memset(piece, 1, 64);
    one.JoinWith(two);
    EXPECT_TRUE(one.IsShared());
    EXPECT_TRUE(two.IsShared());
    EXPECT_EQ(&*one, &*two);
    one.JoinWith(two);
  }
  EXPECT_FALSE(one.IsShared());
  EXPECT_TRUE(HoldsOnly({static_cast<unsigned char*>(piece), 64}, 1));
  one->Free(piece, 64);
  EXPECT_EQ(one->Allocate(64), piece);
}

TEST(SharedArena, IsOneForAllThatJoinedOverOthers) {
  SharedArena one;
  SharedArena two;
  SharedArena three;
  SharedArena four;
  two.JoinWith(one);
  four.JoinWith(three);
  two.JoinWith(four);
  EXPECT_EQ(&*one, &*three);
  EXPECT_EQ(&*two, &*four);
}

TEST(SharedArena, OfALongRowOfDocumentsIsFoundAndFreedWithoutRecursion) {
  std::vector<SharedArena> row(20'000);
  for (std::size_t i = 1; i < row.size(); ++i) {
    row[i].JoinWith(row[i - 1]);
  }
  EXPECT_EQ(&*row.front(), &*row.back());
  std::vector<SharedArena> pairs(20'000);
  row.clear();
  for (std::size_t step = 1; step < pairs.size(); step *= 2) {
    for (std::size_t i = 0; i + step < pairs.size(); i += 2 * step) {
      pairs[i + step].JoinWith(pairs[i]);
    }
  }
  EXPECT_EQ(&*pairs.front(), &*pairs.back());
}

TEST(SharedArena, IsTheOneOfLaterDocumentsWhileItLives) {
  NodeArena* joined = nullptr;
  {
    SharedArena one;
    SharedArena two;
    one.JoinWith(two);
    joined = &*one;
    SharedArena later;
    EXPECT_EQ(&*later, joined);
    EXPECT_TRUE(later.IsShared());
  }
  SharedArena fresh;
  EXPECT_FALSE(fresh.IsShared());
}

}  // namespace
}  // namespace parvex::xml
