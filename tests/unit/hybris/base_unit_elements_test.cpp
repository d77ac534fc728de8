#include "hybris/base_unit_elements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/raised_by.h"
#include "tests/support/same_node.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BaseUnitElements : public testing::Test {
 protected:
  ExportMachine export_;
  xml::Document document_ = xml::Document::Parse("<BASEUNITS/>");

  static std::shared_ptr<BaseUnit> Unit(const std::string& partNumber = "38AUZ") {
    auto unit = std::make_shared<BaseUnit>();
    unit->partNumber = partNumber;
    return unit;
  }

  /// Appends the units as those of tag 1 and gives their elements.
  std::vector<xml::Node> Append(std::initializer_list<std::shared_ptr<BaseUnit>> units,
                                std::string_view familyCode = "38A") {
    BaseUnits baseUnits;
    for (const auto& unit : units) {
      baseUnits.Append(unit);
    }
    SelectedTag tag(export_.platform, ExportMachine::kOutput, 1);
    tag.pdsg = familyCode;
    AppendBaseUnits(tag, document_.Root(), baseUnits);
    return document_.All("BASEUNITS/BASEUNIT");
  }

  static std::vector<std::string> Texts(const xml::Node& from, const char* path) {
    std::vector<std::string> texts;
    for (const xml::Node& node : from.All(path)) {
      texts.push_back(node.Text());
    }
    return texts;
  }
};

TEST_F(BaseUnitElements, AnEmptyUnitHasAllElementsAndNoComponents) {
  EXPECT_EQ(Append({Unit("")}).at(0).Xml(),
            "<BASEUNIT PARTNUMBER=\"\" ID=\"UNK\" QUANTITY=\"\" PRICE=\"\" SEQUENCE=\"1\">"
            "<EXTENDED_DESCRIPTIONS><DESCRIPTION/></EXTENDED_DESCRIPTIONS>"
            "<ATTRIBUTES_LIST><DELIVERYGROUP/><SUPPLIER/><TYPEOFSALE/><TON/><CFM/><ATTRIBUTE1/><ATTRIBUTE2/>"
            "<ATTRIBUTE3/><ATTRIBUTE4/><ATTRIBUTE5/><PREORDERREQ/><ETO ETODESCRIPTION=\"\"/></ATTRIBUTES_LIST>"
            "<COMPONENTS/><SAP_XML/></BASEUNIT>");
}

TEST_F(BaseUnitElements, AFilledUnitCarriesEveryValue) {
  auto unit = Unit();
  unit->quantity = "2";
  unit->masterPrice = "1200.50";
  unit->description = "Cooler \"S\" < 5 & more";
  unit->supplier = "Tessel";
  unit->typeOfSale = "21";
  unit->ton = "7.5";
  unit->cfm = "1234.5";
  unit->attributes[0] = "a1";
  unit->attributes[1] = "a2";
  unit->attributes[2] = "a3";
  unit->attributes[3] = "a4";
  unit->attributes[4] = "a5";
  unit->preOrder = "Y";
  unit->eto = "Y";
  unit->etoDescription = "one\r\ntwo";
  unit->sapXml = "<SAPDATA a=\"1\"/>";
  const xml::Node element = Append({unit}).at(0);
  EXPECT_EQ(element.Attribute("PARTNUMBER"), "38AUZ");
  EXPECT_EQ(element.Attribute("ID"), "38A");
  EXPECT_EQ(element.Attribute("QUANTITY"), "2");
  EXPECT_EQ(element.Attribute("PRICE"), "1200.50");
  EXPECT_EQ(element.Attribute("SEQUENCE"), "1");
  EXPECT_THAT(Texts(element, "EXTENDED_DESCRIPTIONS/DESCRIPTION"), ElementsAre("Cooler \"S\" < 5 & more"));
  EXPECT_THAT(Texts(element, "ATTRIBUTES_LIST/*"),
              ElementsAre("", "Tessel", "21", "7.5", "1235", "a1", "a2", "a3", "a4", "a5", "1", "1"));
  EXPECT_EQ(element.First("ATTRIBUTES_LIST/ETO").Attribute("ETODESCRIPTION"), "one\r\ntwo");
  EXPECT_EQ(element.First("SAP_XML").Xml(), "<SAP_XML><![CDATA[<SAPDATA a=\"1\"/>]]></SAP_XML>");
}

