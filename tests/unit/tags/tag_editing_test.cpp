#include "tags/tag_editing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocol/command_document.h"
#include "seams/automation_error.h"
#include "tests/unit/tags/tag_machine.h"

namespace parvex {
namespace {

using test::Command;
using test::ListedTag;
using test::Parameter;
using test::Sent;
using test::TagMachine;
using testing::ElementsAre;
using testing::SizeIs;

const std::string kUpdateInfo = "<TagUpdateInfo><Table Name=\"TagData\"/></TagUpdateInfo>";
const std::string kTable = Parameter("tableName", "TagData");
const std::string kTableAndInfo = kTable + Parameter("data", kUpdateInfo);

/// A machine with an update document and a project with one tag "Old" of group G.
struct EditingMachine : TagMachine {
  EditingMachine() {
    WriteProgramFile("TagUpdateInfo.xml", "<?xml version=\"1.0\"?>\r\n" + kUpdateInfo);
    Answer(true, "<LIST>" + ListedTag("Old", "G") + "</LIST>");
    Answer(true, "");
  }

  /// What was sent behind the request for the tag list.
  const std::string& Request() const {
    EXPECT_THAT(Requests(), SizeIs(2));
    return Requests().back();
  }
};

std::string Renaming(const std::string& newName) {
  return Parameter("projectName", "P") + Parameter("pdsg", "G") + Parameter("tagName", "Old") + newName;
}

std::string RenamingSent(const std::string& newName, const std::string& behind) {
  return Sent("renameTagEx", Parameter("projectName", "P") + Parameter("pdsg", "KDQ47") + Parameter("tagName", "Old") +
                                 newName + Parameter("pdsgOfOwner", "G") + behind);
}

TEST(RenameTag, SendsTheFrontEndsCommandAddressedToTheLegacyApplication) {
  EditingMachine tags;
  EXPECT_EQ(RenameTag(tags.link, Command("renameTag", Renaming(Parameter("newTagName", "New")))).Xml(), test::kSuccess);
  EXPECT_EQ(RenamingSent(Parameter("newTagName", "New"), kTableAndInfo), tags.Request());
}

TEST(RenameTag, AsksForTheListOfTheProjectBeforeTheFirstRename) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Renaming(Parameter("newTagName", "New"))));
  const std::string parameters =
      Parameter("pdsg", "KDQ47") + Parameter("pdsgFilter", "*") + Parameter("projectName", "P");
  EXPECT_EQ(Sent("getTagList", parameters), tags.Requests().front());
}

TEST(RenameTag, MakesTheNewNameUniqueInTheGroupOfTheOwner) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Renaming(Parameter("newTagName", "Old"))));
  EXPECT_EQ(RenamingSent(Parameter("newTagName", "Old[1]"), kTableAndInfo), tags.Request());
}

TEST(RenameTag, CleansTheNewName) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Renaming(Parameter("newTagName", "a &lt; b | c"))));
  EXPECT_EQ(RenamingSent(Parameter("newTagName", "a _ b _ c"), kTableAndInfo), tags.Request());
}

TEST(RenameTag, LeavesTheWantedNameInTheFrontEndsDocument) {
  EditingMachine tags;
  const xml::Document command = Command("renameTag", Renaming(Parameter("newTagName", "Old")));
  RenameTag(tags.link, command);
  EXPECT_EQ(GetParamFromCmdDoc(command, "newTagName"), "Old");
  EXPECT_EQ(GetCommandName(command), "renameTagEx");
}

TEST(RenameTag, AddsNoNewNameWhereTheFrontEndGivesNone) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Renaming("")));
  EXPECT_EQ(RenamingSent("", kTableAndInfo), tags.Request());
}

TEST(RenameTag, AddsNoPdsgWhereTheFrontEndGivesNone) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Parameter("projectName", "P") + Parameter("newTagName", "Old")));
  EXPECT_EQ(Sent("renameTagEx", Parameter("projectName", "P") + Parameter("newTagName", "Old") +
                                    Parameter("pdsgOfOwner", "") + kTableAndInfo),
            tags.Request());
}

TEST(RenameTag, TakesAnOwnerThatTheFrontEndNamesItselfForTheNames) {
  EditingMachine tags;
  RenameTag(tags.link, Command("renameTag", Parameter("pdsgOfOwner", "G") + Parameter("pdsg", "H") +
                                                Parameter("newTagName", "Old")));
  EXPECT_EQ(Sent("renameTagEx", Parameter("pdsgOfOwner", "G") + Parameter("pdsg", "KDQ47") +
                                    Parameter("newTagName", "Old[1]") + Parameter("pdsgOfOwner", "H") + kTableAndInfo),
            tags.Request());
}

