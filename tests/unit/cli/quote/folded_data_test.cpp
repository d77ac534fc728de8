#include "cli/quote/folded_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "codec/bin_encoder.h"
#include "formats/zip/zip_writer.h"

namespace parvex::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string ShownArchive(FoldedData& folded, const std::vector<std::pair<std::string, std::string>>& entries) {
  ZipWriter writer;
  for (const auto& [name, bytes] : entries) {
    writer.Add(name, bytes, true);
  }
  QuoteTag tag;
  tag.markFor = "RTU-1";
  tag.storedData = EncodeBase64(writer.Finish());
  return folded.StoredData(tag);
}

std::string ShownArchive(const std::vector<std::pair<std::string, std::string>>& entries) {
  FoldedData folded;
  return ShownArchive(folded, entries);
}

std::string ShownBytes(const std::string& bytes) {
  QuoteTag tag;
  tag.storedData = EncodeBase64(bytes);
  return FoldedData().StoredData(tag);
}

std::string ShownConfiguration(const std::string& text) {
  QuoteUnit unit;
  unit.orderConfiguration = text;
  return FoldedData().OrderConfiguration(unit);
}

TEST(FoldedData, HasAnOrderConfigurationAsIndentedMarkup) {
  EXPECT_EQ(ShownConfiguration("<A><B>1 &lt; 2</B></A>"),
            "<details><summary>Order configuration, 22 characters</summary>\n"
            "<pre>&lt;A&gt;\n  &lt;B&gt;1 &amp;lt; 2&lt;/B&gt;\n&lt;/A&gt;</pre>\n</details>\n");
  EXPECT_THAT(ShownConfiguration("<A>&</A>"), HasSubstr("<pre>&lt;A&gt;&amp;&lt;/A&gt;</pre>")) << "as it stands";
  EXPECT_THAT(ShownConfiguration("<!DOCTYPE A [<!ENTITY b \"c\">]><A><B>&b;</B></A>"), HasSubstr("&lt;A&gt;&lt;B&gt;"))
      << "as it stands, too";
  EXPECT_EQ(ShownConfiguration(""), "");
}

TEST(FoldedData, ListsTheEntriesOfStoredDataAndOpensThoseThatAreTexts) {
  const std::string shown = ShownArchive({{"Tag", "<A><B/></A>"},
                                          {"notes.txt",
                                           "K\xFC"
                                           "che"},
                                          {"a.bin", std::string("\0\1", 2)},
                                          {"none", ""},
                                          {"d/", ""}});
  EXPECT_THAT(shown,
              AllOf(HasSubstr("<p>5 entries</p>"),
                    HasSubstr("<summary>Tag, 11 bytes</summary>\n<pre>&lt;A&gt;\n  &lt;B/&gt;\n&lt;/A&gt;</pre>"),
                    HasSubstr("<summary>notes.txt, 5 bytes</summary>\n<pre>K\u00FCche</pre>"),
                    HasSubstr("<p>a.bin, 2 bytes, no text</p>"), HasSubstr("<p>none, 0 bytes</p>"),
                    HasSubstr("<p>d, a folder</p>")));
  EXPECT_THAT(ShownArchive({{"Tag", ""}}), HasSubstr("<p>1 entry</p>"));
}

TEST(FoldedData, OfStoredDataThatAreNoArchiveOrARefusedOneSaysSo) {
  EXPECT_EQ(ShownBytes(""), "");
  EXPECT_THAT(
      ShownBytes("text"),
      AllOf(HasSubstr("<summary>Stored data, 4 bytes</summary>\n<p>Not opened: no archive that holds something</p>\n"),
            HasSubstr("<summary>The bytes, 4 bytes</summary>\n<pre>text</pre>")));
  EXPECT_THAT(ShownBytes(std::string("\0", 1)), HasSubstr("<p>The bytes, 1 byte, no text</p>"));
  EXPECT_THAT(ShownArchive({{"../<b>", ""}}),
              AllOf(HasSubstr("<p>Not opened: the stored data of the tag &quot;RTU-1&quot; is refused: its entry "),
                    HasSubstr("../&lt;b&gt;"), Not(HasSubstr("<b>"))));
}

// --- Bounds ---

TEST(FoldedData, CutsALongTextAndSaysHowLongItIs) {
  EXPECT_THAT(ShownConfiguration(std::string(kLongestUnfolded + 1, 'x')),
              HasSubstr("x\n... cut here, the whole has 100001 bytes</pre>"));
  EXPECT_THAT(ShownConfiguration(std::string(kLongestUnfolded, 'x')), Not(HasSubstr("cut here")));
  std::string deep;
  for (int i = 0; i < 900; ++i) {
    deep = "<A>" + deep + "</A>";
  }
  EXPECT_THAT(ShownConfiguration(deep), HasSubstr("\n... cut here, the whole has 6300 bytes</pre>"))
      << "indents count, too";
}

TEST(FoldedData, DoesNotShowALargeEntry) {
  EXPECT_THAT(ShownArchive({{"large", std::string(kLargestReadable + 1, ' ')}}),
              HasSubstr("<p>large, 1048577 bytes, too large to be shown</p>"));
  EXPECT_THAT(ShownArchive({{"large", std::string(kLargestReadable, ' ')}}), HasSubstr("<pre>"));
}

TEST(FoldedData, ListsSomeEntriesOfMany) {
  std::vector<std::pair<std::string, std::string>> entries;
  for (std::size_t i = 0; i < kMostListedEntries + 2; ++i) {
    entries.emplace_back("e" + std::to_string(i), "");
  }
  EXPECT_THAT(ShownArchive(entries),
              AllOf(HasSubstr("<p>202 entries</p>"), HasSubstr("<p>e199, 0 bytes</p>\n<p>... and 2 more"),
                    Not(HasSubstr("e200"))));
}

TEST(FoldedData, OfOnePageHasNoMoreTextThanThePageHasRoomFor) {
  FoldedData folded;
  QuoteUnit unit;
  unit.orderConfiguration = std::string(kLongestUnfolded, '<');  // each takes four bytes of markup
  std::size_t shown = 0;
  std::string last;
  for (int i = 0; i < 40; ++i) {
    last = folded.OrderConfiguration(unit);
    shown += last.size();
  }
  EXPECT_GT(shown, kMostUnfolded / 2);
  EXPECT_LT(shown, kMostUnfolded + 40 * 200);
  EXPECT_THAT(last, HasSubstr("<p>Not shown, 100000 bytes: the page has no room for more texts.</p>"));
}

TEST(FoldedData, OfOnePageOpensNoMoreThanItsBoundAndNothingThatIsMoreForItself) {
  EXPECT_THAT(ShownArchive({{"bomb", std::string(kLargestStoredArchive + 1, ' ')}}), HasSubstr("Not opened: "));
  FoldedData folded;
  const std::vector<std::pair<std::string, std::string>> large = {{"large", std::string(kLargestStoredArchive, ' ')}};
  for (std::uint64_t opened = 0; opened < kMostStoredBytes; opened += kLargestStoredArchive) {
    EXPECT_THAT(ShownArchive(folded, large), HasSubstr("too large to be shown"));
  }
  EXPECT_THAT(ShownArchive(folded, {{"Tag", "1"}}), HasSubstr("Not opened: "));
}

}  // namespace
}  // namespace parvex::cli