TEST_F(BaseUnitElements, TheIdIsThePartNumbersBeginningOrUnknown) {
  const auto units = Append({Unit("38"), Unit("38A"), Unit("38AUZ"), Unit("ÄÖÜß"), Unit("Ä2")});
  std::vector<std::string> ids;
  for (const xml::Node& unit : units) {
    ids.push_back(unit.Attribute("ID").value());
  }
  EXPECT_THAT(ids, ElementsAre("UNK", "38A", "38A", "ÄÖÜ", "UNK"));
}

TEST_F(BaseUnitElements, UnitsAreNumberedInTheirOrder) {
  const auto units = Append({Unit("first"), Unit("second")});
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[1].Attribute("PARTNUMBER"), "second");
  EXPECT_EQ(units[1].Attribute("SEQUENCE"), "2");
}

TEST_F(BaseUnitElements, OnlyTheFirstUnitCarriesTheTagsExtendedDescription) {
  export_.Select(
      "[Extended Description1]\r\nDescription:1=line 1\r\nDescription:2=line 2\r\nDescription:4=unread\r\n"
      "[Extended Description2]\r\nDescription:1=of another tag\r\n");
  auto first = Unit();
  first->description = "first";
  const auto units = Append({first, Unit(), Unit()});
  EXPECT_THAT(Texts(units[0], "EXTENDED_DESCRIPTIONS/DESCRIPTION"), ElementsAre("first", "line 1", "line 2"));
  EXPECT_THAT(Texts(units[1], "EXTENDED_DESCRIPTIONS/DESCRIPTION"), ElementsAre(""));
  EXPECT_THAT(Texts(units[2], "EXTENDED_DESCRIPTIONS/DESCRIPTION"), ElementsAre(""));
}

TEST_F(BaseUnitElements, YesIsOneAndAnythingElseZeroAndEmptyStaysEmpty) {
  const struct {
    const char* value;
    const char* text;
  } cases[] = {{"Y", "1"}, {"y", "0"}, {"N", "0"}, {"1", "0"}, {" Y", "0"}, {"Yes", "0"}, {"", ""}};
  for (const auto& c : cases) {
    document_ = xml::Document::Parse("<BASEUNITS/>");
    auto unit = Unit();
    unit->preOrder = c.value;
    unit->eto = c.value;
    const xml::Node element = Append({unit}).at(0);
    EXPECT_THAT(Texts(element, "ATTRIBUTES_LIST/PREORDERREQ"), ElementsAre(c.text)) << c.value;
    EXPECT_THAT(Texts(element, "ATTRIBUTES_LIST/ETO"), ElementsAre(c.text)) << c.value;
    EXPECT_EQ(element.First("ATTRIBUTES_LIST/ETO").Attribute("ETODESCRIPTION"), "") << c.value;
  }
}

TEST_F(BaseUnitElements, TheEtoDescriptionStandsThereAlsoWithoutEto) {
  auto unit = Unit();
  unit->etoDescription = "why";
  EXPECT_EQ(Append({unit}).at(0).First("ATTRIBUTES_LIST/ETO").Xml(), "<ETO ETODESCRIPTION=\"why\"/>");
}

TEST(AttributeTypeFor, IsReportInfoForAFilledFirstSlotOfFcbOnly) {
  EXPECT_EQ(AttributeTypeFor("FCB", 1, "x"), "REPORTINFO");
  EXPECT_EQ(AttributeTypeFor("FCB", 1, " "), "REPORTINFO");
  EXPECT_EQ(AttributeTypeFor("FCB", 1, ""), "");
  EXPECT_EQ(AttributeTypeFor("FCB", 2, "x"), "");
  EXPECT_EQ(AttributeTypeFor("fcb", 1, "x"), "");
  EXPECT_EQ(AttributeTypeFor("38A", 1, "x"), "");
  EXPECT_EQ(AttributeTypeFor("XXX", 1, "x"), "");
}

TEST_F(BaseUnitElements, OnlyTheFirstAttributeOfFcbCarriesAType) {
  auto unit = Unit();
  unit->attributes[0] = "x";
  unit->attributes[1] = "y";
  const xml::Node fcb = Append({unit}, "FCB").at(0);
  EXPECT_EQ(fcb.First("ATTRIBUTES_LIST/ATTRIBUTE1").Xml(), "<ATTRIBUTE1 TYPE=\"REPORTINFO\">x</ATTRIBUTE1>");
  EXPECT_EQ(fcb.First("ATTRIBUTES_LIST/ATTRIBUTE2").Xml(), "<ATTRIBUTE2>y</ATTRIBUTE2>");
  const xml::Node other = Append({unit}, "38A").at(1);
  EXPECT_EQ(other.First("ATTRIBUTES_LIST/ATTRIBUTE1").Xml(), "<ATTRIBUTE1>x</ATTRIBUTE1>");
}

