#include "legacy_standin/router/tag_requests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy_standin/projects/stored_tag.h"
#include "tests/support/command_texts.h"
#include "tests/unit/legacy_standin/tag_project.h"

namespace parvex::standin {
namespace {

using test::Parameter;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kLegacy = Parameter("pdsg", "KDQ47");
const std::string kTable = Parameter("tableName", "TagData");
const std::string kIn = Parameter("projectName", "Clinic");

class TagRequestsTest : public testing::Test, protected TagProject {
 protected:
  const RequestTable requests = TagRequests();
  std::string answer;

  TagRequestsTest() { store.Create("Other"); }

  bool Send(const std::string& name, const std::string& parameters) {
    return Router(application, requests)
        .SendRequestMessage("<COMMAND><NAME>" + name + "</NAME>" + parameters + "</COMMAND>", answer);
  }

  std::string Text(const std::string& path) {
    const xml::Node node = xml::Document::Parse(answer).First(path);
    return node ? node.Text() : "<none>";
  }

  /// The tags of a project, their numbers before their names, as units.json and the project's database say.
  std::vector<std::string> Tags(const std::string& project) {
    std::vector<std::string> tags;
    for (const Unit& unit : store.ReadUnits(project)) {
      tags.push_back(std::to_string(unit.tagId) + " " + TagNameOf(unit));
    }
    std::vector<std::string> indexed;
    const auto database = application.projectDatabases.Open(store.Folder(project) + "\\project.mdb");
    for (const auto rows = database->OpenRecordSet("SELECT * FROM TagIndex"); !rows->AtEnd(); rows->MoveNext()) {
      indexed.push_back(rows->Column("lTagId").value_or("") + " " + rows->Column("sTagName").value_or(""));
    }
    EXPECT_EQ(indexed, tags);
    return tags;
  }

