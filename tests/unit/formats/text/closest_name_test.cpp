#include "formats/text/closest_name.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace parvex {
namespace {

TEST(EditDistance, CountsWhatIsPutInTakenOutReplacedOrSwapped) {
  EXPECT_EQ(EditDistance("", ""), 0u);
  EXPECT_EQ(EditDistance("", "abc"), 3u);
  EXPECT_EQ(EditDistance("export", "export"), 0u);
  EXPECT_EQ(EditDistance("expot", "export"), 1u);
  EXPECT_EQ(EditDistance("exxport", "export"), 1u);
  EXPECT_EQ(EditDistance("expart", "export"), 1u);
  EXPECT_EQ(EditDistance("exprot", "export"), 1u) << "neighbours";
  EXPECT_EQ(EditDistance("EXPORT", "export"), 0u) << "letter case";
  EXPECT_EQ(EditDistance("kitten", "sitting"), 3u);
}

TEST(ClosestName, IsTheNearestAndTheFirstOfTwoAsNear) {
  const std::vector<std::string_view> names = {"getTags", "getTagList", "getReport", "getReports"};
  EXPECT_EQ(ClosestName("getTag", names), "getTags");
  EXPECT_EQ(ClosestName("gettaglist", names), "getTagList");
  EXPECT_EQ(ClosestName("getReportz", names), "getReport");
  EXPECT_EQ(ClosestName("getReportss", names), "getReports");
}

TEST(ClosestName, IsNoneWhenMoreThanAThirdIsWrong) {
  const std::vector<std::string_view> names = {"abcdef"};
  EXPECT_EQ(ClosestName("abcdxx", names), "abcdef");
  EXPECT_EQ(ClosestName("abcxxx", names), "");
  EXPECT_EQ(ClosestName("", names), "");
  EXPECT_EQ(ClosestName(std::string(200, 'a'), names), "");
}

}  // namespace
}  // namespace parvex