class Components : public BaseUnitElements {
 protected:
  static std::shared_ptr<BaseUnit> UnitWith(int accessories, int warranties) {
    auto unit = Unit();
    for (int i = 1; i <= accessories; ++i) {
      auto accessory = std::make_shared<Accessory>();
      accessory->partNumber = "A" + std::to_string(i);
      unit->accessories.Append(accessory);
    }
    for (int i = 1; i <= warranties; ++i) {
      auto warranty = std::make_shared<Warranty>();
      warranty->name = "W" + std::to_string(i);
      unit->warranties.Append(warranty);
    }
    return unit;
  }

  /// "SEQUENCE TYPE PARTNUMBER" of each component.
  static std::vector<std::string> Summaries(const xml::Node& unit) {
    std::vector<std::string> summaries;
    for (const xml::Node& component : unit.All("COMPONENTS/COMPONENT")) {
      summaries.push_back(component.Attribute("SEQUENCE").value() + " " + component.Attribute("TYPE").value() + " " +
                          component.Attribute("PARTNUMBER").value());
    }
    return summaries;
  }
};

TEST_F(Components, AnAccessoryCarriesItsValues) {
  auto unit = UnitWith(1, 0);
  Accessory& accessory = *unit->accessories.At(1);
  accessory.quantity = "3";
  accessory.masterPrice = "15";
  accessory.description = "Curb 14\" & more";
  accessory.supplier = "QZN";
  accessory.typeOfSale = "9";
  accessory.preOrder = "Y";
  EXPECT_EQ(Append({unit}).at(0).First("COMPONENTS").Xml(),
            "<COMPONENTS><COMPONENT SEQUENCE=\"1\" TYPE=\"ACCESSORY\" PARTNUMBER=\"A1\" QUANTITY=\"3\" PRICE=\"15\">"
            "<DESCRIPTION>Curb 14\" &amp; more</DESCRIPTION><ATTRIBUTES_LIST><DELIVERYGROUP/><SUPPLIER>QZN</SUPPLIER>"
            "<TYPEOFSALE>9</TYPEOFSALE><PREORDERREQ>1</PREORDERREQ></ATTRIBUTES_LIST></COMPONENT></COMPONENTS>");
}

TEST_F(Components, AnAccessorysPreOrderTextIsWrittenAsStored) {
  auto unit = UnitWith(1, 0);
  unit->accessories.At(1)->preOrder = "y";
  EXPECT_EQ(Append({unit}).at(0).First("COMPONENTS/COMPONENT/ATTRIBUTES_LIST/PREORDERREQ").Text(), "y");
}

TEST_F(Components, AWarrantyHasTheFixedSupplierAndNoTypeOfSale) {
  auto unit = UnitWith(0, 1);
  Warranty& warranty = *unit->warranties.At(1);
  warranty.quantity = "1";
  warranty.masterPrice = "99";
  warranty.description = "five years";
  warranty.preOrder = "N";
  EXPECT_EQ(Append({unit}).at(0).First("COMPONENTS").Xml(),
            "<COMPONENTS><COMPONENT SEQUENCE=\"1\" TYPE=\"WARRANTY\" PARTNUMBER=\"W1\" QUANTITY=\"1\" PRICE=\"99\">"
            "<DESCRIPTION>five years</DESCRIPTION><ATTRIBUTES_LIST><DELIVERYGROUP/><SUPPLIER>Korvane</SUPPLIER>"
            "<TYPEOFSALE/><PREORDERREQ>0</PREORDERREQ></ATTRIBUTES_LIST></COMPONENT></COMPONENTS>");
}

TEST_F(Components, ABlanketItemIsReadFromTheTagsSection) {
  export_.Select(
      "[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\nQuantity:1=4\r\nMasterPrice:1=5\r\nDescription:1=special\r\n"
      "Supplier:1=as it comes\r\nTypeOfSale:1=x\r\npreorderreq1=Y\r\npreorderreq:1=wrong key\r\n");
  EXPECT_EQ(Append({Unit()}).at(0).First("COMPONENTS").Xml(),
            "<COMPONENTS><COMPONENT SEQUENCE=\"1\" TYPE=\"BLANKETETO\" PARTNUMBER=\"B1\" QUANTITY=\"4\" PRICE=\"5\">"
            "<DESCRIPTION>special</DESCRIPTION><ATTRIBUTES_LIST><DELIVERYGROUP/><SUPPLIER>as it comes</SUPPLIER>"
            "<TYPEOFSALE>x</TYPEOFSALE><PREORDERREQ>Y</PREORDERREQ></ATTRIBUTES_LIST></COMPONENT></COMPONENTS>");
}

