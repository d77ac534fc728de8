#include "cli/open/content.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <utility>
#include <vector>

#include "cli/host/exit_status.h"
#include "formats/jet/writer.h"
#include "formats/text/encoded_text.h"
#include "formats/zip/zip_writer.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

using testing::HasSubstr;

std::string MadeArchive(const std::vector<std::pair<std::string, std::string>>& entries) {
  ZipWriter archive;
  for (const auto& [name, bytes] : entries) {
    archive.Add(name, bytes, true);
  }
  return archive.Finish();
}

std::string MadeDatabase(const std::string& table) {
  const standin::JetTable made = {
      .name = table,
      .columns = {{.name = "sTagName"}, {.name = "lTagId", .type = standin::JetColumn::Type::Long}},
      .rows = {{"RTU-1", "7"}, {std::nullopt, "8"}}};
  return standin::MakeJetDatabase({&made, 1});
}

Content Opened(std::string_view bytes) {
  Looking looking;
  return ContentOf(bytes, "a file", looking).value_or(Content{.kind = "none", .what = "", .members = Json::object()});
}

std::string RefusalOf(std::string_view bytes) {
  Looking looking;
  try {
    ContentOf(bytes, "a file", looking);
  } catch (const AutomationError& error) {
    return error.Description();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "";
}

const std::string kBlob = MadeArchive({{"Tag", "<Application><Product lTagID=\"7\" TagVersion=\"4.7\"/></Application>"},
                                       {"Drawing.dat", std::string("\0\1\2", 3)}});

TEST(OpenedContent, IsKnownByItsBytes) {
  const std::pair<std::string, std::string> cases[] = {
      {"<PROJECT/>", "quote"},
      {"<SAPDATA><MATERIAL>M</MATERIAL></SAPDATA>", "order-configuration"},
      {"<COMMAND><NAME>getOptions</NAME></COMMAND>", "command"},
      {"<x><COMMAND><NAME>getOptions</NAME></COMMAND></x>", "command"},
      {"<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>", "reply"},
      {"<LegacyORLA><returnError>-1</returnError><errorMessage>e</errorMessage></LegacyORLA>", "failed-reply"},
      {"<PROJECTLIST/>", "reply"},
      {"<Tools><Tool><Option><Name>a</Name></Option></Tool></Tools>", "options"},
      {"<Tools><Tool><Pdsg>RTU47</Pdsg></Tool></Tools>", "tools"},
      {"<Application><Product/></Application>", "stored-tag"},
      {"<UserSelectionTransfer/>", "selection-request"},
      {" \r\n<other/>", "xml"},
      {WithMark("<SAPDATA/>", TextEncoding::Utf16Little), "order-configuration"},
      {kBlob, "stored-tag-data"},
      {MadeArchive({{"Config.xml", "<SAPDATA/>"}}), "stored-tag-data"},
      {MadeArchive({{"Config.xml", WithMark("<SAPDATA/>", TextEncoding::Utf16Little)}}), "stored-tag-data"},
      {MadeArchive({{"a.dat", "x"}}), "archive"},
      {MadeArchive({}), "archive"},
      {MadeArchive({{"project.mdb", MadeDatabase("TagIndex")}, {"tag1.blb", kBlob}}), "project-archive"},
      {MadeArchive({{"case.json", "{}"}, {"journal.jsonl", "{}"}}), "case"},
      {MadeDatabase("TagIndex"), "project-database"},
      {MadeDatabase("Other"), "database"},
      {"[Header]\r\nAction=OK\r\n[PartNumber1]\r\nPartNumber=A\r\n", "selection"},
      {"[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=C:\\Temp\\QPblob.tmp\r\n", "return-note"},
      {"; a remark\r\n[a]\r\nb=c\r\n", "ini"},
      {"LastProject=Tower\nToolBarActive=-1\n", "settings"},
      {"REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\r\n\"b\"=\"c\"\r\n", "registry"},
      {WithMark("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n", TextEncoding::Utf16Little),
       "registry"},
      {"{\"kind\":\"router\",\"request\":\"<a/>\",\"answer\":\"<b/>\",\"success\":true}\n{\"kind\":\"no", "journal"},
      {"[{\"a\": 1}, 2]", "json"},
      {"{\n  \"standin\": true\n}\n", "json"},
      {"", "none"},
      {"some text\nof somebody\n", "none"},
      {std::string("MZ\0\1=\n", 6), "none"},
  };
  for (const auto& [bytes, kind] : cases) {
    EXPECT_EQ(Opened(bytes).kind, kind) << bytes.substr(0, 60);
  }
}

TEST(OpenedContent, OfAnArchiveIsToldOfEachEntryAndWhatIsInIt) {
  const Json members = Opened(MadeArchive({{"project.mdb", MadeDatabase("TagIndex")}, {"tag1.blb", kBlob}})).members;
  const Json& entries = members["entries"];
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0]["kind"], "project-database");
  EXPECT_EQ(entries[0]["tables"][0]["rows"][0]["values"][0]["value"], "RTU-1");
  EXPECT_EQ(entries[0]["tables"][0]["rows"][1]["values"][0]["value"], nullptr);
  EXPECT_EQ(entries[1]["kind"], "stored-tag-data");
  EXPECT_EQ(entries[1]["entries"][0]["kind"], "stored-tag");
  EXPECT_EQ(entries[1]["entries"][1]["kind"], "unknown");
  EXPECT_EQ(entries[1]["entries"][1]["bytes"], 3);
}

