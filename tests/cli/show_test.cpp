#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "formats/zip/zip_writer.h"
#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A quote document with one tag; each part can be replaced.
struct Parts {
  std::string project = "P";
  std::string tagId = "7";
  std::string markFor = "M-1";
  std::string blob = "AAEC";
  std::string unit = R"(PARTNUMBER="U1" QUANTITY="2" PRICE="10.50" SEQUENCE="1")";
  std::string attributes = "<SUPPLIER>Korvane</SUPPLIER><ETO ETODESCRIPTION=\"\">0</ETO>";
  std::string components = R"(<COMPONENT TYPE="ACCESSORY" PARTNUMBER="A1" QUANTITY="1" PRICE="3"/>)";
  std::string orderConfiguration = {};
  std::string moreTags = {};
};

std::string Document(const Parts& parts) {
  return "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"" + parts.project +
         "\"/></ATTRIBUTES_LIST><TAGS><TAG><ATTRIBUTES_LIST><BUILDVERSION>4.7</BUILDVERSION><MARKFOR>" + parts.markFor +
         "</MARKFOR><PDSG>RTU47</PDSG><LEGACY_TAGID>" + parts.tagId + "</LEGACY_TAGID><BLOB>" + parts.blob +
         "</BLOB></ATTRIBUTES_LIST><BASEUNITS><BASEUNIT " + parts.unit +
         "><EXTENDED_DESCRIPTIONS><DESCRIPTION>Rooftop</DESCRIPTION></EXTENDED_DESCRIPTIONS><ATTRIBUTES_LIST>" +
         parts.attributes + "</ATTRIBUTES_LIST><COMPONENTS>" + parts.components + "</COMPONENTS><SAP_XML>" +
         parts.orderConfiguration + "</SAP_XML></BASEUNIT></BASEUNITS></TAG>" + parts.moreTags + "</TAGS></PROJECT>";
}

