#include "hybris/unit_model.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace parvex::test {
namespace {

template <class T>
class PreOrder : public testing::Test {};
using LineItems = testing::Types<Accessory, Warranty>;
TYPED_TEST_SUITE(PreOrder, LineItems);

TYPED_TEST(PreOrder, YesAndNoReadBackAsOneAndZero) {
  TypeParam item;
  item.preOrder = "Y";
  EXPECT_EQ(item.preOrder.Text(), "1");
  item.preOrder = "N";
  EXPECT_EQ(item.preOrder.Text(), "0");
}

TYPED_TEST(PreOrder, EveryOtherTextStaysAsItIs) {
  TypeParam item;
  for (const char* text : {"y", "n", "1", "0", "", " Y", "Y ", "YES", "No"}) {
    item.preOrder = text;
    EXPECT_EQ(item.preOrder.Text(), text);
  }
}

TEST(BaseUnit, PreOrderIsStoredAsGiven) {
  BaseUnit unit;
  unit.preOrder = "Y";
  EXPECT_EQ(unit.preOrder, "Y");
  unit.preOrder = "N";
  EXPECT_EQ(unit.preOrder, "N");
}

TEST(BaseUnit, ANewOneHasEmptyListsAndEmptyTexts) {
  const BaseUnit unit;
  EXPECT_EQ(unit.accessories.Count(), 0u);
  EXPECT_EQ(unit.warranties.Count(), 0u);
  EXPECT_EQ(unit.partNumber, "");
  EXPECT_EQ(unit.sapXml, "");
}

TEST(BaseUnit, ChangingTheListThatWasSetLeavesTheStoredOneButSharesItsItems) {
  Accessories given;
  given.Append(std::make_shared<Accessory>());
  BaseUnit unit;
  unit.accessories = given;
  given.Append(std::make_shared<Accessory>());
  given.At(1)->partNumber = "seen through both lists";
  ASSERT_EQ(unit.accessories.Count(), 1u);
  EXPECT_EQ(unit.accessories.At(1)->partNumber, "seen through both lists");
}

}  // namespace
}  // namespace parvex::test
