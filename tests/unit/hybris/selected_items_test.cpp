#include "hybris/selected_items.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

class SelectedItems : public testing::Test {
 protected:
  ExportMachine export_;

  std::vector<SelectedTag> ReadTags() { return ReadSelectedTags(export_.platform, ExportMachine::kOutput); }
  SelectedTag Tag(std::int32_t number) { return SelectedTag(export_.platform, ExportMachine::kOutput, number); }
  std::string EtoOf(std::int32_t tag) { return BuildEtoDescription(Tag(tag)); }
  Accessories AccessoriesOf(std::int32_t tag) { return ReadAccessories(Tag(tag)); }
  Warranties WarrantiesOf(std::int32_t tag) { return ReadWarranties(Tag(tag)); }
};

TEST_F(SelectedItems, ATagHasItsFourTexts) {
  export_.Select("[PartNumber1]\r\nPartNumber=38AU\r\nPDSG=38A47\r\nMarkFor=RTU-1\r\nFileName=C:\\T\\1.blb\r\n");
  const std::vector<SelectedTag> tags = ReadTags();
  ASSERT_EQ(tags.size(), 1u);
  EXPECT_EQ(tags.at(0).partNumber, "38AU");
  EXPECT_EQ(tags.at(0).pdsg, "38A47");
  EXPECT_EQ(tags.at(0).markFor, "RTU-1");
  EXPECT_EQ(tags.at(0).blobFileName, "C:\\T\\1.blb");
}

TEST_F(SelectedItems, ATagNeedsOnlyItsPartNumber) {
  export_.Select("[PartNumber1]\r\nPartNumber=38AU\r\n");
  ASSERT_EQ(ReadTags().size(), 1u);
  EXPECT_EQ(ReadTags().at(0).pdsg, "");
}

TEST_F(SelectedItems, TagsBehindAGapAreNeverRead) {
  export_.Select("[PartNumber1]\r\nPartNumber=A\r\n[PartNumber2]\r\nPartNumber=B\r\n[PartNumber4]\r\nPartNumber=D\r\n");
  const std::vector<SelectedTag> tags = ReadTags();
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags.at(1).partNumber, "B");
}

TEST_F(SelectedItems, AnEmptyFirstPartNumberMeansNoTags) {
  export_.Select("[PartNumber1]\r\nPartNumber=\r\n[PartNumber2]\r\nPartNumber=B\r\n");
  EXPECT_EQ(ReadTags().size(), 0u);
}

TEST_F(SelectedItems, NoFileOrAnEmptyOneMeansNoTags) {
  EXPECT_EQ(ReadTags().size(), 0u);
  export_.Select("");
  EXPECT_EQ(ReadTags().size(), 0u);
}

TEST_F(SelectedItems, TheTenthTagIsReadFromItsOwnSection) {
  std::string text;
  for (int i = 1; i <= 11; ++i) {
    text += "[PartNumber" + std::to_string(i) + "]\r\nPartNumber=P" + std::to_string(i) + "\r\n";
  }
  export_.Select(text);
  const std::vector<SelectedTag> tags = ReadTags();
  ASSERT_EQ(tags.size(), 11u);
  EXPECT_EQ(tags.at(9).partNumber, "P10");
  EXPECT_EQ(tags.at(10).partNumber, "P11");
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
  const Accessory& accessory = *accessories.At(1);
  EXPECT_EQ(accessory.partNumber, "AC1");
  EXPECT_EQ(accessory.description, "desc");
  EXPECT_EQ(accessory.masterPrice, "10.5");
  EXPECT_EQ(accessory.quantity, "2");
  EXPECT_EQ(accessory.typeOfSale, "21");
  EXPECT_EQ(accessory.markFor[0], "m1");
  EXPECT_EQ(accessory.markFor[1], "m2");
  EXPECT_EQ(accessory.markFor[2], "m3");
  EXPECT_EQ(accessory.markFor[3], "m4");
  EXPECT_EQ(accessory.supplier, "QZN");
  EXPECT_EQ(accessory.attributes[0], "a1");
  EXPECT_EQ(accessory.attributes[1], "a2");
  EXPECT_EQ(accessory.attributes[2], "a3");
  EXPECT_EQ(accessory.attributes[3], "a4");
  EXPECT_EQ(accessory.attributes[4], "a5");
  EXPECT_EQ(accessory.baseUnit1, "BU2");
  EXPECT_EQ(accessory.baseUnit2, "ABCD2");
  EXPECT_EQ(accessory.fileName, "x.blb");
  EXPECT_EQ(accessory.preOrder.Text(), "1");
}

TEST_F(SelectedItems, AccessoriesStandAtOneToTheCount) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\nPartNumber:2=B\r\nPartNumber:4=never read\r\n");
  const Accessories accessories = AccessoriesOf(1);
  ASSERT_EQ(accessories.Count(), 2u);
  EXPECT_EQ(accessories.At(1)->partNumber, "A");
  EXPECT_EQ(accessories.At(2)->partNumber, "B");
}

TEST_F(SelectedItems, AnAccessoryWithoutSupplierGetsTheBrandOfItsTypeOfSale) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\nSupplier:1=\r\nTypeOfSale:1=2X\r\n");
  EXPECT_EQ(AccessoriesOf(1).At(1)->supplier, "Tessel");
}

TEST_F(SelectedItems, AnAccessorysPreOrderKeyHasAColon) {
  export_.Select("[Accessory1]\r\nPartNumber:1=A\r\npreorderreq1=Y\r\n");
  EXPECT_EQ(AccessoriesOf(1).At(1)->preOrder.Text(), "");
}

TEST_F(SelectedItems, AWarrantyTakesEveryPropertyFromItsKey) {
  export_.Select(
      "[Warranty2]\r\nName:1=W1\r\nQuantity:1=3\r\nDescription:1=five years\r\nMasterPrice:1=99\r\nMarkFor:1=m\r\n"
      "BaseUnit1:1=BU1\r\nBaseUnit2:1=ABCD\r\npreorderreq:1=Y\r\nName:2=W2\r\npreorderreq:2=n\r\n");
  const Warranties warranties = WarrantiesOf(2);
  ASSERT_EQ(warranties.Count(), 2u);
  const Warranty& warranty = *warranties.At(1);
  EXPECT_EQ(warranty.name, "W1");
  EXPECT_EQ(warranty.quantity, "3");
  EXPECT_EQ(warranty.description, "five years");
  EXPECT_EQ(warranty.masterPrice, "99");
  EXPECT_EQ(warranty.markFor, "m");
  EXPECT_EQ(warranty.baseUnit1, "BU1");
  EXPECT_EQ(warranty.baseUnit2, "ABCD");
  EXPECT_EQ(warranty.preOrder.Text(), "1");
  EXPECT_EQ(warranties.At(2)->preOrder.Text(), "n");
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
