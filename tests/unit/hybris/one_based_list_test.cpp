#include "hybris/one_based_list.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::test {
namespace {

TEST(OneBasedList, ANewListHasTheUpperBoundZero) { EXPECT_EQ(OneBasedList<std::string>().Count(), 0u); }

TEST(OneBasedList, ItemsStandAtOneToTheCountInTheOrderOfAppending) {
  OneBasedList<std::string> list;
  list.Append("first");
  list.Append("second");
  ASSERT_EQ(list.Count(), 2u);
  EXPECT_EQ(list.At(1), "first");
  EXPECT_EQ(list.At(2), "second");
}

TEST(OneBasedList, ARangeLoopVisitsTheItemsOnly) {
  OneBasedList<std::string> list;
  list.Append("a");
  list.Append("b");
  std::string visited;
  for (const std::string& item : list) {
    visited += item;
  }
  EXPECT_EQ(visited, "ab");
}

}  // namespace
}  // namespace parvex::test
