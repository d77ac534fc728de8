#include "hybris/selected_items.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

class SelectedItems : public testing::Test {
 protected:
  ExportMachine export_;

  Tags ReadTags() { return ReadSelectedTags(export_.platform, ExportMachine::kOutput); }
  std::string EtoOf(std::int32_t tag) { return BuildEtoDescription(export_.platform, ExportMachine::kOutput, tag); }
  Accessories AccessoriesOf(std::int32_t tag) { return ReadAccessories(export_.platform, ExportMachine::kOutput, tag); }
  Warranties WarrantiesOf(std::int32_t tag) { return ReadWarranties(export_.platform, ExportMachine::kOutput, tag); }
};

TEST_F(SelectedItems, ATagHasItsFourTexts) {
  export_.Select("[PartNumber1]\r\nPartNumber=38AU\r\nPDSG=38A47\r\nMarkFor=RTU-1\r\nFileName=C:\\T\\1.blb\r\n");
  const Tags tags = ReadTags();
  ASSERT_EQ(tags.Count(), 1u);
  EXPECT_EQ(tags.At(1)->PartNumber, "38AU");
  EXPECT_EQ(tags.At(1)->PDSG, "38A47");
  EXPECT_EQ(tags.At(1)->MarkFor, "RTU-1");
  EXPECT_EQ(tags.At(1)->BlobFileName, "C:\\T\\1.blb");
  EXPECT_EQ(tags.At(1)->BuildVersion, "");
  EXPECT_EQ(tags.At(1)->LegacyTagId, "");
  EXPECT_EQ(tags.At(1)->TagVersion, "");
}

TEST_F(SelectedItems, ATagNeedsOnlyItsPartNumber) {
  export_.Select("[PartNumber1]\r\nPartNumber=38AU\r\n");
  ASSERT_EQ(ReadTags().Count(), 1u);
  EXPECT_EQ(ReadTags().At(1)->PDSG, "");
}

TEST_F(SelectedItems, TagsBehindAGapAreNeverRead) {
  export_.Select("[PartNumber1]\r\nPartNumber=A\r\n[PartNumber2]\r\nPartNumber=B\r\n[PartNumber4]\r\nPartNumber=D\r\n");
  const Tags tags = ReadTags();
  ASSERT_EQ(tags.Count(), 2u);
  EXPECT_EQ(tags.At(2)->PartNumber, "B");
}

TEST_F(SelectedItems, AnEmptyFirstPartNumberMeansNoTags) {
  export_.Select("[PartNumber1]\r\nPartNumber=\r\n[PartNumber2]\r\nPartNumber=B\r\n");
  EXPECT_EQ(ReadTags().Count(), 0u);
}

TEST_F(SelectedItems, NoFileOrAnEmptyOneMeansNoTags) {
  EXPECT_EQ(ReadTags().Count(), 0u);
  export_.Select("");
  EXPECT_EQ(ReadTags().Count(), 0u);
}

TEST_F(SelectedItems, TheTenthTagIsReadFromItsOwnSection) {
  std::string text;
  for (int i = 1; i <= 11; ++i) {
    text += "[PartNumber" + std::to_string(i) + "]\r\nPartNumber=P" + std::to_string(i) + "\r\n";
  }
  export_.Select(text);
  const Tags tags = ReadTags();
  ASSERT_EQ(tags.Count(), 11u);
  EXPECT_EQ(tags.At(10)->PartNumber, "P10");
  EXPECT_EQ(tags.At(11)->PartNumber, "P11");
}

TEST_F(SelectedItems, EtoLinesAreJoinedWithCrLfBetweenTwo) {
  export_.Select("[ETO Description1]\r\nDescription:1=first\r\nDescription:2=second\r\n");
  EXPECT_EQ(EtoOf(1), "first\r\nsecond");
}

TEST_F(SelectedItems, OneEtoLineHasNoLineBreakAndNoneIsEmpty) {
  export_.Select("[ETO Description1]\r\nDescription:1=only\r\n[ETO Description2]\r\nDescription:2=late\r\n");
  EXPECT_EQ(EtoOf(1), "only");
  EXPECT_EQ(EtoOf(2), "");
  EXPECT_EQ(EtoOf(3), "");
}