TEST(RenameTag, IsTheFailedReplyWhenTheRouterRefuses) {
  EditingMachine tags;
  tags.machine.routers.answers[1].success = false;
  EXPECT_EQ(RenameTag(tags.link, Command("renameTag", Renaming(""))).Xml(), test::kFailure);
}

TEST(TagUpdateInfo, IsLeftOutWithoutAProgramFolder) {
  EditingMachine tags;
  tags.machine.SetBinPath("");
  EXPECT_EQ(RenameTag(tags.link, Command("renameTag", Renaming(""))).Xml(), test::kSuccess);
  EXPECT_EQ(RenamingSent("", kTable), tags.Request());
}

TEST(TagUpdateInfo, IsAnEmptyParameterWhenTheFileIsMissingOrMalformed) {
  for (const char* content : {"", "<TagUpdateInfo>", "no XML"}) {
    EditingMachine tags;
    tags.WriteProgramFile("TagUpdateInfo.xml", content);
    if (*content == '\0') {
      tags.machine.platform.files->Remove(std::string(test::FakeMachine::kBinPath) + "TagUpdateInfo.xml");
    }
    EXPECT_EQ(RenameTag(tags.link, Command("renameTag", Renaming(""))).Xml(), test::kSuccess);
    EXPECT_EQ(RenamingSent("", kTable + Parameter("data", "")), tags.Request()) << content;
  }
}

TEST(TagUpdateInfo, ComesFromTheProgramFolderThatTheRegistryNamesNow) {
  EditingMachine tags;
  tags.machine.SetBinPath("");
  tags.machine.routers.answers.push_front({true, "<LIST/>"});
  RenameTag(tags.link, Command("renameTag", Renaming("")));  // keeps "error" as this thread's program folder
  tags.machine.SetBinPath(test::FakeMachine::kBinPath);
  RenameTag(tags.link, Command("renameTag", Renaming("")));
  EXPECT_EQ(RenamingSent("", kTableAndInfo), tags.Requests().back());
}

std::string Copying(const std::string& more) {
  return Parameter("projectName", "P") + Parameter("PDSG", "G") + Parameter("tagName", "Old") +
         Parameter("dataType", "1") + Parameter("TAGINDEXID", "17") + more;
}

TEST(CopyTag, InsideAProjectNamesTheCopyAfterItsOriginal) {
  EditingMachine tags;
  EXPECT_EQ(CopyTag(tags.link, Command("copyTag", Copying(Parameter("pdsg", "G")))).Xml(), test::kSuccess);
  EXPECT_EQ(Sent("CopyTagEx", Copying(Parameter("pdsg", "KDQ47") + Parameter("newTagName", "Copy of Old") +
                                      Parameter("pdsgOfOwner", "G") + kTableAndInfo)),
            tags.Request());
}

TEST(CopyTag, InsideAProjectTakesTheGivenName) {
  EditingMachine tags;
  CopyTag(tags.link, Command("copyTag", Copying(Parameter("newTagName", "Old") + Parameter("pdsg", "H"))));
  EXPECT_EQ(Sent("CopyTagEx", Copying(Parameter("newTagName", "Old[1]") + Parameter("pdsg", "KDQ47") +
                                      Parameter("pdsgOfOwner", "H") + kTableAndInfo)),
            tags.Request());
}

TEST(CopyTag, InsideAProjectKeepsANameThatIsGivenEmpty) {
  EditingMachine tags;
  CopyTag(tags.link, Command("copyTag", Copying(Parameter("newTagName", ""))));
  EXPECT_EQ(Sent("CopyTagEx", Copying(Parameter("newTagName", "") + Parameter("pdsgOfOwner", "") + kTableAndInfo)),
            tags.Request());
}

TEST(CopyTag, ToItsOwnProjectOrToNoneStaysInside) {
  for (const char* destination : {"P", ""}) {
    EditingMachine tags;
    const std::string given = Parameter("destinationProject", destination) + Parameter("newTagName", "N");
    CopyTag(tags.link, Command("copyTag", Copying(given)));
    EXPECT_EQ(Sent("CopyTagEx", Copying(given + Parameter("pdsgOfOwner", "") + kTableAndInfo)), tags.Request());
  }
}

const std::string kCopied =
    "<DATA><PDSG Value=\"G\"><TAG Name=\"Old\" DataType=\"1\" ID=\"0\" Key=\"dummy\" TagIndexID=\"17\"/></PDSG></DATA>";

