#include "tags/tag_listing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "protocol/command_document.h"
#include "tests/support/raised_by.h"
#include "tests/unit/tags/tag_machine.h"

namespace parvex {
namespace {

using test::Command;
using test::ListedTag;
using test::Parameter;
using test::RaisedBy;
using test::Sent;
using test::Tag;
using test::TagEntry;
using test::TagMachine;
using testing::ElementsAre;
using testing::SizeIs;

std::string ListRequest(const std::string& projectName) {
  return Sent("getTagList",
              Parameter("pdsg", "KDQ47") + Parameter("pdsgFilter", "*") + Parameter("projectName", projectName));
}

std::string Tool(const std::string& pdsg, const std::string& version) {
  return "<Tool><Pdsg>" + pdsg + "</Pdsg><Version>" + version + "</Version></Tool>";
}

std::vector<std::string> TextsOf(const xml::Document& document, const std::string& path) {
  std::vector<std::string> texts;
  for (const xml::Node& node : document.All(path)) {
    texts.push_back(node.Text());
  }
  return texts;
}

std::vector<std::string> Marks(const std::string& tags, const std::string& tools) {
  const xml::Document list = xml::Document::Parse("<LIST>" + tags + "</LIST>");
  MarkUpToDate(list, xml::Document::Parse("<Tools>" + tools + "</Tools>"));
  return TextsOf(list, "//TAG/UPTODATE");
}

TEST(GetTagList, AsksTheRouterWithTheProjectName) {
  TagMachine tags;
  tags.Answer(true, "<LIST/>");
  GetTagList(tags.link, Command("getTagList", Parameter("projectName", "A &amp; B\\C")));
  EXPECT_THAT(tags.Requests(), ElementsAre(ListRequest("A &amp; B\\C")));
}

TEST(GetTagList, SendsAnEmptyProjectNameAsAnEmptyValue) {
  TagMachine tags;
  GetTagList(tags.link, Command("getTagList"));
  EXPECT_THAT(tags.Requests(), ElementsAre(ListRequest("")));
}

TEST(GetTagList, AnswersTheRoutersDocumentWithEveryTagMarked) {
  TagMachine tags;
  tags.WriteProgramFile("Tools.xml", "<Tools>" + Tool("RTU47", "2") + Tool("XRC47", "3") + "</Tools>");
  tags.Answer(true, "<TagList>" + ListedTag("A", "RTU47", "2") + ListedTag("B", "XRC47", "2") + "</TagList>");
  EXPECT_EQ(
      GetTagListOf(tags.link, "P").Xml(),
      "<TagList><TAG><NAME>A</NAME><PDSG>RTU47</PDSG><TAGVERSION>2</TAGVERSION><UPTODATE>-1</UPTODATE></TAG>"
      "<TAG><NAME>B</NAME><PDSG>XRC47</PDSG><TAGVERSION>2</TAGVERSION><UPTODATE>0</UPTODATE></TAG></TagList>\r\n");
}

TEST(GetTagList, AnswersTheFailedReplyWhenTheRouterRefuses) {
  TagMachine tags;
  tags.Answer(false, "<LIST/>");
  EXPECT_EQ(GetTagListOf(tags.link, "P").Xml(), test::kFailure);
}

TEST(GetTagList, LeavesTheTagsUnmarkedWithoutAProgramFolder) {
  TagMachine tags;
  tags.machine.SetBinPath("");
  const std::string list = "<LIST>" + ListedTag("A", "RTU47") + "</LIST>";
  tags.Answer(true, list);
  EXPECT_EQ(list + "\r\n", GetTagListOf(tags.link, "P").Xml());
}

TEST(GetTagList, TakesAMissingOrMalformedToolFileForNoTools) {
  for (const char* tools : {"", "<Tools><Tool>", "no XML"}) {
    TagMachine tags;
    if (*tools != '\0') {
      tags.WriteProgramFile("Tools.xml", tools);
    }
    tags.Answer(true, "<LIST>" + ListedTag("A", "RTU47", "1") + ListedTag("B", "RTU47", "") + "</LIST>");
    EXPECT_THAT(TextsOf(GetTagListOf(tags.link, "P"), "//UPTODATE"), ElementsAre("0", "-1")) << tools;
  }
}

TEST(GetTagList, TakesAProgramFolderThatDoesNotExistForNoTools) {
  TagMachine tags;
  tags.machine.SetBinPath("C:\\Nowhere\\At\\All\\");
  tags.Answer(true, "<LIST>" + ListedTag("A", "RTU47", "1") + "</LIST>");
  EXPECT_THAT(TextsOf(GetTagListOf(tags.link, "P"), "//UPTODATE"), ElementsAre("0"));
}

TEST(GetTagList, AnswersAnEmptyDocumentForAnAnswerThatIsNoXml) {
  for (const char* answer : {"", "done", "<LIST>"}) {
    TagMachine tags;
    tags.Answer(true, answer);
    EXPECT_TRUE(GetTagListOf(tags.link, "P").IsEmpty()) << answer;
  }
}

struct MarkCase {
  const char* why;
  std::string tags;
  std::string tools;
  std::vector<std::string> marks;
};

class MarkUpToDateCases : public testing::TestWithParam<MarkCase> {};

TEST_P(MarkUpToDateCases, MarksAs) {
  EXPECT_EQ(GetParam().marks, Marks(GetParam().tags, GetParam().tools)) << GetParam().why;
}

INSTANTIATE_TEST_SUITE_P(
    MarkUpToDate, MarkUpToDateCases,
    testing::Values(MarkCase{"of two tools of a group the first counts",
                             ListedTag("A", "G", "1") + ListedTag("B", "G", "2"),
                             Tool("G", "1") + Tool("G", "2"),
                             {"-1", "0"}},
                    MarkCase{"a tag without a tool is compared with the version found for the tag before it",
                             ListedTag("A", "G", "1") + ListedTag("B", "none", "1") + ListedTag("C", "none", "2"),
                             Tool("G", "1"),
                             {"-1", "-1", "0"}},
                    MarkCase{"before the first match the version is empty",
                             ListedTag("A", "none", "") + ListedTag("B", "none", "1"),
                             Tool("G", "1"),
                             {"-1", "0"}},
                    MarkCase{
                        "groups are compared with their letter case", ListedTag("A", "g", "1"), Tool("G", "1"), {"0"}},
                    MarkCase{"versions are compared as texts", ListedTag("A", "G", "1.0"), Tool("G", "1"), {"0"}},
                    MarkCase{"two empty versions are equal", ListedTag("A", "G", ""), Tool("G", ""), {"-1"}},
                    MarkCase{"an empty group is a group", ListedTag("A", "", "1"), Tool("", "1"), {"-1"}},
                    MarkCase{"the texts may stand at any depth",
                             "<TAG><X><PDSG>G</PDSG></X><Y><TAGVERSION>1</TAGVERSION></Y></TAG>",
                             "<Group><Tool><X><Pdsg>G</Pdsg></X><Y><Version>1</Version></Y></Tool></Group>",
                             {"-1"}},
                    MarkCase{"a tool without a group matches nothing",
                             ListedTag("A", "", "1"),
                             "<Tool><Version>1</Version></Tool>",
                             {"0"}}));

TEST(MarkUpToDate, EndsTheCallForATagWithoutVersionOrGroup) {
  EXPECT_EQ(RaisedBy([] { Marks("<TAG><PDSG>G</PDSG></TAG>", ""); }), 91);
  EXPECT_EQ(RaisedBy([] { Marks("<TAG><TAGVERSION>1</TAGVERSION></TAG>", ""); }), 91);
}

/// Every tag compared with tool after tool: what the join has to equal.
std::vector<std::string> MarksOfTheNestedWalk(const xml::Document& list, const xml::Document& tools) {
  std::vector<std::string> marks;
  std::string current;
  for (const xml::Node& tag : list.All("//TAG")) {
    for (const xml::Node& tool : tools.All("//Tool")) {
      if (tool.First(".//Pdsg").Text() == tag.First(".//PDSG").Text()) {
        current = tool.First(".//Version").Text();
        break;
      }
    }
    marks.push_back(tag.First(".//TAGVERSION").Text() == current ? "-1" : "0");
  }
  return marks;
}

TEST(MarkUpToDate, EqualsTheNestedWalkOverRandomLists) {
  std::mt19937 random(47);
  const auto pick = [&](int count) { return std::to_string(random() % static_cast<unsigned>(count)); };
  for (int round = 0; round < 50; ++round) {
    std::string tags;
    std::string tools;
    for (int i = 0; i < 40; ++i) {
      tags += ListedTag("T", "G" + pick(12), pick(3));
    }
    for (int i = 0; i < 8; ++i) {
      tools += Tool("G" + pick(12), pick(3));
    }
    const xml::Document list = xml::Document::Parse("<L>" + tags + "</L>");
    EXPECT_EQ(MarksOfTheNestedWalk(list, xml::Document::Parse("<L>" + tools + "</L>")), Marks(tags, tools));
  }
}

xml::Document GetTagsOf(TagMachine& tags, const std::string& entries) {
  return GetTags(tags.link, Command("getTags", Parameter("projectName", "P") + Parameter("data", entries)));
}

std::string TagData(const std::string& tags) {
  return "<TagData><PROJECT><projectName>P</projectName>" + tags + "</PROJECT></TagData>\r\n";
}

TEST(GetTags, WithoutEntriesAnswersOnlyTheProjectName) {
  TagMachine tags;
  EXPECT_EQ(TagData(""), GetTagsOf(tags, "").Xml());
  EXPECT_THAT(tags.Requests(), SizeIs(0));
}

TEST(GetTags, FetchesAnExtendedTagWithGetTagEx) {
  TagMachine tags;
  GetTagsOf(tags, TagEntry("A &lt;1&gt;", "RTU47", "1"));
  EXPECT_THAT(tags.Requests(), ElementsAre(Sent("getTagEx", Parameter("projectName", "P") + Parameter("pdsg", "KDQ47") +
                                                                Parameter("pdsgFilter", "RTU47") +
                                                                Parameter("tagName", "A &lt;1&gt;"))));
}

TEST(GetTags, FetchesEveryOtherTagWithGetTag) {
  for (const char* dataType : {"0", "", "2", "11", "01"}) {
    TagMachine tags;
    GetTagsOf(tags, TagEntry("A", "RTU47", dataType));
    EXPECT_THAT(tags.Requests(),
                ElementsAre(Sent("getTag", Parameter("pdsgFilter", "") + Parameter("projectName", "P") +
                                               Parameter("pdsg", "RTU47") + Parameter("tagName", "A"))))
        << dataType;
  }
}

TEST(GetTags, PutsTheFoundTagsInTheOrderOfTheEntriesAndAsksOnceATag) {
  TagMachine tags;
  tags.Answer(true, "<Answer><TAG n=\"1\"><X/></TAG><TAG n=\"not this one\"/></Answer>");
  tags.Answer(true, "<TAG n=\"2\"/>");
  EXPECT_EQ(TagData("<TAG n=\"1\"><X/></TAG><TAG n=\"2\"/>"),
            GetTagsOf(tags, TagEntry("A", "G", "0") + TagEntry("B", "G", "1")).Xml());
  EXPECT_THAT(tags.Requests(), SizeIs(2));
}

TEST(GetTags, KeepsAPrototagWhereThereIsNoTag) {
  TagMachine tags;
  tags.Answer(true, "<Answer><PROTOTAG n=\"1\"/></Answer>");
  tags.Answer(true, "<Answer><PROTOTAG n=\"2\"/><TAG n=\"2\"/></Answer>");
  EXPECT_EQ(TagData("<PROTOTAG n=\"1\"/><TAG n=\"2\"/>"),
            GetTagsOf(tags, TagEntry("A", "G", "0") + TagEntry("B", "G", "0")).Xml());
}

TEST(GetTags, DoesNotLookAtTheRoutersFlag) {
  TagMachine tags;
  tags.Answer(false, "<TAG n=\"1\"/>");
  EXPECT_EQ(TagData("<TAG n=\"1\"/>"), GetTagsOf(tags, TagEntry("A", "G", "0")).Xml());
}

TEST(GetTags, LeavesOutWhatTheRouterDoesNotKnowWithoutAMessage) {
  TagMachine tags;
  tags.Answer(true, "<Answer/>");
  tags.Answer(true, "no XML");
  tags.Answer(false, "");
  tags.Answer(true, "<TAG n=\"4\"/>");
  const std::string entry = TagEntry("A", "G", "0");
  EXPECT_EQ(TagData("<TAG n=\"4\"/>"), GetTagsOf(tags, entry + entry + entry + entry).Xml());
}

TEST(GetTags, FindsEntriesAnywhereInTheCommand) {
  TagMachine tags;
  GetTags(tags.link, Command("getTags", "<ELSEWHERE><DEEP>" + TagEntry("A", "G", "0") + "</DEEP></ELSEWHERE>"));
  EXPECT_THAT(tags.Requests(), SizeIs(1));
}

TEST(GetTags, EndsTheCallForAnEntryWithoutItsParts) {
  for (const char* entry : {"<TAG><PDSG>G</PDSG><DATATYPE>0</DATATYPE></TAG>", "<TAG><NAME>A</NAME><DATATYPE/></TAG>",
                            "<TAG><NAME>A</NAME><PDSG>G</PDSG></TAG>"}) {
    TagMachine tags;
    EXPECT_EQ(RaisedBy([&] { GetTagsOf(tags, entry); }), 91) << entry;
  }
}

std::string Application(const std::string& pdsg, const std::string& products) {
  return "<TAG><Application PDSG=\"" + pdsg + "\"><System>" + products + "</System></Application></TAG>";
}

xml::Document LookedUp(TagMachine& tags, const std::string& entries) {
  const xml::Document document = xml::Document::Parse("<TAGS>" + entries + "</TAGS>");
  LookUpTagProducts(tags.link, "P", document);
  return document;
}

std::string Products(const std::string& quantity, const std::string& size, const std::string& partNumber,
                     const std::string& model) {
  const auto element = [](const std::string& name, const std::string& text) {
    return text.empty() ? "<" + name + "/>" : "<" + name + ">" + text + "</" + name + ">";
  };
  return element("QUANTITY", quantity) + element("SIZE", size) + element("PARTNUMBER", partNumber) +
         element("MODEL", model);
}

TEST(LookUpTagProducts, AppendsWhatTheStoredProductSays) {
  TagMachine tags;
  tags.Answer(true, Application("RTU47",
                                "<Product MarkFor=\"A\" Quantity=\"2\" UnitSize=\"10\" PartNumber=\"RTUA\" "
                                "Model=\"RT\"/>"));
  const xml::Document document = LookedUp(tags, TagEntry("A", "RTU47", "1"));
  EXPECT_EQ(Tag("A", "RTU47", "<DATATYPE>1</DATATYPE>" + Products("2", "10", "RTUA", "RT")),
            document.First("//TAG").Xml());
  EXPECT_THAT(tags.Requests(), SizeIs(1));
}

TEST(LookUpTagProducts, AppendsEmptyElementsWhereThereIsNoProduct) {
  TagMachine tags;
  tags.Answer(true, Application("RTU47", "<Product MarkFor=\"B\" Quantity=\"2\"/>"));
  tags.Answer(true, Application("XRC47", "<Product MarkFor=\"A\" Quantity=\"2\"/>"));
  const xml::Document document = LookedUp(tags, TagEntry("A", "RTU47", "0") + TagEntry("C", "XRC47", "0"));
  EXPECT_THAT(TextsOf(document, "//QUANTITY"), ElementsAre("", ""));
  EXPECT_THAT(TextsOf(document, "//MODEL"), ElementsAre("", ""));
}

TEST(LookUpTagProducts, ForgetsAProductByItsNameAlsoWhenTheSecondLookFindsNothing) {
  TagMachine tags;
  tags.Answer(true, Application("OTHER", "<Product ProdName=\"RTU47\" MarkFor=\"A\" Quantity=\"2\"/>"));
  EXPECT_THAT(TextsOf(LookedUp(tags, TagEntry("A", "RTU47", "0")), "//QUANTITY"), ElementsAre(""));
}

TEST(LookUpTagProducts, PrefersTheProductOfTheSecondLookAndOfSeveralTheFirst) {
  TagMachine tags;
  tags.Answer(true,
              "<TAG><Product ProdName=\"G\" MarkFor=\"A\" Quantity=\"1\"/><Application PDSG=\"G\">"
              "<Other><Product MarkFor=\"A\" Quantity=\"5\"/></Other><System>"
              "<Product MarkFor=\"A\" Quantity=\"2\"/><Product MarkFor=\"A\" Quantity=\"3\"/></System>"
              "<Product MarkFor=\"A\" Quantity=\"4\"/></Application></TAG>");
  EXPECT_THAT(TextsOf(LookedUp(tags, TagEntry("A", "G", "0")), "//QUANTITY"), ElementsAre("2"));
}

TEST(LookUpTagProducts, CompletesEveryTagOfItsOwnAlsoOneWithAnApostropheInItsName) {
  TagMachine tags;
  tags.Answer(true, Application("G", "<Product MarkFor=\"Cook's\" Model=\"one\"/>"));
  tags.Answer(true, Application("G", "<Product MarkFor=\"B\" Model=\"two\"/>"));
  EXPECT_THAT(TextsOf(LookedUp(tags, TagEntry("B", "G", "0") + TagEntry("Cook's", "G", "0")), "//MODEL"),
              ElementsAre("two", "one"));
}

}  // namespace
}  // namespace parvex
