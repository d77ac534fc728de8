#include "hybris/base_units.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<Accessory> NewAccessory(const std::string& part, const std::string& baseUnit1 = "",
                                        const std::string& baseUnit2 = "", const std::string& file = "") {
  auto accessory = std::make_shared<Accessory>();
  accessory->partNumber = part;
  accessory->baseUnit1 = baseUnit1;
  accessory->baseUnit2 = baseUnit2;
  accessory->fileName = file;
  return accessory;
}

std::shared_ptr<Warranty> NewWarranty(const std::string& name, const std::string& baseUnit2) {
  auto warranty = std::make_shared<Warranty>();
  warranty->name = name;
  warranty->baseUnit2 = baseUnit2;
  return warranty;
}

template <class List>
List ListOf(std::initializer_list<typename std::decay_t<decltype(std::declval<List>().At(1))>> items) {
  List list;
  for (const auto& item : items) {
    list.Append(item);
  }
  return list;
}

Accessories AccessoriesOf(std::initializer_list<std::shared_ptr<Accessory>> items) {
  return ListOf<Accessories>(items);
}
Warranties WarrantiesOf(std::initializer_list<std::shared_ptr<Warranty>> items) { return ListOf<Warranties>(items); }

/// Base units whose BaseUnit1 are these.
BaseUnits Units(std::initializer_list<const char*> baseUnit1s) {
  BaseUnits units;
  for (const char* baseUnit1 : baseUnit1s) {
    auto unit = std::make_shared<BaseUnit>();
    unit->baseUnit1 = baseUnit1;
    units.Append(unit);
  }
  return units;
}

std::vector<std::string> PartNumbers(const Accessories& accessories) {
  std::vector<std::string> parts;
  for (const auto& accessory : accessories) {
    parts.push_back(accessory->partNumber);
  }
  return parts;
}

std::vector<std::string> Names(const Warranties& warranties) {
  std::vector<std::string> names;
  for (const auto& warranty : warranties) {
    names.push_back(warranty->name);
  }
  return names;
}

class BuiltBaseUnits : public testing::Test {
 protected:
  ExportMachine export_;

  BaseUnits Build(const Accessories& accessories) {
    auto first = std::make_shared<BaseUnit>();
    first->partNumber = "first";
    return BuildBaseUnits(export_.platform, first, accessories);
  }

  std::vector<std::string> PartsBuiltFrom(const Accessories& accessories) {
    std::vector<std::string> parts;
    for (const auto& unit : Build(accessories)) {
      parts.push_back(unit->partNumber);
    }
    return parts;
  }
};

TEST_F(BuiltBaseUnits, WithoutAccessoriesThereIsTheFirstAlone) {
  EXPECT_THAT(PartsBuiltFrom(AccessoriesOf({})), ElementsAre("first"));
}

TEST_F(BuiltBaseUnits, ABaseUnit1NumberAboveOneMakesABaseUnit) {
  const struct {
    const char* baseUnit1;
    bool makesOne;
    const char* reason;
  } cases[] = {
      {"BU2", true, "the usual mark"},
      {"BU1", false, "exactly 1 does not count"},
      {"BU1.5", true, "the number is not rounded"},
      {"BU1.0000001", true, "anything above 1 counts"},
      {"BU0", false, "too small"},
      {"BU-2", false, "negative"},
      {"BU12", true, "two digits"},
      {"xx3", true, "the two letters do not matter"},
      {"223", true, "digits among them neither: 3 is left"},
      {"221", false, "1 is left"},
      {"BU", false, "two characters are too short"},
      {"9", false, "one too"},
      {"BUx2", false, "a number must lead"},
      {"BU 2", true, "blanks count nowhere"},
      {"BU2x", true, "what follows the number does not matter"},
      {"\xC3\x9C"
       "b2",
       true, "characters are counted, not bytes"},
      {"\xC3\x9C"
       "2",
       false, "two characters in three bytes are too short"},
      {" ", false, "a blank is not empty, nor a number"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Build(AccessoriesOf({NewAccessory("a", c.baseUnit1)})).Count(), c.makesOne ? 2u : 1u)
        << c.baseUnit1 << ": " << c.reason;
  }
}

