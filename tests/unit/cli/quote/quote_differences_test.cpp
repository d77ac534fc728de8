#include "cli/quote/quote_differences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/cli/quote/sample_quote.h"

namespace parvex::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Shown(const std::optional<std::string>& value) { return value ? "\"" + *value + "\"" : "nothing"; }

// "where|what: before -> after", a line for each difference.
std::vector<std::string> Differences(const Quote& before, const Quote& after) {
  std::vector<std::string> lines;
  for (const Difference& one : Compare(before, after)) {
    lines.push_back(one.where + "|" + one.what + ": " + Shown(one.before) + " -> " + Shown(one.after));
  }
  return lines;
}

// What a change of the sample makes a difference in.
std::vector<std::string> AfterChange(const std::function<void(Quote&)>& change) {
  Quote after = SampleQuote();
  change(after);
  return Differences(SampleQuote(), after);
}

TEST(QuoteDifferences, AreNoneBetweenEqualQuotes) {
  EXPECT_THAT(Differences(SampleQuote(), SampleQuote()), IsEmpty());
  EXPECT_THAT(Differences(Quote(), Quote()), IsEmpty());
}

TEST(QuoteDifferences, AreNoneWhereOnlyTheOrderChanged) {
  EXPECT_THAT(AfterChange([](Quote& quote) {
                std::swap(quote.tags[0], quote.tags[1]);
                std::swap(quote.tags[1].units[0].components[0], quote.tags[1].units[0].components[1]);
                std::swap(quote.tags[1].units[0].attributes[0], quote.tags[1].units[0].attributes[1]);
              }),
              IsEmpty());
}

TEST(QuoteDifferences, NameTheProjectTheTagTheUnitAndTheComponent) {
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.project = "Lakeside";
                quote.tags[0].buildVersion = "4.8";
                quote.tags[0].units[0].price = "9000";
                quote.tags[0].units[0].components[0].quantity = "3";
              }),
              ElementsAre("|project: \"Riverside\" -> \"Lakeside\"", "tag AHU-1|build version: \"4.7\" -> \"4.8\"",
                          "tag AHU-1, base unit 1|price: \"8450.00\" -> \"9000\"",
                          "tag AHU-1, base unit 1, ACCESSORY CURB-1|quantity: \"2\" -> \"3\""));
}

TEST(QuoteDifferences, ToldOfAWholeItemAreItsSummary) {
  EXPECT_THAT(Differences(SampleQuote(), {.project = "Riverside", .tags = {}}),
              ElementsAre("tag AHU-1|: \"RTU47\" -> nothing", "tag AHU-2|: \"WSH47\" -> nothing"));
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[1].units = quote.tags[0].units; }),
              ElementsAre("tag AHU-2, base unit 1|: nothing -> \"RTUA120\""));
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[0].units[0].components.pop_back(); }),
              ElementsAre("tag AHU-1, base unit 1, WARRANTY W5|: \"five years\" -> nothing"));
}

// --- What belongs together ---

TEST(QuoteDifferences, FollowATagByItsIdWhateverItsName) {
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.tags[0].markFor = "AHU-9";
                quote.tags[0].pdsg = "XXX47";
              }),
              ElementsAre("tag AHU-1|mark-for: \"AHU-1\" -> \"AHU-9\"", "tag AHU-1|PDSG: \"RTU47\" -> \"XXX47\""));
}

TEST(QuoteDifferences, FollowATagByItsNameAndGroupWhenItsIdIsNew) {
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[0].legacyTagId = "7"; }),
              ElementsAre("tag AHU-1|tag id: \"1101\" -> \"7\""));
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.tags[1].legacyTagId = "7";
                quote.tags[1].pdsg = "XXX47";
              }),
              ElementsAre("tag AHU-2|: \"WSH47\" -> nothing", "tag AHU-2|: nothing -> \"XXX47\""));
}

TEST(QuoteDifferences, TakeNoTagsForTheSameBecauseTheyHaveNoId) {
  Quote before = SampleQuote();
  before.tags[0].legacyTagId = before.tags[1].legacyTagId = "";
  Quote after = before;
  std::swap(after.tags[0], after.tags[1]);
  EXPECT_THAT(Differences(before, after), IsEmpty());
}

