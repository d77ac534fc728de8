#include "cli/quote/stored_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codec/bin_encoder.h"
#include "formats/zip/zip_writer.h"

namespace parvex::cli {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Files = std::vector<std::pair<std::string, std::string>>;

std::string ArchiveOf(const Files& files, bool deflate = true) {
  ZipWriter writer;
  for (const auto& [name, bytes] : files) {
    writer.Add(name, bytes, deflate);
  }
  return writer.Finish();
}

QuoteTag TagOf(const std::string& archive) {
  return {.markFor = "RTU-1",
          .pdsg = "RTU47",
          .legacyTagId = "1",
          .buildVersion = "4.7",
          .storedData = EncodeBase64(archive),
          .units = {}};
}

StoredDataComparison Compared(const std::string& before, const std::string& after) {
  StoredDataBudget budget;
  return CompareStoredData(TagOf(before), TagOf(after), budget);
}

std::string SizeText(const std::optional<std::size_t>& size) { return size ? std::to_string(*size) : "none"; }

// "name: before -> after", a line for each entry.
std::vector<std::string> Entries(const StoredDataComparison& comparison) {
  std::vector<std::string> lines;
  for (const StoredEntryDifference& entry : comparison.entries) {
    lines.push_back(entry.name + ": " + SizeText(entry.before) + " -> " + SizeText(entry.after));
  }
  return lines;
}

TEST(StoredData, DifferInEntriesThatCameWentAndChanged) {
  const StoredDataComparison comparison =
      Compared(ArchiveOf({{"Tag", "<P v='1'/>"}, {"old.dat", "abc"}, {"same.dat", "same"}}),
               ArchiveOf({{"same.dat", "same"}, {"sub/", ""}, {"sub/new.dat", "ab"}, {"Tag", "<P v='23'/>"}}));
  EXPECT_THAT(Entries(comparison), ElementsAre("Tag: 10 -> 11", "old.dat: 3 -> none", "sub\\new.dat: none -> 2"));
  EXPECT_EQ(comparison.note, "");
  ASSERT_THAT(comparison.entries[0].contents, SizeIs(1));
  EXPECT_EQ(comparison.entries[0].contents[0].path, "P/@v");
  EXPECT_EQ(comparison.entries[0].contents[0].before, "1");
  EXPECT_EQ(comparison.entries[0].contents[0].after, "23");
}

TEST(StoredData, ThatCameOrWentAreAllTheirEntries) {
  StoredDataBudget budget;
  QuoteTag none = TagOf("");
  const QuoteTag tag = TagOf(ArchiveOf({{"Tag", "<P/>"}}));
  EXPECT_THAT(Entries(CompareStoredData(none, tag, budget)), ElementsAre("Tag: none -> 4"));
  EXPECT_THAT(Entries(CompareStoredData(tag, none, budget)), ElementsAre("Tag: 4 -> none"));
}

TEST(StoredData, ThatWerePackedInAnotherWaySayTheSame) {
  const Files files = {{"Tag", std::string(100, 'x')}};
  const StoredDataComparison comparison = Compared(ArchiveOf(files, true), ArchiveOf(files, false));
  EXPECT_THAT(comparison.entries, IsEmpty());
  EXPECT_EQ(comparison.note, "the same files, packed in another way");
}

TEST(StoredData, ThatAreNoArchiveAreNotLookedInto) {
  const StoredDataComparison comparison = Compared("text", ArchiveOf({{"Tag", "<P/>"}}));
  EXPECT_THAT(comparison.entries, IsEmpty());
  EXPECT_EQ(comparison.note, "not looked into: no archive that holds something");
}

TEST(StoredData, ThatAreDamagedOrHostileSayWhatIsWrong) {
  std::string damaged = ArchiveOf({{"Tag", std::string(500, 'x')}}, false);
  damaged[100] = 'y';
  EXPECT_THAT(Compared(damaged, damaged).note, AllOf(HasSubstr("RTU-1"), HasSubstr("Tag")));
  EXPECT_THAT(Compared(ArchiveOf({{"../Tag", "x"}}), "").note,
              StartsWith("not looked into: the stored data of the tag"));
}

// --- Bounds ---

TEST(StoredData, ThatUnpackToTooMuchAreNotLookedInto) {
  const std::string bomb = ArchiveOf({{"Tag", std::string(kLargestStoredArchive + 1, '\0')}});
  EXPECT_LT(bomb.size(), 50'000u);
  EXPECT_THAT(Compared(bomb, ArchiveOf({{"Tag", "<P/>"}})).note, HasSubstr("more than are unpacked"));
  Files many(2001);
  for (std::size_t i = 0; i < many.size(); ++i) {
    many[i].first = std::to_string(i);
  }
  EXPECT_THAT(Compared(ArchiveOf(many), "").note, StartsWith("not looked into: the stored data of the tag"));
}

TEST(StoredData, OfAllTagsTogetherAreLookedIntoUpToABound) {
  StoredDataBudget budget;
  budget.unpacked = 1000;
  const QuoteTag tag = TagOf(ArchiveOf({{"Tag", std::string(600, 'x')}}));
  EXPECT_EQ(OpenStoredData(tag, budget).refusal, "");
  EXPECT_EQ(budget.unpacked, 400u);
  EXPECT_THAT(OpenStoredData(tag, budget).refusal, HasSubstr("more than are unpacked"));
  // What an archive costs that turns out to be damaged counts, too.
  std::string damaged = ArchiveOf({{"Tag", std::string(300, 'x')}}, false);
  damaged[100] = 'y';
  EXPECT_NE(OpenStoredData(TagOf(damaged), budget).refusal, "");
  EXPECT_EQ(budget.unpacked, 0u);
}

TEST(StoredData, AreComparedValueByValueUpToABound) {
  StoredDataBudget budget;
  budget.compared = 10;
  const QuoteTag before = TagOf(ArchiveOf({{"Tag", "a"}}));
  const QuoteTag after = TagOf(ArchiveOf({{"Tag", "1234567"}}));
  EXPECT_THAT(CompareStoredData(before, after, budget).entries.at(0).contents, SizeIs(1));
  const StoredDataComparison comparison = CompareStoredData(before, after, budget);
  EXPECT_THAT(comparison.entries.at(0).contents, IsEmpty());
  EXPECT_EQ(comparison.entries.at(0).note, "not looked into: so much was already");
}

}  // namespace
}  // namespace parvex::cli