TEST_F(BuiltBaseUnits, AnAccessoryWithAFileOfItsOwnMakesABaseUnitAndIsMarked) {
  const Accessories accessories = AccessoriesOf({NewAccessory("a", "", "ABCD7", "C:\\none.blb")});
  const BaseUnits units = Build(accessories);
  ASSERT_EQ(units.Count(), 2u);
  EXPECT_EQ(units.At(2)->partNumber, "a");
  EXPECT_EQ(units.At(2)->baseUnit1, "");
  EXPECT_EQ(units.At(2)->baseUnit2, "ABCD7");
  EXPECT_EQ(accessories.At(1)->baseUnit1, "XX1");
  EXPECT_EQ(SelectLooseAccessories(accessories).Count(), 0u);
}

TEST_F(BuiltBaseUnits, AFileDoesNotMatterBesideABaseUnit1) {
  const Accessories accessories =
      AccessoriesOf({NewAccessory("a", "BU1", "", "x.blb"), NewAccessory("b", " ", "", "x.blb")});
  EXPECT_EQ(Build(accessories).Count(), 1u);
  EXPECT_EQ(accessories.At(1)->baseUnit1, "BU1");
}

TEST_F(BuiltBaseUnits, OnlyTheAccessoryMadeForItsFileIsMarked) {
  const Accessories accessories = AccessoriesOf({NewAccessory("a", "BU2", "", "x.blb")});
  EXPECT_EQ(Build(accessories).Count(), 2u);
  EXPECT_EQ(accessories.At(1)->baseUnit1, "BU2");
}

TEST_F(BuiltBaseUnits, StandInTheOrderOfTheAccessories) {
  EXPECT_THAT(PartsBuiltFrom(AccessoriesOf({NewAccessory("c", "BU3"), NewAccessory("loose"),
                                            NewAccessory("f", "", "", "f.blb"), NewAccessory("b", "BU2")})),
              ElementsAre("first", "c", "f", "b"));
}

TEST_F(BuiltBaseUnits, AnAccessorysTextsAreTakenOverButNotItsMarkForFileAndPreOrder) {
  auto accessory = NewAccessory("part", "BU2", "ABCD2", "C:\\none.blb");
  accessory->description = "desc";
  accessory->quantity = "4";
  accessory->masterPrice = "7.5";
  accessory->supplier = "Tessel";
  accessory->typeOfSale = "2";
  accessory->markFor[0] = "mark";
  accessory->preOrder = "Y";
  accessory->attributes[0] = "a1";
  accessory->attributes[1] = "a2";
  accessory->attributes[2] = "a3";
  accessory->attributes[3] = "a4";
  accessory->attributes[4] = "a5";
  const auto unit = BaseUnitFromAccessory(export_.platform, *accessory);
  EXPECT_EQ(unit->partNumber, "part");
  EXPECT_EQ(unit->description, "desc");
  EXPECT_EQ(unit->quantity, "4");
  EXPECT_EQ(unit->masterPrice, "7.5");
  EXPECT_EQ(unit->supplier, "Tessel");
  EXPECT_EQ(unit->typeOfSale, "2");
  EXPECT_EQ(unit->attributes[0], "a1");
  EXPECT_EQ(unit->attributes[1], "a2");
  EXPECT_EQ(unit->attributes[2], "a3");
  EXPECT_EQ(unit->attributes[3], "a4");
  EXPECT_EQ(unit->attributes[4], "a5");
  EXPECT_EQ(unit->baseUnit1, "BU2");
  EXPECT_EQ(unit->baseUnit2, "ABCD2");
  EXPECT_EQ(unit->preOrder, "");
  EXPECT_EQ(unit->eto, "");
  EXPECT_EQ(unit->etoDescription, "");
  EXPECT_EQ(unit->ton, "");
  EXPECT_EQ(unit->cfm, "");
  EXPECT_EQ(unit->sapXml, "");
}

