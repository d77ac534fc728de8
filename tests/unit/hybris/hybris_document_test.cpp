#include "hybris/hybris_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/raised_by.h"
#include "tests/support/same_node.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

constexpr const char* kEmptyTag =
    "<TAG><ATTRIBUTES_LIST><BUILDVERSION/><MARKFOR/><PDSG/><LEGACY_TAGID/><BLOB/></ATTRIBUTES_LIST><BASEUNITS/></TAG>";

TEST(CreateHybrisDocument, IsTheSkeletonWithTheProjectName) {
  EXPECT_EQ(CreateHybrisDocument("Tower").Root().Xml(),
            "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"Tower\"/><CUSTOMER/><SALESPERSON/><BRAND/>"
            "</ATTRIBUTES_LIST><TAGS/></PROJECT>");
}

TEST(CreateHybrisDocument, AnEmptyNameGivesAnEmptyAttribute) {
  EXPECT_EQ(CreateHybrisDocument("").First("//JOB").Attribute("LEGACY_PROJECTNAME"), "");
}

TEST(CreateHybrisDocument, KeepsANameWithLettersBeyondAscii) {
  EXPECT_EQ(CreateHybrisDocument("Bürohaus Ø 'Süd'").First("//JOB").Attribute("LEGACY_PROJECTNAME"),
            "Bürohaus Ø 'Süd'");
}

TEST(CreateHybrisDocument, ANameThatBreaksTheTextLeavesTheDocumentEmpty) {
  for (const char* name : {"12\" duct", "Smith & Sons", "a<b"}) {
    EXPECT_TRUE(CreateHybrisDocument(name).IsEmpty()) << name;
  }
}

TEST(CreateHybrisDocument, TheNameIsSetInWithoutEscapingSoAReferenceInItIsResolved) {
  EXPECT_EQ(CreateHybrisDocument("Smith &amp; Sons").First("//JOB").Attribute("LEGACY_PROJECTNAME"), "Smith & Sons");
}

TEST(AppendTagElement, AppendsAnEmptyTagAndHandsOutItsElements) {
  const xml::Document document = CreateHybrisDocument("P");
  const TagElement tag = AppendTagElement(document);
  EXPECT_EQ(document.First("PROJECT/TAGS").Xml(), std::string("<TAGS>") + kEmptyTag + "</TAGS>");
  EXPECT_TRUE(IsSame(tag.element, document.First("PROJECT/TAGS/TAG")));
  EXPECT_TRUE(IsSame(tag.buildVersion, tag.element.First("descendant::BUILDVERSION")));
  EXPECT_TRUE(IsSame(tag.markFor, tag.element.First("descendant::MARKFOR")));
  EXPECT_TRUE(IsSame(tag.pdsg, tag.element.First("descendant::PDSG")));
  EXPECT_TRUE(IsSame(tag.legacyTagId, tag.element.First("descendant::LEGACY_TAGID")));
  EXPECT_TRUE(IsSame(tag.blob, tag.element.First("descendant::BLOB")));
  EXPECT_TRUE(IsSame(tag.baseUnits, tag.element.First("descendant::BASEUNITS")));
}

TEST(AppendTagElement, TwoCallsGiveTwoTagsInCallOrderEachWithItsOwnElements) {
  const xml::Document document = CreateHybrisDocument("P");
  AppendTagElement(document).pdsg.SetText("first");
  AppendTagElement(document).pdsg.SetText("second");
  const auto tags = document.All("PROJECT/TAGS/TAG");
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags[0].First("ATTRIBUTES_LIST/PDSG").Text(), "first");
  EXPECT_EQ(tags[1].First("ATTRIBUTES_LIST/PDSG").Text(), "second");
  EXPECT_EQ(tags[1].All("BASEUNITS").size(), 1u);
}

TEST(AppendTagElement, OnADocumentThatTheProjectNameBrokeIsObjectNotSetNamingThePath) {
  for (const char* name : {"12\" duct", "Smith & Sons", "a<b"}) {
    const xml::Document document = CreateHybrisDocument(name);
    EXPECT_EQ(RaisedBy([&] { AppendTagElement(document); }), RuntimeError::ObjectNotSet) << name;
    EXPECT_THAT(DescriptionOfErrorIn([&] { AppendTagElement(document); }), testing::HasSubstr("PROJECT/TAGS"));
  }
}

TEST(MapBrand, MapsSupplierAndTypeOfSale) {
  const struct {
    const char* supplier;
    const char* typeOfSale;
    const char* brand;
  } cases[] = {
      {"KORVANE", "9", "Korvane"},
      {"Korvane", "2", "Korvane"},
      {" tessel ", "1", "Tessel"},
      {"TESSEL", "", "Tessel"},
      {"qzn", "1", "QZN"},
      {"  QZN", "", "QZN"},
      {"", "", "Korvane"},
      {"", "1", "Korvane"},
      {"", "2", "Tessel"},
      {"", "25", "Tessel"},
      {"", "  2x", "Tessel"},
      {"", "9", "QZN"},
      {"someone", "9A", "QZN"},
      {"someone", "3", "Korvane"},
      {"someone", "x9", "Korvane"},
      {"Tessel Inc", "", "Korvane"},
      {"K O R V A N E", "2", "Tessel"},
      {"\tTESSEL", "", "Korvane"},
      {"Tessél", "9", "QZN"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MapBrand(c.supplier, c.typeOfSale), c.brand) << '"' << c.supplier << "\" \"" << c.typeOfSale << '"';
  }
}

}  // namespace
}  // namespace parvex::test
