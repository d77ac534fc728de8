#include "masking/places.h"

#include <gtest/gtest.h>

namespace parvex::masking {
namespace {

TEST(Places, AreKnownByTheirNamesInAllTheirForms) {
  for (const char* name : {"projectName", "ProjectName", "LEGACY_PROJECTNAME", "MarkFor", "MarkFor:2",
                           "MarkFor3:", "sTagName", "ContactNumber", "txtCompanyName", "proj_name"}) {
    EXPECT_EQ(PlaceNamed(name), Place::Name) << name;
  }
  for (const char* name : {"Description", "Description:1", "ETODESCRIPTION", "sDescription", "Notes"}) {
    EXPECT_EQ(PlaceNamed(name), Place::Description) << name;
  }
  for (const char* name : {"MasterPrice", "MasterPrice:12", "PRICE", "dListPrice"}) {
    EXPECT_EQ(PlaceNamed(name), Place::Price) << name;
  }
  EXPECT_EQ(PlaceNamed("FileName:1"), Place::Path);
  EXPECT_EQ(PlaceNamed("BLOB"), Place::Packed);
  for (const char* name : {"PDSG", "PartNumber", "Quantity", "pdsgOfOwner", "VALUE", "NAME", "", "bUserInput"}) {
    EXPECT_EQ(PlaceNamed(name), Place::Other) << name;
  }
}

TEST(Places, OfElementsDependOnWhatIsAroundThem) {
  EXPECT_EQ(PlaceOfElement("NAME", "TAG", ""), Place::Name);
  EXPECT_EQ(PlaceOfElement("NAME", "PROJECT", ""), Place::Name);
  EXPECT_EQ(PlaceOfElement("NAME", "PARAMETER", ""), Place::Other);
  EXPECT_EQ(PlaceOfElement("VALUE", "PARAMETER", "newTagName"), Place::Name);
  EXPECT_EQ(PlaceOfElement("VALUE", "PARAMETER", "PDSG"), Place::Other);
}

}  // namespace
}  // namespace parvex::masking