class SapOfAnAccessory : public BuiltBaseUnits {
 protected:
  std::string SapFor(std::string_view entry, std::string_view text) {
    export_.WriteBlob("C:\\blobs\\a.blb", entry, text);
    return BaseUnitFromAccessory(export_.platform, *NewAccessory("a", "", "", "C:\\blobs\\a.blb"))->sapXml;
  }
};

TEST_F(SapOfAnAccessory, IsTheSapDataElementOfItsStoredText) {
  EXPECT_EQ(SapFor("Tag", "<Unit><SAPDATA><v>1</v></SAPDATA><rest/></Unit>"), "<SAPDATA><v>1</v></SAPDATA>");
}

TEST_F(SapOfAnAccessory, IsTheWholeTextWithoutSuchAnElement) {
  EXPECT_EQ(SapFor("Tag", "<Unit/>"), "<Unit/>\r\n");
  EXPECT_EQ(SapFor("Tag", "no xml & nothing <like it"), "no xml & nothing <like it\r\n");
  EXPECT_EQ(SapFor("Tag", "<Unit><SapData/></Unit>"), "<Unit><SapData/></Unit>\r\n");
}

TEST_F(SapOfAnAccessory, IsTheElementOfAnSapDocumentOfItsOwn) {
  EXPECT_EQ(SapFor("unit.xml", "<?xml version=\"1.0\"?><SAPDATA><v/></SAPDATA>"), "<SAPDATA><v/></SAPDATA>");
}

TEST(SelectLooseAccessories, KeepsThoseWithAnEmptyBaseUnit1InTheirOrder) {
  const Accessories all = AccessoriesOf({NewAccessory("a"), NewAccessory("blank", " "), NewAccessory("b", "BU2"),
                                         NewAccessory("c"), NewAccessory("made", "XX1")});
  const Accessories loose = SelectLooseAccessories(all);
  EXPECT_THAT(PartNumbers(loose), ElementsAre("a", "c"));
  EXPECT_EQ(loose.At(1), all.At(1)) << "the same object, not a copy";
}

TEST(AttachAccessories, AnEmptyBaseUnit2MeansTheFirst) {
  const BaseUnits units = Units({"", ""});
  AttachAccessories(units, AccessoriesOf({NewAccessory("a"), NewAccessory("b")}));
  EXPECT_THAT(PartNumbers(units.At(1)->accessories), ElementsAre("a", "b"));
  EXPECT_THAT(PartNumbers(units.At(2)->accessories), IsEmpty());
}

TEST(AttachAccessories, TheNumberStandsBehindFourCharacters) {
  const struct {
    const char* baseUnit2;
    std::size_t unit;  // 0: none of the three
    const char* reason;
  } cases[] = {
      {"ABCD2", 2, "the usual form"},
      {"ABCD02", 2, "leading zeros"},
      {"ABCD 3", 3, "blanks"},
      {"ABCD3x", 3, "what follows the number"},
      {"12341", 1, "the four may be digits"},
      {"ABCD", 0, "nothing behind them is 0"},
      {"ABCDx2", 0, "no number is 0"},
      {"ABCD0", 0, "there is no base unit 0"},
      {"ABCD-1", 0, "nor one below"},
      {"ABCD4", 0, "nor one behind the last"},
      {"ABCD99999999999", 0, "nor one beyond 32 bits"},
      {"ABCD1.4", 1, "rounded down"},
      {"ABCD1.6", 2, "rounded up"},
      {"ABCD0.5", 0, "a half goes to the even neighbour: 0"},
      {"ABCD1.5", 2, "2"},
      {"ABCD2.5", 2, "2 again"},
      {"ABCD3.5", 0, "4, which does not exist"},
      {"ABCD-0.5", 0, "0 again"},
      {"\xC3\x84\xC3\x96\xC3\x9C\xC3\x9F"
       "2",
       2, "characters are counted, not bytes"},
  };
  for (const auto& c : cases) {
    const BaseUnits units = Units({"", "", ""});
    AttachAccessories(units, AccessoriesOf({NewAccessory("a", "", c.baseUnit2)}));
    for (std::size_t k = 1; k <= 3; ++k) {
      EXPECT_EQ(units.At(k)->accessories.Count(), k == c.unit ? 1u : 0u)
          << c.baseUnit2 << " in unit " << k << ": " << c.reason;
    }
  }
}

