#include "hybris/unit_model.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace parvex::test {
namespace {

std::string Read(const std::string& property) { return property; }

template <class T>
class PreOrderReq : public testing::Test {};
using LineItems = testing::Types<AccessoryCls, WarrantyCls>;
TYPED_TEST_SUITE(PreOrderReq, LineItems);

TYPED_TEST(PreOrderReq, YesAndNoReadBackAsOneAndZero) {
  TypeParam item;
  item.preorderreq = "Y";
  EXPECT_EQ(Read(item.preorderreq), "1");
  item.preorderreq = "N";
  EXPECT_EQ(Read(item.preorderreq), "0");
}

TYPED_TEST(PreOrderReq, EveryOtherTextStaysAsItIs) {
  TypeParam item;
  for (const char* text : {"y", "n", "1", "0", "", " Y", "Y ", "YES", "No"}) {
    item.preorderreq = text;
    EXPECT_EQ(Read(item.preorderreq), text);
  }
}

TEST(BaseUnitCls, PreOrderReqIsStoredAsGiven) {
  BaseUnitCls unit;
  unit.preorderreq = "Y";
  EXPECT_EQ(unit.preorderreq, "Y");
  unit.preorderreq = "N";
  EXPECT_EQ(unit.preorderreq, "N");
}

TEST(BaseUnitCls, FileNameReadsAsEmptyWhateverWasStored) {
  BaseUnitCls unit;
  unit.FileName = "C:\\unit.blb";
  EXPECT_EQ(Read(unit.FileName), "");
  EXPECT_EQ(unit.FileName.Field(), "C:\\unit.blb");
}

TEST(BaseUnitCls, LoadAnInstanceSetsEachPropertyFromItsParameter) {
  BaseUnitCls unit;
  unit.Attribute1 = "kept";
  unit.Accessories.Append(std::make_shared<AccessoryCls>());
  unit.LoadAnInstance("pdsg", "desc", "part", "price", "quant", "m1", "m2", "m3", "m4", "bu1", "bu2", "supp", "tos",
                      "ton", "cfm", "fn", "Y", "eto", "etodesc", "sap");
  EXPECT_EQ(unit.PDSG, "pdsg");
  EXPECT_EQ(unit.Description, "desc");
  EXPECT_EQ(unit.PartNumber, "part");
  EXPECT_EQ(unit.MasterPrice, "price");
  EXPECT_EQ(unit.Quantity, "quant");
  EXPECT_EQ(unit.MarkFor, "m1");
  EXPECT_EQ(unit.MarkFor2, "m2");
  EXPECT_EQ(unit.MarkFor3, "m3");
  EXPECT_EQ(unit.MarkFor4, "m4");
  EXPECT_EQ(unit.BaseUnit1, "bu1");
  EXPECT_EQ(unit.BaseUnit2, "bu2");
  EXPECT_EQ(unit.Supplier, "supp");
  EXPECT_EQ(unit.TypeOfSale, "tos");
  EXPECT_EQ(unit.Ton, "ton");
  EXPECT_EQ(unit.CFM, "cfm");
  EXPECT_EQ(Read(unit.FileName), "");
  EXPECT_EQ(unit.FileName.Field(), "fn");
  EXPECT_EQ(unit.preorderreq, "Y");
  EXPECT_EQ(unit.ETO, "eto");
  EXPECT_EQ(unit.ETODescription, "etodesc");
  EXPECT_EQ(unit.SAPXml, "sap");
  EXPECT_EQ(unit.Attribute1, "kept");
  EXPECT_EQ(unit.Accessories.Count(), 1u);
}

TEST(AccessoryCls, LoadAnInstanceSetsEachPropertyFromItsParameter) {
  AccessoryCls accessory;
  accessory.LoadAnInstance("part", "desc", "price", "quant", "tos", "m1", "m2", "m3", "m4", "supp", "a1", "a2", "a3",
                           "a4", "a5", "bu1", "bu2");
  EXPECT_EQ(accessory.PartNumber, "part");
  EXPECT_EQ(accessory.Description, "desc");
  EXPECT_EQ(accessory.MasterPrice, "price");
  EXPECT_EQ(accessory.Quantity, "quant");
  EXPECT_EQ(accessory.TypeOfSale, "tos");
  EXPECT_EQ(accessory.MarkFor, "m1");
  EXPECT_EQ(accessory.MarkFor2, "m2");
  EXPECT_EQ(accessory.MarkFor3, "m3");
  EXPECT_EQ(accessory.MarkFor4, "m4");
  EXPECT_EQ(accessory.Supplier, "supp");
  EXPECT_EQ(accessory.Attribute1, "a1");
  EXPECT_EQ(accessory.Attribute2, "a2");
  EXPECT_EQ(accessory.Attribute3, "a3");
  EXPECT_EQ(accessory.Attribute4, "a4");
  EXPECT_EQ(accessory.Attribute5, "a5");
  EXPECT_EQ(accessory.BaseUnit1, "bu1");
  EXPECT_EQ(accessory.BaseUnit2, "bu2");
}

TEST(AccessoryCls, LoadAnInstanceLeavesPreOrderReqAndFileName) {
  AccessoryCls accessory;
  accessory.preorderreq = "Y";
  accessory.FileName = "unit.blb";
  accessory.LoadAnInstance("p", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "");
  EXPECT_EQ(accessory.preorderreq.Text(), "1");
  EXPECT_EQ(accessory.FileName, "unit.blb");
}

TEST(WarrantyCls, LoadAnInstanceSetsAllButPreOrderReq) {
  WarrantyCls warranty;
  warranty.preorderreq = "N";
  warranty.LoadAnInstance("name", "quant", "desc", "price", "mark", "bu1", "bu2");
  EXPECT_EQ(warranty.Name, "name");
  EXPECT_EQ(warranty.Quantity, "quant");
  EXPECT_EQ(warranty.Description, "desc");
  EXPECT_EQ(warranty.MasterPrice, "price");
  EXPECT_EQ(warranty.MarkFor, "mark");
  EXPECT_EQ(warranty.BaseUnit1, "bu1");
  EXPECT_EQ(warranty.BaseUnit2, "bu2");
  EXPECT_EQ(warranty.preorderreq.Text(), "0");
}

TEST(BaseUnitCls, ANewOneHasEmptyListsAndEmptyTexts) {
  const BaseUnitCls unit;
  EXPECT_EQ(unit.Accessories.Count(), 0u);
  EXPECT_EQ(unit.Warranties.Count(), 0u);
  EXPECT_EQ(unit.PartNumber, "");
  EXPECT_EQ(unit.SAPXml, "");
}

TEST(BaseUnitCls, ChangingTheListThatWasSetLeavesTheStoredOneButSharesItsItems) {
  Accessories given;
  given.Append(std::make_shared<AccessoryCls>());
  BaseUnitCls unit;
  unit.Accessories = given;
  given.Append(std::make_shared<AccessoryCls>());
  given.At(1)->PartNumber = "seen through both lists";
  ASSERT_EQ(unit.Accessories.Count(), 1u);
  EXPECT_EQ(unit.Accessories.At(1)->PartNumber, "seen through both lists");
}

TEST(UnitModel, PropertiesTakeTextsUntrimmedAndUnchecked) {
  WarrantyCls warranty;
  warranty.Quantity = "  many \r\n";
  EXPECT_EQ(warranty.Quantity, "  many \r\n");
}

}  // namespace
}  // namespace parvex::test
