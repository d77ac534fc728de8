#include "cli/quote/changed_runs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace parvex::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Letters = std::vector<char>;

Letters ListOf(const std::string& text) { return {text.begin(), text.end()}; }

std::vector<ChangedRun> RunsOf(const std::string& before, const std::string& after) {
  return ChangedRuns(ListOf(before), ListOf(after), before.size() + after.size()).value();
}

TEST(ChangedRuns, AreTheFewestThatMakeOneListOfTheOther) {
  EXPECT_THAT(RunsOf("", ""), IsEmpty());
  EXPECT_THAT(RunsOf("abc", "abc"), IsEmpty());
  EXPECT_THAT(RunsOf("", "ab"), ElementsAre(ChangedRun{0, 0, 0, 2}));
  EXPECT_THAT(RunsOf("ab", ""), ElementsAre(ChangedRun{0, 2, 0, 0}));
  EXPECT_THAT(RunsOf("abc", "axc"), ElementsAre(ChangedRun{1, 2, 1, 2}));
  EXPECT_THAT(RunsOf("abcd", "bcd"), ElementsAre(ChangedRun{0, 1, 0, 0}));
  EXPECT_THAT(RunsOf("abcd", "abcde"), ElementsAre(ChangedRun{4, 4, 4, 5}));
  EXPECT_THAT(RunsOf("abcdef", "xbcdyf"), ElementsAre(ChangedRun{0, 1, 0, 1}, ChangedRun{4, 5, 4, 5}));
}

TEST(ChangedRuns, AreNoneWhenThereAreTooMany) {
  EXPECT_EQ(ChangedRuns(ListOf("aaa"), ListOf("bbb"), 5), std::nullopt);
  EXPECT_TRUE(ChangedRuns(ListOf("aaa"), ListOf("bbb"), 6));
}

// How many items the longest list has that is a part of both.
std::size_t LongestCommon(const Letters& one, const Letters& other) {
  std::vector<std::vector<std::size_t>> longest(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
  for (std::size_t i = one.size(); i-- > 0;) {
    for (std::size_t j = other.size(); j-- > 0;) {
      longest[i][j] = one[i] == other[j] ? longest[i + 1][j + 1] + 1 : std::max(longest[i + 1][j], longest[i][j + 1]);
    }
  }
  return longest[0][0];
}

TEST(ChangedRuns, OfAnyListsMakeOneOfTheOtherAndAreNeverMoreThanNeeded) {
  std::mt19937 random(17);
  const auto anyList = [&random] {
    Letters list(random() % 12);
    std::ranges::generate(list, [&random] { return static_cast<char>('a' + random() % 3); });
    return list;
  };
  for (int round = 0; round < 2000; ++round) {
    const Letters before = anyList();
    const Letters after = anyList();
    const std::size_t needed = before.size() + after.size() - 2 * LongestCommon(before, after);
    const auto runs = ChangedRuns(before, after, needed);
    ASSERT_TRUE(runs);
    Letters made;
    std::size_t at = 0;
    std::size_t changes = 0;
    for (const ChangedRun& run : *runs) {
      made.insert(made.end(), before.begin() + static_cast<long>(at),
                  before.begin() + static_cast<long>(run.beforeBegin));
      made.insert(made.end(), after.begin() + static_cast<long>(run.afterBegin),
                  after.begin() + static_cast<long>(run.afterEnd));
      at = run.beforeEnd;
      changes += run.beforeEnd - run.beforeBegin + run.afterEnd - run.afterBegin;
    }
    made.insert(made.end(), before.begin() + static_cast<long>(at), before.end());
    EXPECT_EQ(made, after);
    EXPECT_EQ(changes, needed);
    EXPECT_TRUE(needed == 0 || !ChangedRuns(before, after, needed - 1));
  }
}

}  // namespace
}  // namespace parvex::cli