TEST(CopyTag, ToAnotherProjectSendsTheTagInAListAndNoPdsgOfItsOwn) {
  EditingMachine tags;
  const std::string given = Parameter("destinationProject", "Q") + Parameter("newTagName", "Old");
  EXPECT_EQ(CopyTag(tags.link, Command("copyTag", Copying(given))).Xml(), test::kSuccess);
  EXPECT_EQ(Sent("CopyTagsToProject",
                 Copying(Parameter("destinationProject", "Q") + Parameter("newTagName", "Old[1]") +
                         Parameter("sourceProject", "P") + Parameter("tagList", kCopied) + kTableAndInfo)),
            tags.Request());
  EXPECT_THAT(tags.Requests().front(), testing::HasSubstr("<VALUE>Q</VALUE>")) << "names of the destination count";
}

TEST(CopyTag, ToAnotherProjectAddsAnEmptyNameWhereNoneIsGivenAndLeavesPdsgAlone) {
  EditingMachine tags;
  const std::string given = Parameter("pdsg", "G") + Parameter("destinationProject", "p");
  CopyTag(tags.link, Command("copyTag", Copying(given)));
  EXPECT_EQ(Sent("CopyTagsToProject", Copying(given + Parameter("newTagName", "") + Parameter("sourceProject", "P") +
                                              Parameter("tagList", kCopied) + kTableAndInfo)),
            tags.Request());
}

TEST(CopyTag, ToAnotherProjectSendsNamesThatMarkupHasToEscape) {
  EditingMachine tags;
  const std::string name = Parameter("tagName", "a \"b\" &lt;c&gt; &amp; d");
  CopyTag(tags.link, Command("copyTag", Parameter("projectName", "P") + name + Parameter("destinationProject", "Q")));
  EXPECT_EQ(xml::Document::Parse(tags.Request()).First("//DATA/PDSG/TAG").Attribute("Name").value_or("none"),
            "a \"b\" <c> & d");
}

TEST(CopyTag, IsTheFailedReplyWhenTheRouterRefuses) {
  EditingMachine tags;
  tags.machine.routers.answers[1].success = false;
  EXPECT_EQ(CopyTag(tags.link, Command("copyTag", Copying(""))).Xml(), test::kFailure);
}

std::string Deleting(const std::string& dataType) {
  return Parameter("ID", "4") + Parameter("TAGINDEXID", "17") + Parameter("tagName", "Old &amp; grey") +
         Parameter("PDSG", "G") + Parameter("DATATYPE", dataType) + Parameter("projectName", "P");
}

std::string DeletingSent(const std::string& tag) {
  return Sent("deleteTagEx", Parameter("pdsg", "KDQ47") + Parameter("projectName", "P") +
                                 Parameter("tagList", "<TAGS><TAG>" + tag + "</TAG></TAGS>"));
}

TEST(DeleteTag, SendsARequestOfItsOwnWithTheTagInAList) {
  TagMachine tags;
  tags.Answer(true, "");
  EXPECT_EQ(DeleteTag(tags.link, Command("deleteTag", Deleting("0"))).Xml(), test::kSuccess);
  EXPECT_THAT(tags.Requests(),
              ElementsAre(DeletingSent("<DATATYPE>0</DATATYPE><PDSG>G</PDSG><NAME>Old &amp; grey</NAME>"
                                       "<TAGINDEXID>17</TAGINDEXID><ID>4</ID><TABLENAME>TagData</TABLENAME>")));
}

TEST(DeleteTag, SendsAnEmptyTableForEveryOtherDataType) {
  for (const char* dataType : {"1", "", "2", "00"}) {
    TagMachine tags;
    DeleteTag(tags.link, Command("deleteTag", Deleting(dataType)));
    EXPECT_THAT(tags.Requests(), ElementsAre(testing::HasSubstr("<TABLENAME/>"))) << dataType;
  }
}

TEST(DeleteTag, SendsEmptyElementsForWhatTheFrontEndDoesNotSay) {
  TagMachine tags;
  EXPECT_EQ(DeleteTag(tags.link, Command("deleteTag", Parameter("projectName", "P"))).Xml(), test::kFailure);
  EXPECT_THAT(tags.Requests(), ElementsAre(DeletingSent("<DATATYPE/><PDSG/><NAME/><TAGINDEXID/><ID/><TABLENAME/>")));
}

TEST(TagEditing, ThatTheRouterCannotCarryOutEndsTheCall) {
  for (const auto handler : {RenameTag, CopyTag, DeleteTag}) {
    TagMachine tags;
    tags.machine.routers.onRequest = [](const std::string&, std::string&) -> bool {
      throw AutomationError(0x800706BAu, "router", "gone");
    };
    EXPECT_THROW(handler(tags.link, Command("any", Parameter("projectName", "P"))), AutomationError);
  }
}

}  // namespace
}  // namespace parvex
