#include "formats/json/bounded_json.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace parvex {
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
  EXPECT_EQ(ParseBoundedJson(R"({"b":[1,{"a":"\"}]:{["}],"a":null})").dump(), R"({"b":[1,{"a":"\"}]:{["}],"a":null})");
  EXPECT_THROW(ParseBoundedJson("{\"a\":"), std::exception);
  EXPECT_THROW(ParseBoundedJson("}"), std::exception);
}

TEST(BoundedJson, MayNestSoDeepAndNoDeeper) {
  EXPECT_NO_THROW(ParseBoundedJson(Nested(kDeepestJson)));
  EXPECT_THROW(ParseBoundedJson(Nested(kDeepestJson + 1)), std::invalid_argument);
  EXPECT_THROW(ParseBoundedJson(Nested(1'000'000)), std::invalid_argument);
}

TEST(BoundedJson, MayHaveSoManyKeysInAnObjectAndNoMore) {
  EXPECT_EQ(ParseBoundedJson(WithKeys(kMostJsonKeys)).size(), kMostJsonKeys);
  EXPECT_THROW(ParseBoundedJson(WithKeys(kMostJsonKeys + 1)), std::invalid_argument);
  EXPECT_NO_THROW(ParseBoundedJson("[" + WithKeys(kMostJsonKeys) + "," + WithKeys(kMostJsonKeys) + "]"));
}

TEST(BoundedJson, HoldsNoMoreValuesThanAreLeft) {
  std::size_t values = 7;
  EXPECT_EQ(ParseBoundedJson(R"([0,"a,[{",0])", values).size(), 3u);
  EXPECT_EQ(values, 4u);
  EXPECT_THROW(ParseBoundedJson("[0,0,0,0,0]", values), std::invalid_argument);
  EXPECT_THROW(ParseBoundedJson("[" + std::string(kMostJsonValues, ',') + "]"), std::invalid_argument);
}

}  // namespace
}  // namespace parvex