TEST_F(SelectedItems, AnAccessoryTakesEveryPropertyFromItsKey) {
  export_.Select(
      "[Accessory1]\r\nPartNumber:1=AC1\r\nDescription:1=desc\r\nMasterPrice:1=10.5\r\nQuantity:1=2\r\n"
      "TypeOfSale:1=21\r\nMarkFor:1=m1\r\nMarkFor2:1=m2\r\nMarkFor3:1=m3\r\nMarkFor4:1=m4\r\nSupplier:1=qzn\r\n"
      "Attribute1:1=a1\r\nAttribute2:1=a2\r\nAttribute3:1=a3\r\nAttribute4:1=a4\r\nAttribute5:1=a5\r\n"
      "BaseUnit1:1=BU2\r\nBaseUnit2:1=ABCD2\r\nFileName:1=x.blb\r\npreorderreq:1=Y\r\n");
  const Accessories accessories = AccessoriesOf(1);
  ASSERT_EQ(accessories.Count(), 1u);
  const AccessoryCls& accessory = *accessories.At(1);
  EXPECT_EQ(accessory.PartNumber, "AC1");
  EXPECT_EQ(accessory.Description, "desc");
  EXPECT_EQ(accessory.MasterPrice, "10.5");
  EXPECT_EQ(accessory.Quantity, "2");
  EXPECT_EQ(accessory.TypeOfSale, "21");
  EXPECT_EQ(accessory.MarkFor, "m1");
  EXPECT_EQ(accessory.MarkFor2, "m2");
  EXPECT_EQ(accessory.MarkFor3, "m3");
  EXPECT_EQ(accessory.MarkFor4, "m4");
  EXPECT_EQ(accessory.Supplier, "QZN");
  EXPECT_EQ(accessory.Attribute1, "a1");
  EXPECT_EQ(accessory.Attribute2, "a2");
  EXPECT_EQ(accessory.Attribute3, "a3");
  EXPECT_EQ(accessory.Attribute4, "a4");
  EXPECT_EQ(accessory.Attribute5, "a5");
  EXPECT_EQ(accessory.BaseUnit1, "BU2");
  EXPECT_EQ(accessory.BaseUnit2, "ABCD2");
  EXPECT_EQ(accessory.FileName, "x.blb");
  EXPECT_EQ(accessory.preorderreq.Text(), "1");
}

TEST_F(SelectedItems, AccessoriesStandAtOneToTheCount) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\nPartNumber:2=B\r\nPartNumber:4=never read\r\n");
  const Accessories accessories = AccessoriesOf(1);
  ASSERT_EQ(accessories.Count(), 2u);
  EXPECT_EQ(accessories.At(1)->PartNumber, "A");
  EXPECT_EQ(accessories.At(2)->PartNumber, "B");
}

TEST_F(SelectedItems, AnAccessoryWithoutSupplierGetsTheBrandOfItsTypeOfSale) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\nSupplier:1=\r\nTypeOfSale:1=2X\r\n");
  EXPECT_EQ(AccessoriesOf(1).At(1)->Supplier, "Tessel");
}

TEST_F(SelectedItems, AnAccessorysPreOrderKeyHasAColon) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\npreorderreq1=Y\r\n");
  EXPECT_EQ(AccessoriesOf(1).At(1)->preorderreq.Text(), "");
}

TEST_F(SelectedItems, AWarrantyTakesEveryPropertyFromItsKey) {
  export_.Select(
      "[Warranty2]\r\nName:1=W1\r\nQuantity:1=3\r\nDescription:1=five years\r\nMasterPrice:1=99\r\nMarkFor:1=m\r\n"
      "BaseUnit1:1=BU1\r\nBaseUnit2:1=ABCD\r\npreorderreq:1=Y\r\nName:2=W2\r\npreorderreq:2=n\r\n");
  const Warranties warranties = WarrantiesOf(2);
  ASSERT_EQ(warranties.Count(), 2u);
  const WarrantyCls& warranty = *warranties.At(1);
  EXPECT_EQ(warranty.Name, "W1");
  EXPECT_EQ(warranty.Quantity, "3");
  EXPECT_EQ(warranty.Description, "five years");
  EXPECT_EQ(warranty.MasterPrice, "99");
  EXPECT_EQ(warranty.MarkFor, "m");
  EXPECT_EQ(warranty.BaseUnit1, "BU1");
  EXPECT_EQ(warranty.BaseUnit2, "ABCD");
  EXPECT_EQ(warranty.preorderreq.Text(), "1");
  EXPECT_EQ(warranties.At(2)->preorderreq.Text(), "n");
}

TEST_F(SelectedItems, AMissingSectionGivesAListWithUpperBoundZero) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\n");
  EXPECT_EQ(WarrantiesOf(1).Count(), 0u);
  EXPECT_EQ(AccessoriesOf(2).Count(), 0u);
}

std::string AccessorySection(int count) {
  std::string text = "[Accessory1]\r\n";
  for (int i = 1; i <= count; ++i) {
    text += "PartNumber:" + std::to_string(i) + "=A\r\n";
  }
  return text;
}

TEST_F(SelectedItems, AccessoriesCostTheSameEachHoweverManyThereAre) {
  const auto readsFor = [&](int count) {
    export_.Select(AccessorySection(count));
    export_.profile.read = 0;
    AccessoriesOf(1);
    return export_.profile.read;
  };
  const int none = readsFor(0);
  const int perAccessory = readsFor(1) - none;
  EXPECT_EQ(none, 1);
  EXPECT_EQ(perAccessory, 19);
  EXPECT_EQ(readsFor(1000), none + 1000 * perAccessory);
}

TEST_F(SelectedItems, MoreThan32767AccessoriesAreAnOverflow) {
  export_.Select(AccessorySection(32767));
  EXPECT_EQ(AccessoriesOf(1).Count(), 32767u);
  export_.Select(AccessorySection(32768));
  EXPECT_EQ(RaisedBy([&] { AccessoriesOf(1); }), RuntimeError::Overflow);
}

}  // namespace
}  // namespace parvex::test