  void ExpectRefused(const std::string& name, const std::string& parameters, const std::string& reason) {
    const std::vector<std::string> before = Tags("Clinic");
    EXPECT_FALSE(Send(name, parameters)) << parameters;
    EXPECT_THAT(answer, HasSubstr(reason));
    EXPECT_EQ(before, Tags("Clinic"));
  }
};

TEST_F(TagRequestsTest, TheListSaysOfEveryTagWhatIsReadOfIt) {
  ASSERT_TRUE(Send("getTagList", kLegacy + Parameter("pdsgFilter", "*") + kIn));
  EXPECT_EQ(xml::Document::Parse(answer).All("/TAGLIST/TAG").size(), 6u);
  EXPECT_EQ(xml::Document::Parse(answer).First("//TAG").Xml(),
            "<TAG><NAME>RTU-1</NAME><PDSG>RTU47</PDSG><DATATYPE>0</DATATYPE><TAGVERSION>4.71.0</TAGVERSION>"
            "<TAGINDEXID>1101</TAGINDEXID><ID>1101</ID></TAG>");
}

TEST_F(TagRequestsTest, ATagWithoutADocumentIsAnExtendedOneWithoutAVersion) {
  ASSERT_TRUE(Send("getTagList", kLegacy + Parameter("pdsgFilter", "WSH47") + kIn));
  EXPECT_EQ(xml::Document::Parse(answer).All("//TAG").size(), 1u);
  EXPECT_EQ(Text("//DATATYPE") + Text("//TAGVERSION"), "1");
}

TEST_F(TagRequestsTest, ATagIsGivenWithItsDocumentAndItsProject) {
  ASSERT_TRUE(Send("getTag", kIn + Parameter("pdsg", "RTU47") + Parameter("tagName", "RTU-1")));
  EXPECT_EQ(Text("/TAGS/TAG/TagName"), "RTU-1");
  EXPECT_EQ(Text("/TAGS/TAG/Project[@ProjectID]/Property[@name='proj_name']/Value"), "Clinic");
  const xml::Node product = xml::Document::Parse(answer).First("//Application[@PDSG='RTU47']/System/Product");
  ASSERT_TRUE(product);
  EXPECT_EQ(product.Attribute("MarkFor"), "RTU-1");
  EXPECT_EQ(product.Attribute("UnitSize"), "10");
}

TEST_F(TagRequestsTest, ATagWithoutADocumentIsAPrototag) {
  ASSERT_TRUE(Send("getTagEx", kIn + kLegacy + Parameter("pdsgFilter", "WSH47") + Parameter("tagName", "HP-7")));
  EXPECT_EQ(Text("/TAGS/PROTOTAG/TagName"), "HP-7");
  EXPECT_EQ(Text("//TAG"), "<none>");
}

TEST_F(TagRequestsTest, ARenamedTagHasItsNewNameEverywhere) {
  ASSERT_TRUE(Send("renameTagEx", kIn + kLegacy + Parameter("tagName", "RTU-1") + Parameter("pdsgOfOwner", "RTU47") +
                                      Parameter("newTagName", "Dach &lt;1&gt;") + kTable))
      << answer;
  EXPECT_EQ(Tags("Clinic").front(), "1101 Dach <1>");
  EXPECT_EQ(ProductAttribute(store.ReadUnits("Clinic").front(), "MarkFor"), "Dach <1>");
}

TEST_F(TagRequestsTest, ACopyIsATagOfItsOwnBehindTheOthers) {
  ASSERT_TRUE(Send("CopyTagEx", kIn + Parameter("PDSG", "RTU47") + Parameter("tagName", "RTU-1") +
                                    Parameter("newTagName", "Copy of RTU-1") + kTable))
      << answer;
  EXPECT_EQ(Tags("Clinic").back(), "1107 Copy of RTU-1");
  const std::vector<Unit> units = store.ReadUnits("Clinic");
  EXPECT_EQ(units.back().stored.fileName, "tag1107.blb");
  EXPECT_EQ(units.back().accessories[3].stored.fileName, "tag1107-kdc900.blb");
  EXPECT_EQ(ProductAttribute(units.back(), "lTagID"), "1107");
  EXPECT_EQ(ProductAttribute(units.front(), "lTagID"), "1101");
}

TEST_F(TagRequestsTest, ACopyInAnotherProjectKeepsItsNameWhereNoneIsGiven) {
  const std::string list =
      Parameter("tagList", "<DATA><PDSG Value=\"XRC47\"><TAG Name=\"CH-1\" DataType=\"0\"/></PDSG></DATA>");
  const std::string copying =
      kIn + Parameter("destinationProject", "Other") + Parameter("sourceProject", "Clinic") + list + kTable;
  ASSERT_TRUE(Send("CopyTagsToProject", copying + Parameter("newTagName", ""))) << answer;
  EXPECT_THAT(Tags("Other"), ElementsAre("1101 CH-1"));
  EXPECT_FALSE(Send("CopyTagsToProject", copying + Parameter("newTagName", ""))) << "the name is taken now";
  ASSERT_TRUE(Send("CopyTagsToProject", copying + Parameter("newTagName", "CH-2"))) << answer;
  EXPECT_THAT(Tags("Other"), ElementsAre("1101 CH-1", "1102 CH-2"));
  EXPECT_EQ(Tags("Clinic").size(), 6u);
}

std::string Deleting(const std::string& name, const std::string& number) {
  return kLegacy + kIn +
         Parameter("tagList", "<TAGS><TAG><DATATYPE>0</DATATYPE><PDSG>XRC47</PDSG><NAME>" + name +
                                  "</NAME><TAGINDEXID>" + number +
                                  "</TAGINDEXID><ID/><TABLENAME>TagData</TABLENAME></TAG></TAGS>");
}

TEST_F(TagRequestsTest, ADeletedTagIsGone) {
  ASSERT_TRUE(Send("deleteTagEx", Deleting("CH-1", "1103"))) << answer;
  EXPECT_THAT(Tags("Clinic"), testing::Not(testing::Contains(HasSubstr("CH-1"))));
  EXPECT_FALSE(Send("deleteTagEx", Deleting("CH-1", "")));
}

TEST_F(TagRequestsTest, WhatNamesNothingIsRefused) {
  const std::string tag = Parameter("tagName", "RTU-1");
  const std::string group = Parameter("pdsgOfOwner", "RTU47");
  const std::string named = Parameter("newTagName", "N");
  ExpectRefused("getTagList", kLegacy + Parameter("pdsgFilter", "*") + Parameter("projectName", "Nowhere"), "Nowhere");
  ExpectRefused("getTagList", kLegacy + Parameter("pdsgFilter", "*") + Parameter("projectName", ""), "projectName");
  ExpectRefused("getTag", kIn + Parameter("pdsg", "XRC47") + tag, "RTU-1");
  ExpectRefused("getTag", kIn + Parameter("pdsg", "RTU47") + Parameter("tagName", "rtu-1"), "rtu-1");
  ExpectRefused("getTagEx", kIn + Parameter("pdsg", "RTU47") + Parameter("pdsgFilter", "RTU47") + tag, "KDQ47");
  ExpectRefused("renameTagEx", kIn + kLegacy + Parameter("tagName", "No") + group + named + kTable, "\"No\"");
  ExpectRefused("renameTagEx", kIn + kLegacy + tag + group + kTable, "newTagName");
  ExpectRefused("renameTagEx", kIn + kLegacy + tag + group + named, "tableName");
  ExpectRefused("renameTagEx", kIn + tag + group + named + kTable, "pdsg");
  ExpectRefused("CopyTagEx", kIn + Parameter("PDSG", "RTU47") + Parameter("tagName", "No") + named + kTable, "\"No\"");
  ExpectRefused("CopyTagsToProject", Parameter("sourceProject", "Clinic") + kTable, "tagList");
  ExpectRefused("deleteTagEx", Deleting("No", ""), "\"No\"");
  ExpectRefused("deleteTagEx", Deleting("CH-1", "1104"), "1103 and not 1104");
}

TEST_F(TagRequestsTest, ANameThatIsTakenInTheGroupIsRefused) {
  const std::string copy = kIn + Parameter("PDSG", "RTU47") + Parameter("tagName", "RTU-1") + kTable;
  ExpectRefused("CopyTagEx", copy + Parameter("newTagName", "RTU-1"), "already");
  EXPECT_TRUE(Send("CopyTagEx", copy + Parameter("newTagName", "CH-1"))) << "taken in another group only";
}

}  // namespace
}  // namespace parvex::standin
