#include "hybris/selected_tag.h"

#include <gtest/gtest.h>

#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

TEST(SelectedTagOf, HandsOutTheSectionsOfItsNumber) {
  ExportMachine machine;
  machine.Select("[Accessory1]\r\nPartNumber:1=of the first\r\n[Accessory12]\r\nPartNumber:1=of the twelfth\r\n");
  const SelectedTag tag(machine.platform, ExportMachine::kOutput, 12);
  EXPECT_EQ(tag.Section("Accessory").Numbered("PartNumber:", 1), "of the twelfth");
  EXPECT_EQ(tag.Section("Warranty").Text("PartNumber:1"), "");
}

TEST(SelectedTagOf, ASectionIsReadAsTheFileIsWhenItIsAskedFor) {
  ExportMachine machine;
  const SelectedTag tag(machine.platform, ExportMachine::kOutput, 1);
  machine.Select("[PartNumber1]\r\nTon=5\r\n");
  EXPECT_EQ(tag.Section("PartNumber").Text("Ton"), "5");
}

TEST(SelectedTagOf, TheFamilyIsTheFirstThreeCharactersOfThePdsg) {
  ExportMachine machine;
  SelectedTag tag(machine.platform, ExportMachine::kOutput, 1);
  for (const auto& [pdsg, family] : {std::pair("38A47", "38A"), {"38A", "38A"}, {"ÄÖÜß", "ÄÖÜ"}}) {
    tag.pdsg = pdsg;
    EXPECT_EQ(tag.FamilyCode(), family);
  }
}

TEST(SelectedTagOf, APdsgTooShortToTellIsOfTheFamilyXXX) {
  ExportMachine machine;
  SelectedTag tag(machine.platform, ExportMachine::kOutput, 1);
  for (const char* pdsg : {"", "38", "ÄÖ"}) {
    tag.pdsg = pdsg;
    EXPECT_EQ(tag.FamilyCode(), "XXX") << pdsg;
  }
}

}  // namespace
}  // namespace parvex::test