TEST_F(Components, ABlanketItemsPreOrderKeyHasNoColon) {
  export_.Select("[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\npreorderreq:1=Y\r\n");
  EXPECT_EQ(Append({Unit()}).at(0).First("COMPONENTS/COMPONENT/ATTRIBUTES_LIST/PREORDERREQ").Xml(), "<PREORDERREQ/>");
}

TEST_F(Components, BlanketItemsEndAtAGap) {
  export_.Select("[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\nPartNumber:3=B3\r\n");
  EXPECT_THAT(Summaries(Append({Unit()}).at(0)), ElementsAre("1 BLANKETETO B1"));
}

TEST_F(Components, AreNumberedAcrossTheThreeKindsAndAnewForEachUnit) {
  export_.Select("[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\n");
  const auto units = Append({UnitWith(2, 1), UnitWith(0, 1)});
  EXPECT_THAT(Summaries(units[0]), ElementsAre("1 ACCESSORY A1", "2 ACCESSORY A2", "3 WARRANTY W1", "4 BLANKETETO B1"));
  EXPECT_THAT(Summaries(units[1]), ElementsAre("1 WARRANTY W1", "2 BLANKETETO B1")) << "every unit gets blanket items";
}

TEST_F(Components, OneUnitMayHave32767) {
  const auto units = Append({UnitWith(20000, 12767)});
  const auto summaries = Summaries(units.at(0));
  ASSERT_EQ(summaries.size(), 32767u);
  EXPECT_EQ(summaries.back(), "32767 WARRANTY W12767");
}

TEST_F(Components, The32768thRaisesOverflow) {
  EXPECT_EQ(RaisedBy([&] { Append({UnitWith(32768, 0)}); }), RuntimeError::Overflow);
  EXPECT_EQ(RaisedBy([&] { Append({UnitWith(32767, 1)}); }), RuntimeError::Overflow);
  export_.Select("[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\n");
  EXPECT_EQ(RaisedBy([&] { Append({UnitWith(0, 32767)}); }), RuntimeError::Overflow);
}

TEST_F(Components, NoSingleUnitExhaustsTheNumbersOfTheNext) {
  EXPECT_EQ(Append({UnitWith(32767, 0), UnitWith(32767, 0)}).size(), 2u);
}

TEST_F(Components, EveryUnitReadsTheTagsSectionsOnceEach) {
  Append({UnitWith(500, 500), UnitWith(500, 500)});
  EXPECT_EQ(export_.profile.opened, 3) << "extended description once, blanket items for each unit";
  EXPECT_EQ(export_.profile.read, 3);
}

TEST_F(BaseUnitElements, The32768thUnitRaisesOverflow) {
  BaseUnits units;
  for (int i = 0; i < 32768; ++i) {
    units.Append(Unit());
  }
  EXPECT_EQ(RaisedBy([&] {
              AppendBaseUnits(SelectedTag(export_.platform, ExportMachine::kOutput, 1), document_.Root(), units);
            }),
            RuntimeError::Overflow);
  EXPECT_EQ(document_.Root().All("BASEUNIT").size(), 32767u) << "what was appended stays";
}

