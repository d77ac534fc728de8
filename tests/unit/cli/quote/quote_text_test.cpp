#include "cli/quote/quote_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/unit/cli/quote/sample_quote.h"

namespace parvex::cli {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(QuoteText, ShowsTagsUnitsAndComponentsWithWhatTheyComeTo) {
  EXPECT_EQ(QuoteAsText(SampleQuote(), false),
            "Riverside: 2 tags, 1 base unit, 8,570.50\n"
            "\n"
            "1. AHU-1  8,570.50\n"
            "   PDSG RTU47, tag id 1101, build version 4.7, stored data 3 bytes\n"
            "   Base unit 1  RTUA120  1 x 8,450.00 = 8,450.00\n"
            "     double-wall\n"
            "     brand KV, tons 10\n"
            "     order configuration: 10 characters\n"
            "       ACCESSORY  CURB-1  2 x   10.25   20.50  KV  roof curb\n"
            "       WARRANTY   W5      1 x  100.00  100.00      five years (ordered ahead)\n"
            "\n"
            "2. AHU-2  0.00\n"
            "   PDSG WSH47, tag id 1102, build version unknown, stored data none\n");
}

TEST(QuoteText, OfAnEmptyQuoteIsOneLine) { EXPECT_EQ(QuoteAsText(Quote(), false), ": 0 tags, 0 base units, 0.00\n"); }

TEST(QuoteText, CountsPricesThatAreNoNumbers) {
  Quote quote = SampleQuote();
  quote.tags[0].units[0].components[0].price = "call us";
  EXPECT_THAT(QuoteAsText(quote, false), StartsWith("Riverside: 2 tags, 1 base unit, 8,550.00 without 1 line whose "
                                                    "price is no number\n"));
  EXPECT_THAT(QuoteAsText(quote, false), HasSubstr("2 x  call us       ?  KV  roof curb\n"));
  quote.tags[0].units[0].quantity = "one";
  EXPECT_THAT(QuoteAsText(quote, false), HasSubstr("1. AHU-1  100.00 without 2 lines whose price is no number\n"));
  EXPECT_THAT(QuoteAsText(quote, false), HasSubstr("one x 8,450.00 = ?\n"));
}

TEST(QuoteText, AlignsColumnsByCharactersAndNotByBytes) {
  Quote quote = SampleQuote();
  quote.tags[0].units[0].components[0].partNumber = "\xC3\x84\xC3\x96\xE2\x82\xAC\xF0\x9F\x91\x82-1";
  EXPECT_THAT(QuoteAsText(quote, false),
              HasSubstr("       ACCESSORY  \xC3\x84\xC3\x96\xE2\x82\xAC\xF0\x9F\x91\x82-1  2 x"));
  EXPECT_THAT(QuoteAsText(quote, false), HasSubstr("       WARRANTY   W5      1 x"));
}

TEST(QuoteText, ShowsWhatAComponentLacksAsNothing) {
  Quote quote = SampleQuote();
  quote.tags[0].units[0].components = {QuoteComponent()};
  EXPECT_THAT(QuoteAsText(quote, false), HasSubstr("\n            x    0.00\n"));
}

// Every text of the quote tries to clear the screen and to begin a line of its own.
TEST(QuoteText, LetsNoTextOfTheQuoteControlTheTerminal) {
  const std::string ugly = "\x1B[2J\r\nFAKE: 0 tags\xE2\x80\xAE";
  const QuoteComponent component{ugly, ugly, ugly, ugly, ugly, ugly, ugly, ugly};
  const QuoteUnit unit{ugly, ugly, ugly, ugly, {ugly}, {{ugly, ugly}}, ugly, ugly, {component}};
  const QuoteTag tag{ugly, ugly, ugly, ugly, ugly, {unit}};
  const std::string text = QuoteAsText({ugly, {tag}}, false);
  EXPECT_THAT(text, Not(HasSubstr("\x1B")));
  EXPECT_THAT(text, Not(HasSubstr("\r")));
  EXPECT_THAT(text, Not(HasSubstr("\nFAKE")));
  EXPECT_THAT(text, Not(HasSubstr("\xE2\x80\xAE")));
  // The project, an empty line, tag, its data, unit, description, attributes, ETO, configuration and component.
  EXPECT_EQ(std::ranges::count(text, '\n'), 10);
}

TEST(QuoteText, IsColouredOnlyWhereColoursAreTaken) {
  const std::string coloured = QuoteAsText(SampleQuote(), true);
  EXPECT_THAT(coloured, HasSubstr("\x1B[1mAHU-1\x1B[0m"));
  EXPECT_THAT(coloured, HasSubstr("\x1B[1mRTUA120\x1B[0m"));
  EXPECT_THAT(QuoteAsText(SampleQuote(), false), Not(HasSubstr("\x1B")));
}

TEST(DifferencesText, SaysThatThereAreNone) { EXPECT_EQ(DifferencesAsText({}, true), "No differences.\n"); }

TEST(DifferencesText, MarksWhatWasAddedRemovedAndChanged) {
  EXPECT_EQ(DifferencesAsText({{"tag A", "", std::nullopt, "RTU47"},
                               {"tag B", "", "WSH47", std::nullopt},
                               {"tag C", "price", "1", "2"},
                               {"", "project", "Old", ""}},
                              false),
            "4 differences\n"
            "+ tag A  RTU47\n"
            "- tag B  WSH47\n"
            "~ tag C: price  \"1\" -> \"2\"\n"
            "~ project  \"Old\" -> \"\"\n");
  EXPECT_THAT(DifferencesAsText({{"tag A", "", std::nullopt, ""}}, false), StartsWith("1 difference\n+ tag A"));
}

TEST(DifferencesText, LetsNoValueControlTheTerminal) {
  const std::string ugly = "\x1B[31m\n+ tag FAKE";
  const std::string text = DifferencesAsText(
      {{ugly, ugly, ugly, ugly}, {ugly, "", std::nullopt, ugly}, {ugly, "", ugly, std::nullopt}}, false);
  EXPECT_THAT(text, Not(HasSubstr("\x1B")));
  EXPECT_EQ(std::ranges::count(text, '\n'), 4);
}

TEST(DifferencesText, ColoursWholeLines) {
  const std::string text =
      DifferencesAsText({{"a", "", std::nullopt, "x"}, {"b", "", "x", std::nullopt}, {"c", "d", "x", "y"}}, true);
  EXPECT_EQ(text,
            "3 differences\n"
            "\x1B[32m+ a  x\x1B[0m\n"
            "\x1B[31m- b  x\x1B[0m\n"
            "\x1B[33m~ c: d  \"x\" -> \"y\"\x1B[0m\n");
}

TEST(DifferencesText, ShowsWhatDiffersInStoredDataBelowThem) {
  Difference difference{"tag A", "stored data", "8 characters of Base64", "none"};
  difference.stored = {{{"Tag", 10, 11, {{"P/@v", "1", std::string(300, 'x')}, {"P/Q", std::nullopt, "\x1B"}}},
                        {"a.dat", 1, 2, {}, "no text"},
                        {"b.dat", 1, std::nullopt},
                        {"c.dat", std::nullopt, 2}}};
  EXPECT_EQ(DifferencesAsText({difference}, false),
            "1 difference\n"
            "~ tag A: stored data  \"8 characters of Base64\" -> \"none\"\n"
            "    ~ Tag  10 -> 11 bytes\n"
            "        ~ P/@v  \"1\" -> \"" +
                std::string(200, 'x') +
                "\xE2\x80\xA6\"\n"
                "        + P/Q  \"\xEF\xBF\xBD\"\n"
                "    ~ a.dat  1 -> 2 bytes; no text\n"
                "    - b.dat  1 byte\n"
                "    + c.dat  2 bytes\n");
  difference.stored = {{}, "not looked into: no archive"};
  EXPECT_THAT(DifferencesAsText({difference}, false), testing::EndsWith("\n    not looked into: no archive\n"));
}

TEST(ComparisonText, EndsWithWhatTheQuotesComeTo) {
  Quote after = SampleQuote();
  after.tags[1] = after.tags[0];
  after.tags[1].markFor = "AHU-7";
  after.tags[1].buildVersion = "";
  after.tags[1].units[0].components[0].price = "call us";
  after.tags[0].units[0].components.pop_back();
  EXPECT_EQ(ComparisonAsText(Compare(SampleQuote(), after), false),
            "3 differences\n"
            "- tag AHU-2  WSH47  0.00\n"
            "- tag AHU-1, base unit 1, WARRANTY W5  five years  100.00\n"
            "+ tag AHU-7  RTU47  8,550.00 without 1 line whose price is no number\n"
            "\n"
            "total before  8,570.50\n"
            "total after   17,020.50 without 1 line whose price is no number\n"
            "change        +8,450.00\n"
            "1 tag added, together 8,550.00 without 1 line whose price is no number\n"
            "1 tag removed, together 0.00\n");
  EXPECT_EQ(ComparisonAsText(Compare(after, after), false), "No differences.\n");
}

TEST(TotalText, TellsOfPricesThatAreNoNumbers) {
  EXPECT_EQ(TotalText({123450, 0}), "1,234.50");
  EXPECT_EQ(TotalText({0, 1}), "0.00 without 1 line whose price is no number");
  EXPECT_EQ(TotalText({-100, 2}), "-1.00 without 2 lines whose price is no number");
}

}  // namespace
}  // namespace parvex::cli