TEST(QuoteDifferences, PairTheIdBeforeTheName) {
  // The second tag takes the first one's name; the first has another now.
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.tags[1].markFor = "AHU-1";
                quote.tags[1].pdsg = "RTU47";
                quote.tags[0].markFor = "AHU-3";
              }),
              ElementsAre("tag AHU-1|mark-for: \"AHU-1\" -> \"AHU-3\"", "tag AHU-2|mark-for: \"AHU-2\" -> \"AHU-1\"",
                          "tag AHU-2|PDSG: \"WSH47\" -> \"RTU47\""));
}

TEST(QuoteDifferences, FollowAUnitByItsPartNumberOrElseItsPlace) {
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[0].units[0].sequence = "2"; }), IsEmpty());
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[0].units[0].partNumber = "RTUA240"; }),
              ElementsAre("tag AHU-1, base unit 1|part number: \"RTUA120\" -> \"RTUA240\""));
}

TEST(QuoteDifferences, TellUnitsOfOnePartNumberApartByTheirPlace) {
  Quote before = SampleQuote();
  before.tags[0].units.push_back(before.tags[0].units[0]);
  before.tags[0].units[1].sequence = "2";
  Quote after = before;
  after.tags[0].units.erase(after.tags[0].units.begin());
  EXPECT_THAT(Differences(before, after), ElementsAre("tag AHU-1, base unit 1|: \"RTUA120\" -> nothing"));
}

TEST(QuoteDifferences, TellComponentsOfOnePartNumberApartByDescriptionAndPrice) {
  Quote before = SampleQuote();
  std::vector<QuoteComponent>& components = before.tags[0].units[0].components;
  components = {components[0], components[0]};
  components[0].description = "first";
  components[1].description = "second";
  Quote after = before;
  after.tags[0].units[0].components.erase(after.tags[0].units[0].components.begin());
  EXPECT_THAT(Differences(before, after),
              ElementsAre("tag AHU-1, base unit 1, ACCESSORY CURB-1|: \"first\" -> nothing"));
}

TEST(QuoteDifferences, CallAComponentWithoutATypeAComponent) {
  EXPECT_THAT(Differences(
                  [] {
                    Quote quote = SampleQuote();
                    quote.tags[0].units[0].components[0].type = "";
                    return quote;
                  }(),
                  [] {
                    Quote quote = SampleQuote();
                    quote.tags[0].units[0].components.erase(quote.tags[0].units[0].components.begin());
                    return quote;
                  }()),
              ElementsAre("tag AHU-1, base unit 1, component CURB-1|: \"roof curb\" -> nothing"));
}

// --- Values ---

TEST(QuoteDifferences, ShowAttributesThatCameAndWentAsEmpty) {
  EXPECT_THAT(
      AfterChange([](Quote& quote) {
        quote.tags[0].units[0].attributes = {{"brand", "XY"}, {"voltage", "460"}};
      }),
      ElementsAre("tag AHU-1, base unit 1|brand: \"KV\" -> \"XY\"", "tag AHU-1, base unit 1|tons: \"10\" -> \"\"",
                  "tag AHU-1, base unit 1|voltage: \"\" -> \"460\""));
}

TEST(QuoteDifferences, ShowTheLengthsOfLongTextsAlsoWhenTheyAreEqual) {
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.tags[0].storedData = "";
                quote.tags[0].units[0].orderConfiguration = "<SAPDATB/>";
              }),
              ElementsAre("tag AHU-1|stored data: \"4 characters of Base64\" -> \"none\"",
                          "tag AHU-1, base unit 1|order configuration: \"10 characters\" -> \"10 characters\""));
}

TEST(QuoteDifferences, JoinTheLinesOfADescription) {
  EXPECT_THAT(AfterChange([](Quote& quote) {
                quote.tags[0].units[0].descriptions = {"double-wall", "painted"};
              }),
              ElementsAre("tag AHU-1, base unit 1|description: \"double-wall\" -> \"double-wall / painted\""));
}

TEST(QuoteDifferences, CompareTextsAndNotNumbers) {
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[0].units[0].price = "8450"; }),
              ElementsAre("tag AHU-1, base unit 1|price: \"8450.00\" -> \"8450\""));
}

}  // namespace
}  // namespace parvex::cli