TEST_F(BaseUnitElements, TheKeptNodesAreThoseThatASelectionFinds) {
  const BaseUnitElement unit = NewBaseUnitElement(document_.Root());
  EXPECT_TRUE(IsSame(unit.element, document_.First("BASEUNITS/BASEUNIT")));
  EXPECT_TRUE(IsSame(unit.extendedDescriptions, unit.element.First("descendant::EXTENDED_DESCRIPTIONS")));
  EXPECT_TRUE(IsSame(unit.supplier, unit.element.First("descendant::SUPPLIER")));
  EXPECT_TRUE(IsSame(unit.typeOfSale, unit.element.First("descendant::TYPEOFSALE")));
  EXPECT_TRUE(IsSame(unit.ton, unit.element.First("descendant::TON")));
  EXPECT_TRUE(IsSame(unit.cfm, unit.element.First("descendant::CFM")));
  for (std::size_t slot = 1; slot <= 5; ++slot) {
    EXPECT_TRUE(IsSame(unit.attributes[slot - 1], unit.element.First("descendant::ATTRIBUTE" + std::to_string(slot))));
  }
  EXPECT_TRUE(IsSame(unit.preOrderReq, unit.element.First("descendant::PREORDERREQ")));
  EXPECT_TRUE(IsSame(unit.eto, unit.element.First("descendant::ETO")));
  EXPECT_TRUE(IsSame(unit.components, unit.element.First("descendant::COMPONENTS")));
  EXPECT_TRUE(IsSame(unit.sapXml, unit.element.First("descendant::SAP_XML")));
  Counter16 sequence("components");
  const ComponentElement component = NewComponentElement(unit.components, sequence);
  EXPECT_TRUE(IsSame(component.element, unit.components.First("COMPONENT")));
  EXPECT_TRUE(IsSame(component.description, component.element.First("descendant::DESCRIPTION")));
  EXPECT_TRUE(IsSame(component.supplier, component.element.First("descendant::SUPPLIER")));
  EXPECT_TRUE(IsSame(component.typeOfSale, component.element.First("descendant::TYPEOFSALE")));
  EXPECT_TRUE(IsSame(component.preOrderReq, component.element.First("descendant::PREORDERREQ")));
}

TEST_F(BaseUnitElements, SapTextIsNeitherParsedNorEscaped) {
  auto unit = Unit();
  unit->sapXml = "  <not closed & \"raw\" >\r\n";
  EXPECT_THAT(Append({unit}).at(0).First("SAP_XML").Xml(),
              testing::StartsWith("<SAP_XML><![CDATA[  <not closed & \"raw\" >"));
}

TEST(RoundToWhole, RoundsHalvesUpwards) {
  const struct {
    const char* value;
    const char* whole;
    const char* reason;
  } cases[] = {
      {"", "", "nothing stays nothing"},
      {"1234.5", "1235", "a half goes up"},
      {"-2.5", "-2", "also below zero"},
      {"1234.49", "1234", "less than a half goes down"},
      {"2.5", "3", "not to the even neighbour"},
      {"0", "0", "a whole number stays"},
      {"-0.5", "0", "without a sign on zero"},
      {"-0.6", "-1", "down"},
      {"abc", "0", "no number counts as 0"},
      {" ", "0", "a blank is not empty"},
      {"1200 cfm", "1200", "what follows does not matter"},
      {"1,200", "1", "no group separators"},
      {"1e3", "1000", "an exponent"},
      {"2147483647", "2147483647", "the largest"},
      {"2147483647.4", "2147483647", "and what rounds to it"},
      {"-2147483648", "-2147483648", "the smallest"},
      {"-2147483648.5", "-2147483648", "and what rounds to it"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RoundToWhole(c.value), c.whole) << '"' << c.value << "\": " << c.reason;
  }
}

TEST(RoundToWhole, ANumberOutside32BitsIsAnOverflowThatShowsIt) {
  for (const char* value : {"2147483647.5", "2147483648", "-2147483648.6", "1e300", "1e999"}) {
    EXPECT_EQ(RaisedBy([&] { RoundToWhole(value); }), RuntimeError::Overflow) << value;
    EXPECT_THAT(DescriptionOfErrorIn([&] { RoundToWhole(value); }), testing::HasSubstr(value));
  }
}

TEST_F(BaseUnitElements, ComponentsOfAFinishedUnitTakeLittleMemory) {
  constexpr std::size_t kUnits = 200;
  constexpr std::size_t kComponents = 30;
  constexpr std::size_t kMostForAComponent = 1'000;  // 2,000 as nodes
  BaseUnits units;
  for (std::size_t i = 0; i < kUnits; ++i) {
    units.Append(Unit());
    for (std::size_t k = 0; k < kComponents; ++k) {
      auto accessory = std::make_shared<Accessory>();
      accessory->partNumber = "CRACC" + std::to_string(k);
      accessory->supplier = "Korvane";
      units.At(i + 1)->accessories.Append(std::move(accessory));
    }
  }
  const auto bytesInUse = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
  const std::size_t before = bytesInUse();
  AppendBaseUnits(SelectedTag(export_.platform, ExportMachine::kOutput, 1), document_.Root(), units);
  EXPECT_LE(bytesInUse() - before, kUnits * kComponents * kMostForAComponent);
  EXPECT_EQ(document_.All("//COMPONENT").size(), kUnits * kComponents);
}

}  // namespace
}  // namespace parvex::test