TEST(OpenedContent, OfASelectionIsToldAsTheExportReadsIt) {
  const Json members = Opened(
                           "[header]\r\nProjectName=Tower\r\n[PartNumber1]\r\nPartNumber=A\r\nMarkFor=RTU-1\r\n"
                           "Quantity=2\r\n[Accessory1]\r\nPartNumber:1=ACC\r\nPartNumber:3=behind a gap\r\n"
                           "[PartNumber3]\r\nPartNumber=behind a gap\r\n")
                           .members;
  EXPECT_EQ(members["header"][0]["value"], "Tower");
  ASSERT_EQ(members["tags"].size(), 1u);
  EXPECT_EQ(members["tags"][0]["markFor"], "RTU-1");
  ASSERT_EQ(members["tags"][0]["accessories"].size(), 1u);
  EXPECT_EQ(members["tags"][0]["accessories"][0]["partNumber"], "ACC");
}

TEST(OpenedContent, ThatIsDamagedOrHostileIsRefusedWithItsName) {
  EXPECT_THAT(RefusalOf("<a><b></a>"), HasSubstr("the document \"a file\": it is no XML: line 1"));
  EXPECT_THAT(RefusalOf(kBlob.substr(0, kBlob.size() / 2)), HasSubstr("the archive \"a file\": it has no directory"));
  EXPECT_THAT(RefusalOf(MadeArchive({{"../up", "x"}})), HasSubstr("../up"));
  EXPECT_THAT(RefusalOf(MadeDatabase("A").substr(0, 5000)), HasSubstr("a file"));
  EXPECT_THAT(RefusalOf(std::string(200, '[') + std::string(200, ']')), HasSubstr("the JSON \"a file\""));
}

TEST(OpenedContent, OfADamagedEntryIsAProblemOfThatEntryOnly) {
  const Json members = Opened(MadeArchive({{"a.xml", "<a><b></a>"}, {"b.xml", "<SAPDATA/>"}})).members;
  EXPECT_THAT(members["entries"][0]["problem"].get<std::string>(), HasSubstr("it is no XML"));
  EXPECT_EQ(members["entries"][1]["kind"], "order-configuration");
}

