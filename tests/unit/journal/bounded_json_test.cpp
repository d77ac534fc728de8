#include "journal/bounded_json.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace parvex::journal {
namespace {

std::string Nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

std::string WithKeys(std::size_t count) {
  std::string text = "{\"k\":0";
  for (std::size_t i = 1; i < count; ++i) {
    text += ",\"k" + std::to_string(i) + "\":0";
  }
  return text + "}";
}

TEST(BoundedJson, IsReadAsItStands) {
  EXPECT_EQ(ParseBounded(R"({"b":[1,{"a":"\"}]:{["}],"a":null})").dump(), R"({"b":[1,{"a":"\"}]:{["}],"a":null})");
  EXPECT_THROW(ParseBounded("{\"a\":"), std::exception);
  EXPECT_THROW(ParseBounded("}"), std::exception);
}

TEST(BoundedJson, MayNestSoDeepAndNoDeeper) {
  EXPECT_NO_THROW(ParseBounded(Nested(kDeepestNesting)));
  EXPECT_THROW(ParseBounded(Nested(kDeepestNesting + 1)), std::invalid_argument);
  EXPECT_THROW(ParseBounded(Nested(1'000'000)), std::invalid_argument);
}

TEST(BoundedJson, MayHaveSoManyKeysInAnObjectAndNoMore) {
  EXPECT_EQ(ParseBounded(WithKeys(kMostKeys)).size(), kMostKeys);
  EXPECT_THROW(ParseBounded(WithKeys(kMostKeys + 1)), std::invalid_argument);
  EXPECT_NO_THROW(ParseBounded("[" + WithKeys(kMostKeys) + "," + WithKeys(kMostKeys) + "]"));
}

TEST(BoundedJson, HoldsNoMoreValuesThanAreLeft) {
  std::size_t values = 7;
  EXPECT_EQ(ParseBounded(R"([0,"a,[{",0])", values).size(), 3u);
  EXPECT_EQ(values, 4u);
  EXPECT_THROW(ParseBounded("[0,0,0,0,0]", values), std::invalid_argument);
  EXPECT_THROW(ParseBounded("[" + std::string(kMostValues, ',') + "]"), std::invalid_argument);
}

}  // namespace
}  // namespace parvex::journal
