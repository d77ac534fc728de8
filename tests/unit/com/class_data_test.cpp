#include "com/class_data.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::com {
namespace {

/// What a host reads.
template <class Property>
std::string Read(const Property& property) {
  return TextOfProperty(property);
}

template <class T>
class PreOrderReq : public testing::Test {};
using LineItems = testing::Types<AccessoryData, WarrantyData>;
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

TEST(BaseUnitData, PreOrderReqIsStoredAsGiven) {
  BaseUnitData unit;
  unit.preorderreq = "Y";
  EXPECT_EQ(unit.preorderreq, "Y");
  unit.preorderreq = "N";
  EXPECT_EQ(unit.preorderreq, "N");
}

TEST(BaseUnitData, FileNameReadsAsEmptyWhateverWasStored) {
  BaseUnitData unit;
  unit.FileName = "C:\\unit.blb";
  EXPECT_EQ(Read(unit.FileName), "");
  EXPECT_EQ(unit.FileName.Field(), "C:\\unit.blb");
}

TEST(BaseUnitData, LoadAnInstanceSetsEachPropertyFromItsParameter) {
  BaseUnitData unit;
  unit.Attribute1 = "kept";
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
}

TEST(AccessoryData, LoadAnInstanceSetsEachPropertyFromItsParameter) {
  AccessoryData accessory;
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

TEST(AccessoryData, LoadAnInstanceLeavesPreOrderReqAndFileName) {
  AccessoryData accessory;
  accessory.preorderreq = "Y";
  accessory.FileName = "unit.blb";
  accessory.LoadAnInstance("p", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "");
  EXPECT_EQ(accessory.preorderreq.Text(), "1");
  EXPECT_EQ(accessory.FileName, "unit.blb");
}

TEST(WarrantyData, LoadAnInstanceSetsAllButPreOrderReq) {
  WarrantyData warranty;
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

TEST(TagData, ANewOneHasEmptyTexts) {
  const TagData tag;
  EXPECT_EQ(tag.PartNumber, "");
  EXPECT_EQ(tag.BuildVersion, "");
  EXPECT_EQ(tag.LegacyTagId, "");
  EXPECT_EQ(tag.TagVersion, "");
}

TEST(BaseUnitData, ANewOneHasEmptyTexts) {
  const BaseUnitData unit;
  EXPECT_EQ(unit.PartNumber, "");
  EXPECT_EQ(unit.SAPXml, "");
}

TEST(ClassData, PropertiesTakeTextsUntrimmedAndUnchecked) {
  WarrantyData warranty;
  warranty.Quantity = "  many \r\n";
  EXPECT_EQ(warranty.Quantity, "  many \r\n");
}

}  // namespace
}  // namespace parvex::com
