#include "cli/quote/quote_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "codec/bin_encoder.h"
#include "formats/zip/zip_writer.h"
#include "tests/unit/cli/quote/sample_quote.h"

namespace parvex::cli {
namespace {

using SortedJson = nlohmann::json;
using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

// "path: type", a line for each member; the items of a list share one path.
void List(const SortedJson& json, const std::string& path, std::set<std::string>& lines) {
  lines.insert(path + ": " + json.type_name());
  if (json.is_object()) {
    for (const auto& [name, value] : json.items()) {
      List(value, path + "/" + name, lines);
    }
  } else if (json.is_array()) {
    for (const SortedJson& value : json) {
      List(value, path + "[]", lines);
    }
  }
}

std::set<std::string> MembersOf(const std::string& json) {
  std::set<std::string> lines;
  List(SortedJson::parse(json), "", lines);
  return lines;
}

std::string QuoteAsJson(const Quote& quote, const std::string& fileName) {
  std::string json;
  WriteQuoteJson(quote, fileName, [&json](std::string_view piece) { json += piece; });
  return json;
}

std::string Archive(const std::string& tag, const std::string& other) {
  ZipWriter writer;
  writer.Add("Tag", tag, true);
  writer.Add(other, "x", true);
  return EncodeBase64(writer.Finish());
}

// Two quotes that differ in every way that is told.
Quote Earlier() {
  Quote quote = SampleQuote();
  quote.tags[0].storedData = Archive("<P v='1'><Q/></P>", "old");
  return quote;
}

Quote Later() {
  Quote quote = Earlier();
  quote.project = "Lakeside";
  quote.tags[0].storedData = Archive("<P v='2'><R/></P>", "new");
  quote.tags[0].units[0].price = "call us";
  quote.tags[0].units[0].components[0].quantity = "3";
  quote.tags[0].units.push_back(SampleQuote().tags[0].units[0]);
  quote.tags[0].units[1].partNumber = "OTHER";
  quote.tags[0].units[1].sequence = "2";
  quote.tags[1].markFor = "AHU-7";
  return quote;
}

std::string Compared() {
  std::string json;
  WriteComparisonJson(Earlier(), "a.xml", Later(), "b.xml", Compare(Earlier(), Later()),
                      [&json](std::string_view piece) { json += piece; });
  return json;
}

// Programs of other people read these members: what stands here is not renamed, removed or given another type.
const std::vector<std::string> kQuoteMembers = {
    ": object",
    "/file: string",
    "/project: string",
    "/tags: array",
    "/tags[]: object",
    "/tags[]/buildVersion: string",
    "/tags[]/markFor: string",
    "/tags[]/number: number",
    "/tags[]/pdsg: string",
    "/tags[]/storedBytes: number",
    "/tags[]/storedData: string",
    "/tags[]/tagId: string",
    "/tags[]/total: object",
    "/tags[]/total/amount: string",
    "/tags[]/total/unknown: number",
    "/tags[]/units: array",
    "/tags[]/units[]: object",
    "/tags[]/units[]/amount: null",
    "/tags[]/units[]/amount: string",
    "/tags[]/units[]/attributes: array",
    "/tags[]/units[]/attributes[]: object",
    "/tags[]/units[]/attributes[]/element: string",
    "/tags[]/units[]/attributes[]/name: string",
    "/tags[]/units[]/attributes[]/value: string",
    "/tags[]/units[]/components: array",
    "/tags[]/units[]/components[]: object",
    "/tags[]/units[]/components[]/amount: string",
    "/tags[]/units[]/components[]/description: string",
    "/tags[]/units[]/components[]/number: number",
    "/tags[]/units[]/components[]/partNumber: string",
    "/tags[]/units[]/components[]/preOrder: string",
    "/tags[]/units[]/components[]/price: string",
    "/tags[]/units[]/components[]/quantity: string",
    "/tags[]/units[]/components[]/supplier: string",
    "/tags[]/units[]/components[]/type: string",
    "/tags[]/units[]/components[]/typeOfSale: string",
    "/tags[]/units[]/descriptions: array",
    "/tags[]/units[]/descriptions[]: string",
    "/tags[]/units[]/etoDescription: string",
    "/tags[]/units[]/number: number",
    "/tags[]/units[]/orderConfiguration: string",
    "/tags[]/units[]/partNumber: string",
    "/tags[]/units[]/price: string",
    "/tags[]/units[]/quantity: string",
    "/tags[]/units[]/sequence: string",
    "/tags[]/units[]/total: object",
    "/tags[]/units[]/total/amount: string",
    "/tags[]/units[]/total/unknown: number",
    "/total: object",
    "/total/amount: string",
    "/total/unknown: number",
};

const std::vector<std::string> kComparisonMembers = {
    ": object",
    "/after: object",
    "/before: object",
    "/differences: array",
    "/differences[]: object",
    "/differences[]/after: null",
    "/differences[]/after: string",
    "/differences[]/before: null",
    "/differences[]/before: string",
    "/differences[]/item: string",
    "/differences[]/kind: string",
    "/differences[]/placeAfter: object",
    "/differences[]/placeAfter/component: null",
    "/differences[]/placeAfter/component: number",
    "/differences[]/placeAfter/tag: null",
    "/differences[]/placeAfter/tag: number",
    "/differences[]/placeAfter/unit: null",
    "/differences[]/placeAfter/unit: number",
    "/differences[]/placeBefore: object",
    "/differences[]/placeBefore/component: null",
    "/differences[]/placeBefore/component: number",
    "/differences[]/placeBefore/tag: null",
    "/differences[]/placeBefore/tag: number",
    "/differences[]/placeBefore/unit: null",
    "/differences[]/placeBefore/unit: number",
    "/differences[]/stored: null",
    "/differences[]/stored: object",
    "/differences[]/stored/entries: array",
    "/differences[]/stored/entries[]: object",
    "/differences[]/stored/entries[]/bytesAfter: null",
    "/differences[]/stored/entries[]/bytesAfter: number",
    "/differences[]/stored/entries[]/bytesBefore: null",
    "/differences[]/stored/entries[]/bytesBefore: number",
    "/differences[]/stored/entries[]/contents: array",
    "/differences[]/stored/entries[]/contents[]: object",
    "/differences[]/stored/entries[]/contents[]/after: null",
    "/differences[]/stored/entries[]/contents[]/after: string",
    "/differences[]/stored/entries[]/contents[]/before: null",
    "/differences[]/stored/entries[]/contents[]/before: string",
    "/differences[]/stored/entries[]/contents[]/kind: string",
    "/differences[]/stored/entries[]/contents[]/path: string",
    "/differences[]/stored/entries[]/kind: string",
    "/differences[]/stored/entries[]/name: string",
    "/differences[]/stored/entries[]/note: string",
    "/differences[]/stored/note: string",
    "/differences[]/total: null",
    "/differences[]/total: object",
    "/differences[]/total/amount: string",
    "/differences[]/total/unknown: number",
    "/differences[]/what: string",
    "/differences[]/where: string",
    "/tags: object",
    "/tags/added: object",
    "/tags/added/count: number",
    "/tags/added/total: object",
    "/tags/added/total/amount: string",
    "/tags/added/total/unknown: number",
    "/tags/removed: object",
    "/tags/removed/count: number",
    "/tags/removed/total: object",
    "/tags/removed/total/amount: string",
    "/tags/removed/total/unknown: number",
    "/total: object",
    "/total/after: object",
    "/total/after/amount: string",
    "/total/after/unknown: number",
    "/total/before: object",
    "/total/before/amount: string",
    "/total/before/unknown: number",
    "/total/change: string",
    "/units: object",
    "/units/added: object",
    "/units/added/count: number",
    "/units/added/total: object",
    "/units/added/total/amount: string",
    "/units/added/total/unknown: number",
    "/units/removed: object",
    "/units/removed/count: number",
    "/units/removed/total: object",
    "/units/removed/total/amount: string",
    "/units/removed/total/unknown: number",
};

TEST(QuoteJson, HasTheMembersThatArePromised) {
  EXPECT_THAT(MembersOf(QuoteAsJson(Later(), "b.xml")), UnorderedElementsAreArray(kQuoteMembers));
}

TEST(QuoteJson, OfTwoQuotesHasTheMembersThatArePromised) {
  std::set<std::string> members = MembersOf(Compared());
  const auto isOfAQuote = [](const std::string& line) {
    return line.starts_with("/before/") || line.starts_with("/after/");
  };
  std::erase_if(members, isOfAQuote);
  EXPECT_THAT(members, UnorderedElementsAreArray(kComparisonMembers));
  const SortedJson both = SortedJson::parse(Compared());
  EXPECT_EQ(both["before"], SortedJson::parse(QuoteAsJson(Earlier(), "a.xml")));
  EXPECT_EQ(both["after"], SortedJson::parse(QuoteAsJson(Later(), "b.xml")));
}

TEST(QuoteJson, WritesAmountsAsTextsWithTwoDecimalsAndNoGroups) {
  SortedJson json = SortedJson::parse(QuoteAsJson(SampleQuote(), "q.xml"));
  EXPECT_EQ(json["total"], SortedJson({{"amount", "8570.50"}, {"unknown", 0}}));
  EXPECT_EQ(json["tags"][0]["units"][0]["amount"], "8450.00");
  EXPECT_EQ(json["tags"][0]["units"][0]["components"][1]["amount"], "100.00");
  EXPECT_EQ(json["tags"][0]["units"][0]["components"][1]["price"], "100") << "a price stands as it is in the document";
  json = SortedJson::parse(QuoteAsJson(Later(), "q.xml"));
  EXPECT_EQ(json["tags"][0]["units"][0]["amount"], SortedJson()) << "what is no number comes to nothing";
  EXPECT_EQ(json["tags"][0]["total"]["unknown"], 1);
}

TEST(QuoteJson, LosesNothingOfAQuote) {
  const SortedJson tag = SortedJson::parse(QuoteAsJson(SampleQuote(), "q.xml"))["tags"][0];
  EXPECT_EQ(tag["number"], 1);
  EXPECT_EQ(tag["tagId"], "1101");
  EXPECT_EQ(tag["storedData"], "TWFu");
  EXPECT_EQ(tag["storedBytes"], 3);
  EXPECT_EQ(tag["units"][0]["orderConfiguration"], "<SAPDATA/>");
  EXPECT_EQ(tag["units"][0]["descriptions"], SortedJson({"double-wall"}));
  EXPECT_EQ(tag["units"][0]["components"][1]["preOrder"], "1");
}

TEST(QuoteJson, TellsOfEachDifferenceWhatItIsAndWhere) {
  const SortedJson json = SortedJson::parse(Compared());
  std::vector<std::string> lines;
  for (const SortedJson& difference : json["differences"]) {
    lines.push_back(difference["kind"].get<std::string>() + " " + difference["item"].get<std::string>() + " " +
                    difference["placeBefore"].dump() + " " + difference["placeAfter"].dump());
  }
  const std::string nowhere = R"({"component":null,"tag":null,"unit":null})";
  const std::string tag = R"({"component":null,"tag":1,"unit":null})";
  const std::string unit = R"({"component":null,"tag":1,"unit":1})";
  EXPECT_THAT(lines, ElementsAre("changed project " + nowhere + " " + nowhere,
                                 R"(removed tag {"component":null,"tag":2,"unit":null} )" + nowhere,
                                 "changed tag " + tag + " " + tag, "changed unit " + unit + " " + unit,
                                 R"(changed component {"component":1,"tag":1,"unit":1} )"
                                 R"({"component":1,"tag":1,"unit":1})",
                                 "added unit " + tag + R"( {"component":null,"tag":1,"unit":2})",
                                 "added tag " + nowhere + R"( {"component":null,"tag":2,"unit":null})"));
  EXPECT_EQ(json["total"]["change"], "130.75");
  EXPECT_EQ(json["differences"][2]["stored"]["entries"][0]["contents"][0],
            SortedJson({{"kind", "changed"}, {"path", "P/@v"}, {"before", "1"}, {"after", "2"}}));
}

TEST(QuoteJson, IsLaidOutInTwoBlanksALevel) {
  EXPECT_EQ(QuoteAsJson(Quote(), "a"),
            "{\n"
            "  \"file\": \"a\",\n"
            "  \"project\": \"\",\n"
            "  \"total\": {\n"
            "    \"amount\": \"0.00\",\n"
            "    \"unknown\": 0\n"
            "  },\n"
            "  \"tags\": []\n"
            "}\n");
  EXPECT_EQ(Compared(), nlohmann::ordered_json::parse(Compared()).dump(2) + "\n");
}

TEST(QuoteJson, OfALargeQuoteComesInPieces) {
  Quote quote = SampleQuote();
  quote.tags[0].units[0].components.resize(10'000);
  std::size_t longest = 0;
  std::string json;
  WriteQuoteJson(quote, "q.xml", [&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    json += piece;
  });
  EXPECT_LT(longest, 100'000u);
  EXPECT_GT(json.size(), 2'000'000u);
  EXPECT_EQ(SortedJson::parse(json)["tags"][0]["units"][0]["components"].size(), 10'000u);
}

TEST(QuoteJson, TakesWhatIsNoUtf8) {
  Quote quote = SampleQuote();
  quote.project = "\xFF";
  EXPECT_EQ(SortedJson::parse(QuoteAsJson(quote, "\xFE"))["project"], "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace parvex::cli