TEST(AttachAccessories, AFirstUnitMarkedBU2GetsEveryAccessoryBesidesItsOwnUnit) {
  const BaseUnits units = Units({"BU2", ""});
  AttachAccessories(units, AccessoriesOf({NewAccessory("two", "", "ABCD2"), NewAccessory("one"),
                                          NewAccessory("none", "", "ABCD"), NewAccessory("nine", "", "ABCD9")}));
  EXPECT_THAT(PartNumbers(units.At(1)->accessories), ElementsAre("two", "one", "none", "nine"));
  EXPECT_THAT(PartNumbers(units.At(2)->accessories), ElementsAre("two"));
  EXPECT_EQ(units.At(1)->accessories.At(1), units.At(2)->accessories.At(1)) << "one object in both";
}

TEST(AttachAccessories, OnlyTheFirstUnitsMarkCountsAndOnlyInThisLetterCase) {
  const BaseUnits second = Units({"", "BU2"});
  AttachAccessories(second, AccessoriesOf({NewAccessory("one"), NewAccessory("nine", "", "ABCD9")}));
  EXPECT_THAT(PartNumbers(second.At(1)->accessories), ElementsAre("one"));
  EXPECT_THAT(PartNumbers(second.At(2)->accessories), IsEmpty());
  const BaseUnits lower = Units({"bu2"});
  AttachAccessories(lower, AccessoriesOf({NewAccessory("nine", "", "ABCD9")}));
  EXPECT_THAT(PartNumbers(lower.At(1)->accessories), IsEmpty());
}

TEST(AttachAccessories, AFirstUnitMarkedBU1GetsNoUnnumberedAccessory) {
  const BaseUnits units = Units({"BU1"});
  AttachAccessories(units, AccessoriesOf({NewAccessory("none", "", "ABCD")}));
  EXPECT_THAT(PartNumbers(units.At(1)->accessories), IsEmpty());
}

TEST(AttachAccessories, ReplacesWhatWasAttachedBefore) {
  const BaseUnits units = Units({"", ""});
  AttachAccessories(units, AccessoriesOf({NewAccessory("old"), NewAccessory("old2", "", "ABCD2")}));
  AttachAccessories(units, AccessoriesOf({NewAccessory("new")}));
  EXPECT_THAT(PartNumbers(units.At(1)->accessories), ElementsAre("new"));
  EXPECT_THAT(PartNumbers(units.At(2)->accessories), IsEmpty());
}

TEST(AttachAccessories, ABaseUnit2OfOneToThreeCharactersIsAnInvalidCallThatShowsIt) {
  for (const char* tooShort : {"A", "AB", "ABC", "1", "\xC3\x84\xC3\x96\xC3\x9C"}) {
    const BaseUnits units = Units({""});
    const Accessories accessories = AccessoriesOf({NewAccessory("fine"), NewAccessory("a", "", tooShort)});
    EXPECT_EQ(RaisedBy([&] { AttachAccessories(units, accessories); }), RuntimeError::InvalidCall) << tooShort;
    EXPECT_THAT(DescriptionOfErrorIn([&] { AttachAccessories(units, accessories); }), testing::HasSubstr(tooShort));
    EXPECT_EQ(units.At(1)->accessories.Count(), 0u) << "nothing is attached halfway";
  }
}

