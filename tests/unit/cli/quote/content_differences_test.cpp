#include "cli/quote/content_differences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace parvex::cli {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;

// "path: before -> after", a line for each difference; the note in brackets when there is one.
std::vector<std::string> Changes(const std::string& before, const std::string& after) {
  std::vector<std::string> lines;
  const ContentComparison comparison = CompareContents(before, after);
  for (const ContentDifference& one : comparison.differences) {
    lines.push_back(one.path + ": " + one.before.value_or("nothing") + " -> " + one.after.value_or("nothing"));
  }
  if (!comparison.note.empty()) {
    lines.push_back("[" + comparison.note + "]");
  }
  return lines;
}

TEST(ContentDifferences, OfXmlAreValuesUnderTheirPaths) {
  EXPECT_THAT(Changes("<A><P v='1' w='x'>one</P><Q/></A>", "<A><P v='2' w='x'>two</P><Q/></A>"),
              ElementsAre("A/P: one -> two", "A/P/@v: 1 -> 2"));
  EXPECT_THAT(Changes("<A><!--old--><?p old?></A>", "<A><!--new--><?p new?></A>"),
              ElementsAre("A/comment(): old -> new", "A/processing-instruction(): p old -> p new"));
}

TEST(ContentDifferences, OfXmlFollowElementsThatCameAndWent) {
  EXPECT_THAT(Changes("<A><O n='a'/><O n='b'/><O n='c'/></A>", "<A><O n='a'/><O n='x'/><O n='b'/><O n='c'/></A>"),
              ElementsAre("A/O[2]: nothing -> ", "A/O[2]/@n: nothing -> x"));
  EXPECT_THAT(Changes("<A><O n='a'>t</O><P/></A>", "<A><P/></A>"),
              ElementsAre("A/O: t -> nothing", "A/O/@n: a -> nothing"));
}

TEST(ContentDifferences, OfXmlAreNoneInLayout) {
  EXPECT_THAT(Changes("<A x='1' y='2'><B/></A>", "<?xml version=\"1.0\"?>\r\n<A y=\"2\" x=\"1\">\r\n  <B></B>\r\n</A>"),
              ElementsAre("[only the layout differs]"));
}

TEST(ContentDifferences, OfOtherTextsAreLines) {
  EXPECT_THAT(Changes("one\r\ntwo\r\nthree", "one\r\n2\r\nthree\r\nfour"),
              ElementsAre("line 2: two -> 2", "line 4: nothing -> four"));
  EXPECT_THAT(Changes("a\nb\n", "a\r\nb\r\n"), ElementsAre("[only the layout differs]"));
  EXPECT_THAT(Changes("<A/>", "<A>"), ElementsAre("line 1: <A/> -> <A>")) << "one of them is no XML";
  EXPECT_THAT(Changes("<!DOCTYPE A><A/>", "<!DOCTYPE A><B/>"),
              ElementsAre("line 1: <!DOCTYPE A><A/> -> <!DOCTYPE A><B/>"));
}

TEST(ContentDifferences, ReadTextsInTheEncodingThatTheyHave) {
  EXPECT_THAT(Changes("<A t='\xE9'/>", "<A t='\xC3\xA9'/>"), ElementsAre("[only the layout differs]"));
  EXPECT_THAT(Changes(std::string("\xFF\xFEx\0", 4), "y"), ElementsAre("line 1: x -> y"));
}

TEST(ContentDifferences, AreNotLookedForWhereThereIsNoText) {
  EXPECT_THAT(Changes(std::string("a\0b", 3), "text"), ElementsAre("[no text]"));
  EXPECT_THAT(Changes("text", "\x1B[2J"), ElementsAre("[no text]"));
}

// --- Bounds ---

TEST(ContentDifferences, AreNotLookedForInWhatIsTooLarge) {
  const std::string large(kLargestComparedContent, 'x');
  EXPECT_THAT(CompareContents(large, "y").differences, SizeIs(1));
  EXPECT_THAT(Changes(large + "x", "y"), ElementsAre("[too large to be looked into]"));
  EXPECT_THAT(Changes(std::string(kMostComparedValues, '\n'), std::string(kMostComparedValues - 1, '\n')), SizeIs(1));
  EXPECT_THAT(Changes(std::string(kMostComparedValues + 1, '\n'), "\n"), ElementsAre("[too large to be looked into]"));
  std::string many = "<A>";
  for (std::size_t i = 0; i < kMostComparedValues; ++i) {
    many += "<B/>";
  }
  EXPECT_THAT(Changes(many + "</A>", "<A/>"), ElementsAre("[too large to be looked into]"));
}

TEST(ContentDifferences, AreNotListedWhenThereAreTooMany) {
  std::string before;
  std::string after;
  for (std::size_t i = 0; i < kMostChangedValues / 2; ++i) {
    before += "a\n";
    after += "b\n";
  }
  EXPECT_THAT(Changes(before, after), SizeIs(kMostChangedValues / 2));
  EXPECT_THAT(Changes(before + "a", after + "b"), ElementsAre("[too different to be listed]"));
}

TEST(ContentDifferences, ShowTheEndOfALongPath) {
  std::string before;
  std::string after;
  for (int i = 0; i < 900; ++i) {
    before += "<element>";
  }
  after = before + "<new/>";
  for (int i = 0; i < 900; ++i) {
    before += "</element>";
    after += "</element>";
  }
  const ContentComparison comparison = CompareContents(before, after);
  ASSERT_THAT(comparison.differences, SizeIs(1));
  EXPECT_THAT(comparison.differences[0].path, testing::EndsWith("/element/element/new"));
  EXPECT_THAT(comparison.differences[0].path, StartsWith("\xE2\x80\xA6"));
  EXPECT_LT(comparison.differences[0].path.size(), 210u);
}

TEST(ContentDifferences, OfDocumentsThatNestTooDeeplyAreLines) {
  std::string deep;
  for (int i = 0; i < 2000; ++i) {
    deep += "<a>";
  }
  EXPECT_THAT(CompareContents(deep, deep + "<b>").differences, SizeIs(1));
}

}  // namespace
}  // namespace parvex::cli