TEST(OpenedContent, OfArchivesInEachOtherIsToldAsFarAsThreeOfThem) {
  std::string nested = MadeArchive({{"a.txt", "a=b"}});
  for (int i = 0; i < 5; ++i) {
    nested = MadeArchive({{"inner.zip", nested}});
  }
  const Json members = Opened(nested).members;
  const Json& third = members["entries"][0]["entries"][0];
  EXPECT_EQ(third["kind"], "archive");
  EXPECT_EQ(third["entries"][0]["what"], "an archive, not looked into");
  EXPECT_FALSE(third["entries"][0].contains("entries"));
}

TEST(OpenedContent, BeyondTheBoundsIsCountedAndLeftOut) {
  std::string ini = "[a]\n";
  for (int i = 0; i < 100'000; ++i) {
    ini += "k" + std::to_string(i) + "=v\n";
  }
  EXPECT_EQ(Opened(ini).members["leftOut"], 70'001);
  std::string markup = "<a>";
  for (int i = 0; i < 100'000; ++i) {
    markup += "<b>c</b>";
  }
  const Json outline = Opened(markup + "</a>").members;
  EXPECT_EQ(outline["elements"].size() + outline["leftOut"].get<std::size_t>(), 100'000u);
  EXPECT_EQ(Opened("<a>" + std::string(5'000, 'x') + "</a>").members["elements"][0]["text"],
            std::string(1'000, 'x') + "...");
}

// Entries of two archives in an archive unpack to more than one of them may alone.
TEST(OpenedContent, UnpacksNoMoreInAllThanOneArchiveMay) {
  const std::string bomb = MadeArchive({{"zeros", std::string(50u << 20, '\0')}});
  const Json members = Opened(MadeArchive({{"1", bomb}, {"2", bomb}, {"3", bomb}, {"4", bomb}})).members;
  EXPECT_FALSE(members["entries"][0].contains("problem"));
  EXPECT_TRUE(members["entries"][3].contains("problem")) << members["entries"][3].dump();
}

TEST(OpenedContent, HostileFilesAreDoneWithSoon) {
  const auto began = std::chrono::steady_clock::now();
  std::string deep = "x";
  for (int i = 0; i < 900; ++i) {
    deep = "<e>" + deep + "</e>";
  }
  Opened(deep);
  std::string selection = "[Header]\n";
  for (int i = 1; i < 30'000; ++i) {
    selection += "[PartNumber" + std::to_string(i) + "]\nPartNumber=A\n";
  }
  Opened(selection);
  Opened(std::string(1'000'000, '='));
  Opened(std::string(1'000'000, '\n'));
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
}

TEST(OpenedContent, AsTextHoldsNothingThatControlsATerminal) {
  const Content content = Opened("[\xC2\x9B]\r\nkey=a\x1B]0;t\x07\r\n");
  const std::string text = ContentAsText(content, "name\x1B[2J\n", 3);
  EXPECT_EQ(text.find('\x1B'), text.npos);
  EXPECT_EQ(text.find('\x07'), text.npos);
  EXPECT_EQ(text.find('\n'), text.find("3 bytes\n") + 7);
}

TEST(OpenedContent, AsTextAndAsJsonSayTheSame) {
  const Content content = Opened(kBlob);
  EXPECT_EQ(ContentAsText(content, "tag.blb", 9),
            "tag.blb: the stored data of a tag, 9 bytes\n"
            "  entry count: 2\n"
            "  entries:\n"
            "    Tag, bytes 65, a tag as the legacy application keeps it, root Application\n"
            "      elements:\n"
            "        Application/Product: lTagID=7, TagVersion=4.7\n"
            "    Drawing.dat, bytes 3, nothing that is known\n");
  const Json json = Json::parse(ContentAsJson(content, "tag.blb", 9));
  EXPECT_EQ(json["file"], "tag.blb");
  EXPECT_EQ(json["bytes"], 9);
  EXPECT_EQ(json["kind"], "stored-tag-data");
  EXPECT_EQ(json["entries"][0]["elements"][0]["path"], "Application/Product");
}

}  // namespace
}  // namespace parvex::cli