TEST(AttachAccessories, WithoutBaseUnitsABaseUnit2IsNotLookedAt) {
  AttachAccessories(BaseUnits(), AccessoriesOf({NewAccessory("a", "", "AB")}));
  AttachWarranties(BaseUnits(), WarrantiesOf({NewWarranty("w", "AB")}));
}

TEST(AttachAccessories, ManyAccessoriesOfManyBaseUnitsAreDealtOutInOneGo) {
  // One walk for each base unit would look at 900 million pairs here.
  constexpr int kMany = 30000;
  BaseUnits units;
  Accessories accessories;
  for (int i = 1; i <= kMany; ++i) {
    units.Append(std::make_shared<BaseUnit>());
    accessories.Append(NewAccessory("a", "", "ABCD" + std::to_string(i)));
  }
  AttachAccessories(units, accessories);
  for (std::size_t k = 1; k <= kMany; ++k) {
    ASSERT_EQ(units.At(k)->accessories.Count(), 1u);
    ASSERT_EQ(units.At(k)->accessories.At(1), accessories.At(k));
  }
}

TEST(AttachWarranties, AWarrantyGoesToTheUnitOfItsNumber) {
  const BaseUnits units = Units({"", ""});
  AttachWarranties(units,
                   WarrantiesOf({NewWarranty("w2", "ABCD2"), NewWarranty("w1", ""), NewWarranty("w1 too", "ABCD1")}));
  EXPECT_THAT(Names(units.At(1)->warranties), ElementsAre("w1", "w1 too"));
  EXPECT_THAT(Names(units.At(2)->warranties), ElementsAre("w2"));
}

TEST(AttachWarranties, AnUnnumberedOneGoesToAFirstUnitMarkedBU1OrBU2Only) {
  for (const char* unnumbered : {"ABCD", "ABCDx", "ABCD0", "ABCD0.5"}) {
    for (const char* baseUnit1 : {"", "BU1", "BU2", "bu1", "BU3", "XX1"}) {
      const BaseUnits units = Units({baseUnit1, "BU1"});
      AttachWarranties(units, WarrantiesOf({NewWarranty("w", unnumbered)}));
      const bool taken = std::string(baseUnit1) == "BU1" || std::string(baseUnit1) == "BU2";
      EXPECT_EQ(units.At(1)->warranties.Count(), taken ? 1u : 0u) << baseUnit1 << ' ' << unnumbered;
      EXPECT_EQ(units.At(2)->warranties.Count(), 0u);
    }
  }
}

TEST(AttachWarranties, AFirstUnitMarkedBU1DoesNotGetThoseOfOtherUnits) {
  const BaseUnits units = Units({"BU1", ""});
  AttachWarranties(units,
                   WarrantiesOf({NewWarranty("w2", "ABCD2"), NewWarranty("w9", "ABCD9"), NewWarranty("wm", "ABCD-1")}));
  EXPECT_THAT(Names(units.At(1)->warranties), IsEmpty());
  EXPECT_THAT(Names(units.At(2)->warranties), ElementsAre("w2"));
}

TEST(AttachWarranties, AFirstUnitMarkedBU2GetsEveryWarranty) {
  const BaseUnits units = Units({"BU2", ""});
  AttachWarranties(units, WarrantiesOf({NewWarranty("w2", "ABCD2"), NewWarranty("w1", ""), NewWarranty("w0", "ABCD")}));
  EXPECT_THAT(Names(units.At(1)->warranties), ElementsAre("w2", "w1", "w0"));
  EXPECT_THAT(Names(units.At(2)->warranties), ElementsAre("w2"));
}

TEST(AttachWarranties, ABaseUnit2OfOneToThreeCharactersIsAnInvalidCall) {
  EXPECT_EQ(RaisedBy([] { AttachWarranties(Units({""}), WarrantiesOf({NewWarranty("w", "ABC")})); }),
            RuntimeError::InvalidCall);
}

}  // namespace
}  // namespace parvex::test
