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
  for (const Difference& one : Compare(before, after).differences) {
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

TEST(QuoteDifferences, PairTheNameBeforeTheId) {
  // The second tag takes the first one's name; the first has another now, by which nothing else goes.
  Quote before = SampleQuote();
  before.tags[1].buildVersion = "4.7";
  Quote after = before;
  after.tags[1].markFor = "AHU-1";
  after.tags[1].pdsg = "RTU47";
  after.tags[1].units = after.tags[0].units;
  after.tags[1].storedData = after.tags[0].storedData;
  after.tags[0].markFor = "AHU-3";
  EXPECT_THAT(Differences(before, after),
              ElementsAre("tag AHU-2|: \"WSH47\" -> nothing", "tag AHU-3|: nothing -> \"RTU47\"",
                          "tag AHU-1|tag id: \"1101\" -> \"1102\""));
}

// The id of a tag without stored data, and so without a build version, is a counter's.
TEST(QuoteDifferences, NeverLookAtAnIdThatWasCounted) {
  EXPECT_THAT(AfterChange([](Quote& quote) { quote.tags[1].legacyTagId = "4"; }), IsEmpty());
  Quote before = SampleQuote();
  before.tags[0].legacyTagId = "2";
  before.tags[1].legacyTagId = "1";
  before.tags[0].buildVersion = "";
  Quote after = before;
  after.tags[0].legacyTagId = "1";
  after.tags[1].legacyTagId = "2";
  EXPECT_THAT(Differences(before, after), IsEmpty());
  after.tags[0].buildVersion = "4.7";
  EXPECT_THAT(Differences(before, after), ElementsAre("tag AHU-1|build version: \"\" -> \"4.7\""))
      << "the stored one is another id than the counted one, and no change of it";
  after = before;
  after.tags[0].markFor = "AHU-9";
  EXPECT_THAT(Differences(before, after),
              ElementsAre("tag AHU-1|: \"RTU47\" -> nothing", "tag AHU-9|: nothing -> \"RTU47\""))
      << "a counted id says nothing of a tag with another name";
}

TEST(QuoteDifferences, PairTagsOfOneNameAndGroupByTheirStoredIdOrElseTheirPlace) {
  Quote before = SampleQuote();
  before.tags[1] = before.tags[0];
  before.tags[1].legacyTagId = "1102";
  before.tags[1].units[0].price = "9000";
  Quote after = before;
  std::swap(after.tags[0], after.tags[1]);
  EXPECT_THAT(Differences(before, after), IsEmpty());
  after.tags.pop_back();
  EXPECT_THAT(Differences(before, after), ElementsAre("tag AHU-1|: \"RTU47\" -> nothing"));
  EXPECT_EQ(Compare(before, after).removedTags.total.amount, 857050) << "the first one went";

  for (Quote* quote : {&before, &after}) {
    for (QuoteTag& tag : quote->tags) {
      tag.buildVersion = "";
    }
  }
  EXPECT_THAT(Differences(before, after),
              ElementsAre("tag AHU-1|: \"RTU47\" -> nothing", "tag AHU-1, base unit 1|price: \"8450.00\" -> \"9000\""))
      << "without ids the first of one goes with the first of the other";
}

TEST(QuoteDifferences, TakeTagsOfOneNameAndTwoGroupsForTwo) {
  Quote before = SampleQuote();
  before.tags[1].markFor = "AHU-1";
  Quote after = before;
  std::swap(after.tags[0], after.tags[1]);
  EXPECT_THAT(Differences(before, after), IsEmpty());
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

// --- Stored data ---

TEST(QuoteDifferences, LookIntoStoredDataThatDiffer) {
  Quote after = SampleQuote();
  after.tags[0].storedData = "";
  after.tags[0].units[0].attributes[0].value = "XY";
  const std::vector<Difference> differences = Compare(SampleQuote(), after).differences;
  ASSERT_EQ(differences.size(), 2u);
  ASSERT_TRUE(differences[0].stored);
  EXPECT_EQ(differences[0].stored->note, "not looked into: no archive that holds something");
  EXPECT_FALSE(differences[1].stored);
}

// --- Places and totals ---

TEST(QuoteDifferences, TellWhereItemsStandInBothQuotes) {
  Quote before = SampleQuote();
  before.tags[1].units = before.tags[0].units;
  before.tags[1].units[0].components.pop_back();
  Quote after = before;
  std::swap(after.tags[0], after.tags[1]);
  after.tags[0].units[0].components = {SampleQuote().tags[0].units[0].components[1],
                                       before.tags[1].units[0].components[0]};
  after.tags[0].units[0].components[1].price = "11";
  after.tags[1].units.clear();
  after.tags.push_back(
      {.markFor = "AHU-3", .pdsg = "", .legacyTagId = "", .buildVersion = "", .storedData = "", .units = {}});
  const QuoteComparison comparison = Compare(before, after);
  ASSERT_EQ(comparison.differences.size(), 4u);
  const auto expectPlaces = [&](std::size_t index, const std::string& where, const ItemPlace& first,
                                const ItemPlace& last) {
    EXPECT_EQ(comparison.differences[index].where, where);
    EXPECT_EQ(comparison.differences[index].placeBefore, first) << where;
    EXPECT_EQ(comparison.differences[index].placeAfter, last) << where;
  };
  expectPlaces(0, "tag AHU-2, base unit 1, WARRANTY W5", {1, 0, std::nullopt}, {0, 0, 0});
  expectPlaces(1, "tag AHU-2, base unit 1, ACCESSORY CURB-1", {1, 0, 0}, {0, 0, 1});
  expectPlaces(2, "tag AHU-1, base unit 1", {0, 0, std::nullopt}, {1, std::nullopt, std::nullopt});
  expectPlaces(3, "tag AHU-3", {}, {2, std::nullopt, std::nullopt});
  std::vector<std::pair<std::optional<std::size_t>, std::optional<std::size_t>>> tags;
  for (const TagPair& tag : comparison.tags) {
    tags.emplace_back(tag.before, tag.after);
  }
  EXPECT_THAT(tags, ElementsAre(std::pair(1, 0), std::pair(0, 1), std::pair(std::nullopt, 2)));
}

TEST(QuoteDifferences, ListRemovedTagsBeforeTheLaterQuotes) {
  Quote after = SampleQuote();
  after.tags.erase(after.tags.begin());
  const QuoteComparison comparison = Compare(SampleQuote(), after);
  ASSERT_EQ(comparison.tags.size(), 2u);
  EXPECT_EQ(comparison.tags[0].before, 0u);
  EXPECT_EQ(comparison.tags[0].after, std::nullopt);
  EXPECT_EQ(comparison.tags[1].before, 1u);
  EXPECT_EQ(comparison.tags[1].after, 0u);
}

TEST(QuoteDifferences, AddUpWhatCameAndWent) {
  Quote after = SampleQuote();
  after.tags[1] = after.tags[0];
  after.tags[1].markFor = "AHU-7";
  after.tags[1].buildVersion = "";
  after.tags[1].units[0].components[0].price = "call us";
  after.tags[0].units.push_back(after.tags[0].units[0]);
  after.tags[0].units[1].price = "1.50";
  const QuoteComparison comparison = Compare(SampleQuote(), after);
  EXPECT_EQ(comparison.totalBefore.amount, 857050);
  EXPECT_EQ(comparison.totalAfter.amount, 857050 + 12200 + 855000);
  EXPECT_EQ(comparison.totalAfter.unknown, 1u);
  EXPECT_EQ(comparison.Change(), 12200 + 855000);
  EXPECT_EQ(comparison.addedTags.count, 1u);
  EXPECT_EQ(comparison.addedTags.total.amount, 855000);
  EXPECT_EQ(comparison.addedTags.total.unknown, 1u) << "a price that is no number is counted, and is no amount";
  EXPECT_EQ(comparison.removedTags.count, 1u);
  EXPECT_EQ(comparison.removedTags.total.amount, 0);
  EXPECT_EQ(comparison.addedUnits.count, 1u) << "units of added tags are in the tags";
  EXPECT_EQ(comparison.addedUnits.total.amount, 12200);
  EXPECT_EQ(comparison.removedUnits.count, 0u);
}

// As many as a quote may have, of one name each, which have to be told apart by their places.
TEST(QuoteDifferences, TakeTimeInProportionToTheItems) {
  Quote before;
  before.tags.resize(kMostQuoteItems);
  Quote after = before;
  after.tags.back().pdsg = "new";
  EXPECT_EQ(Compare(before, after).differences.size(), 2u);
}

}  // namespace
}  // namespace parvex::cli