class Show : public testing::Test {
 protected:
  Outcome Of(const std::string& document) const { return RunParvex({"show", "-"}, {.input = document}); }
  Outcome Of(const Parts& parts) const { return Of(Document(parts)); }
  Outcome Compared(const std::string& before, const std::string& after, std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"show", Write("before.xml", before), Write("after.xml", after)});
    return RunParvex(arguments);
  }
  Outcome Compared(const Parts& after) const { return Compared(Document({}), Document(after)); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    WriteHostFile(folder_.Path() / name, bytes);
    return (folder_.Path() / name).string();
  }
  const std::filesystem::path& Folder() const { return folder_.Path(); }
  std::string Page() const { return ReadHostFile(folder_.Path() / "page.html"); }
  std::string PageName() const { return (folder_.Path() / "page.html").string(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(Show, TellsTagsUnitsComponentsPricesAndWhetherThereIsStoredData) {
  const Outcome outcome = Of(Parts{.orderConfiguration = "<![CDATA[<x/>]]>"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "P: 1 tag, 1 base unit, 24.00\n"
            "\n"
            "1. M-1  24.00\n"
            "   PDSG RTU47, tag id 7, build version 4.7, stored data 3 bytes\n"
            "   Base unit 1  U1  2 x 10.50 = 21.00\n"
            "     Rooftop\n"
            "     brand Korvane, engineered to order no\n"
            "     order configuration: 4 characters\n"
            "       ACCESSORY  A1  1 x  3.00  3.00\n");
  EXPECT_THAT(Of(Parts{.blob = ""}).out, HasSubstr("stored data none"));
}

TEST_F(Show, AddsUpWhatIsANumberAndSaysHowManyPricesAreNone) {
  const std::tuple<const char*, const char*, const char*> cases[] = {{"1.005", "1", "1.01"},
                                                                     {"-1.005", "1", "-1.01"},
                                                                     {"1.004999", "1", "1.00"},
                                                                     {"1234567.891", "2", "2,469,135.78"},
                                                                     {"", "2", "0.00"},
                                                                     {"0.1", "3", "0.30"},
                                                                     {"999.995", "1", "1,000.00"},
                                                                     {"10", "1.5", "15.00"},
                                                                     {"on request", "1", "?"},
                                                                     {"1,200", "1", "?"},
                                                                     {"inf", "1", "?"},
                                                                     {"1e5", "1", "?"},
                                                                     {"9999999999999", "1", "?"},
                                                                     {"5", "two", "?"}};
  for (const auto& [price, quantity, amount] : cases) {
    const std::string unit =
        std::string("PARTNUMBER='U' QUANTITY='") + quantity + "' PRICE='" + price + "' SEQUENCE='1'";
    const std::string text = Of(Parts{.unit = unit, .components = ""}).out;
    EXPECT_THAT(text, HasSubstr(std::string(" = ") + amount + "\n"));
    const bool isNumber = std::string(amount) != "?";
    EXPECT_THAT(text, HasSubstr(std::string("1 base unit, ") +
                                (isNumber ? amount : "0.00 without 1 line whose price is no number") + "\n"));
  }
}

TEST_F(Show, GivesTheTerminalNothingThatControlsIt) {
  const std::string text = Of(Parts{.markFor = "A\xC2\x9B"
                                               "31mB\tC\xE2\x80\xAE"
                                               "D\x7F"})
                               .out;
  EXPECT_THAT(text, HasSubstr("A\xEF\xBF\xBD"
                              "31mB C\xEF\xBF\xBD"
                              "D\xEF\xBF\xBD"));
}

TEST_F(Show, TakesADocumentWithNothingInIt) {
  EXPECT_EQ(Of("<PROJECT/>").out, ": 0 tags, 0 base units, 0.00\n");
  EXPECT_EQ(Of("<PROJECT><TAGS><TAG/><TAG><BASEUNITS><BASEUNIT/></BASEUNITS></TAG></TAGS></PROJECT>").status, 0);
}

TEST_F(Show, OfWhatIsNoHybrisDocumentIsWrongUsage) {
  for (const std::string& text : {std::string(), std::string("<TAG/>"), std::string("<PROJECT>"), FailedReply()}) {
    const Outcome outcome = Of(text);
    EXPECT_EQ(outcome.status, 2) << text;
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(RunParvex({"show", "nowhere.xml"}).status, 2);
  EXPECT_EQ(RunParvex({"show", "a", "b", "c"}).status, 2);
}

TEST_F(Show, ColoursOnATerminalUnlessToldNotTo) {
  const std::string file = Write("q.xml", Document({}));
  const auto shown = [&](const std::string& noColour) {
    return RunParvex({"show", file}, {.environment = {{"TERM", "xterm"}, {"NO_COLOR", noColour}}, .onTerminal = true})
        .err;
  };
  EXPECT_THAT(shown(""), HasSubstr("\x1b[1mM-1\x1b[0m"));
  EXPECT_THAT(shown("1"), AllOf(HasSubstr("M-1"), Not(HasSubstr("\x1b"))));
}

TEST_F(Show, OfTwoDocumentsTellsEveryValueThatChanged) {
  const std::pair<Parts, const char*> cases[] = {
      {{.project = "Q"}, "~ project  \"P\" -> \"Q\"\n"},
      {{.tagId = "8"}, "~ tag M-1: tag id  \"7\" -> \"8\"\n"},
      {{.markFor = "M-2"}, "~ tag M-1: mark-for  \"M-1\" -> \"M-2\"\n"},
      {{.blob = ""},
       "~ tag M-1: stored data  \"4 characters of Base64\" -> \"none\"\n"
       "    not looked into: no archive that holds something\n"},
      {{.blob = "AAED"},
       "~ tag M-1: stored data  \"4 characters of Base64\" -> \"4 characters of Base64\"\n"
       "    not looked into: no archive that holds something\n"},
      {{.unit = R"(PARTNUMBER="U1" QUANTITY="3" PRICE="10.50" SEQUENCE="1")"},
       "~ tag M-1, base unit 1: quantity  \"2\" -> \"3\"\n"},
      {{.unit = R"(PARTNUMBER="U9" QUANTITY="2" PRICE="10.50" SEQUENCE="1")"},
       "~ tag M-1, base unit 1: part number  \"U1\" -> \"U9\"\n"},
      {{.attributes = "<SUPPLIER>QZN</SUPPLIER><ETO ETODESCRIPTION=\"\">0</ETO>"},
       "~ tag M-1, base unit 1: brand  \"Korvane\" -> \"QZN\"\n"},
      {{.attributes = "<SUPPLIER>Korvane</SUPPLIER><ETO ETODESCRIPTION=\"Low\">0</ETO>"},
       "~ tag M-1, base unit 1: ETO description  \"\" -> \"Low\"\n"},
      {{.orderConfiguration = "abc"}, "~ tag M-1, base unit 1: order configuration  \"none\" -> \"3 characters\"\n"},
      {{.components = ""}, "- tag M-1, base unit 1, ACCESSORY A1  3.00\n"},
      {{.components = R"(<COMPONENT TYPE="ACCESSORY" PARTNUMBER="A1" QUANTITY="1" PRICE="4"/>)"},
       "~ tag M-1, base unit 1, ACCESSORY A1: price  \"3\" -> \"4\"\n"},
      {{.moreTags = "<TAG><ATTRIBUTES_LIST><MARKFOR>N</MARKFOR><PDSG>AHE47</PDSG></ATTRIBUTES_LIST></TAG>"},
       "+ tag N  AHE47  0.00\n"},
  };
  for (const auto& [after, line] : cases) {
    const Outcome outcome = Compared(after);
    EXPECT_EQ(outcome.status, 1) << outcome.err;
    EXPECT_THAT(outcome.out,
                StartsWith(std::string("1 difference\n") + line + "\ntotal before  24.00\ntotal after   "));
  }
}

TEST_F(Show, OfTwoDocumentsThatSayTheSameEndsWith0) {
  const Outcome outcome = Compared(Parts{});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "No differences.\n");
}

TEST_F(Show, OfTwoDocumentsFindsTheSameItemsWhateverTheirOrder) {
  const std::string a = R"(<COMPONENT TYPE="ACCESSORY" PARTNUMBER="A1" QUANTITY="1" PRICE="3"/>)";
  const std::string dear = R"(<COMPONENT TYPE="ACCESSORY" PARTNUMBER="A1" QUANTITY="1" PRICE="9"/>)";
  const std::string other = R"(<COMPONENT TYPE="WARRANTY" PARTNUMBER="A1" QUANTITY="1" PRICE="3"/>)";
  EXPECT_EQ(Compared(Document({.components = a + dear + other}), Document({.components = other + dear + a})).status, 0);
  EXPECT_THAT(Compared(Document({.components = a + dear}), Document({.components = dear})).out,
              AllOf(StartsWith("1 difference\n- "), HasSubstr("ACCESSORY A1")))
      << "the one that is still there is not the one that went";

  const std::string tag = "<TAG><ATTRIBUTES_LIST><MARKFOR>M-1</MARKFOR><PDSG>X</PDSG></ATTRIBUTES_LIST></TAG>";
  EXPECT_THAT(Compared(Document({.moreTags = tag}), Document({.moreTags = tag + tag})).out,
              StartsWith("1 difference\n+ tag M-1  X  0.00\n\n"));
}

// Runs of the program count the ids of tags without stored data from 1, in the order of the export.
TEST_F(Show, OfTwoExportsTakesNoTagForAnotherOfTheSameCountedId) {
  ASSERT_EQ(RunParvex({"machine", "create", (Folder() / "machine").string()}).status, 0);
  std::filesystem::remove(Folder() / "machine/drive_c/Korvane/TQ5-VX/Projects/Riverside Clinic/project.mdb");
  const auto exported = [&](const std::string& name, std::vector<std::string> tags) {
    std::vector<std::string> arguments = {
        "--machine", (Folder() / "machine").string(), "export", "--project", "Riverside Clinic",
        "-o",        (Folder() / name).string(),      "--tags"};
    arguments.insert(arguments.end(), tags.begin(), tags.end());
    EXPECT_EQ(RunParvex(arguments).status, 0);
    return (Folder() / name).string();
  };
  const std::string before = exported("before.xml", {"SS-2", "HP-7"});
  const std::string after = exported("after.xml", {"HP-7", "SS-2", "RTU-1"});
  EXPECT_THAT(RunParvex({"show", before}).out, HasSubstr("PDSG SD347, tag id 1,"));
  EXPECT_THAT(RunParvex({"show", after}).out, HasSubstr("PDSG WSH47, tag id 1,"));
  const Outcome outcome = RunParvex({"show", before, after});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            "1 difference\n"
            "+ tag RTU-1  RTU47  59,110.00\n"
            "\n"
            "total before  44,655.00\n"
            "total after   103,765.00\n"
            "change        +59,110.00\n"
            "1 tag added, together 59,110.00\n");
}

TEST_F(Show, OfStoredDataThatDifferTellsTheEntriesAndTheirXml) {
  const auto blob = [](const std::string& version, const std::string& drawing) {
    ZipWriter archive;
    archive.Add("Tag", "<Application><Product TagVersion=\"" + version + "\"/></Application>", true);
    archive.Add(drawing, "outline", true);
    return EncodeBase64(archive.Finish());
  };
  const Outcome outcome =
      Compared(Document({.blob = blob("4.7", "a.dat")}), Document({.blob = blob("4.8.1", "b.dat")}));
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("\n"
                                     "    ~ Tag  54 -> 56 bytes\n"
                                     "        ~ Application/Product/@TagVersion  \"4.7\" -> \"4.8.1\"\n"
                                     "    - a.dat  7 bytes\n"
                                     "    + b.dat  7 bytes\n"));
}

TEST_F(Show, WritesTheQuoteAndTheDifferencesAsJson) {
  const std::string before = Write("before.xml", Document({.markFor = "A\xC2\x9B"
                                                                      "1"}));
  const std::string after = Write("after.xml", Document({.components = ""}));
  const Outcome one = RunParvex({"show", "--json", before});
  EXPECT_EQ(one.status, 0) << one.err;
  EXPECT_THAT(one.out, AllOf(HasSubstr(R"("markFor": "A\u009B1")"), HasSubstr(R"("amount": "24.00")")))
      << "what would control a terminal is written as an escape sequence of JSON";
  const nlohmann::json quote = nlohmann::json::parse(one.out);
  EXPECT_EQ(quote["file"], before);
  EXPECT_EQ(quote["tags"][0]["units"][0]["attributes"][1],
            nlohmann::json({{"element", "ETO"}, {"name", "engineered to order"}, {"value", "no"}}));

  const Outcome both = RunParvex({"show", before, after, "--json"});
  EXPECT_EQ(both.status, 1) << both.err;
  EXPECT_EQ(nlohmann::json::parse(both.out)["before"], quote);
  EXPECT_EQ(nlohmann::json::parse(both.out)["differences"].size(), 2u);
  const Outcome same = RunParvex({"show", before, before, "--json"});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(nlohmann::json::parse(same.out)["differences"], nlohmann::json::array());
  EXPECT_EQ(RunParvex({"show", before, "--json", "--html", PageName()}).status, 2);
}

TEST_F(Show, WritesAPageThatNeedsNothingBesideIt) {
  const std::string file = Write("q.xml", Document({.project = "A &amp; B", .markFor = "&lt;script&gt;\"x"}));
  const Outcome outcome = RunParvex({"show", "--html", PageName(), file});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(Page(), StartsWith("<!DOCTYPE html>"));
  for (const char* part : {"<title>A &amp; B</title>", "1. &lt;script&gt;&quot;x", ">24.00<", "U1", "3 bytes"}) {
    EXPECT_THAT(Page(), HasSubstr(part));
  }
  for (const char* outside : {"<script", "http:", "https:", "src=", "url(", "@import", "<link"}) {
    EXPECT_THAT(Page(), Not(HasSubstr(outside)));
  }
  EXPECT_EQ(Page(), RunParvex({"show", file, "--html", "-"}).out);
}

TEST_F(Show, WritesAPageOfTheLaterDocumentWithWhatChanged) {
  const Outcome outcome =
      Compared(Document({}), Document({.project = "Later", .components = ""}), {"--html", PageName()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(Page(), AllOf(HasSubstr("<h1>Later</h1>"), HasSubstr("2 differences"), HasSubstr("<tr class=\"removed\""),
                            HasSubstr("before.xml")));
  EXPECT_EQ(Compared(Document({}), Document({}), {"--html", PageName()}).status, 0);
  EXPECT_THAT(Page(), HasSubstr("No differences"));
}

TEST_F(Show, IntoAFolderThatDoesNotExistIsWrongUsage) {
  EXPECT_EQ(RunParvex({"show", Write("q.xml", Document({})), "--html", PageName() + "/nowhere/p.html"}).status, 2);
}

}  // namespace
}  // namespace parvex::test
