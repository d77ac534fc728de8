#include "replay/same_text.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::replay {
namespace {

using journal::Json;

TEST(SameText, PassesOverTheLayoutOfOneElementAndOfSeveral) {
  EXPECT_TRUE(SameText("<A><B>1</B></A>", "<A>\r\n\t<B>1</B>\r\n</A>"));
  EXPECT_TRUE(SameText("<A><B>1</B></A><A/>", "<A>\r\n\t<B>1</B>\r\n</A>\r\n<A></A>"));
  EXPECT_FALSE(SameText("<A><B>1</B></A><A/>", "<A><B>2</B></A><A/>"));
  EXPECT_FALSE(SameText("<A/><A/>", "<A/>"));
}

TEST(SameText, IsExactWithWhatIsNoXml) {
  EXPECT_TRUE(SameText("a b", "a b"));
  EXPECT_FALSE(SameText("a b", "a  b"));
  EXPECT_FALSE(SameText("<A> <B>", "<A><B>"));
}

TEST(SameDocument, ReadsEachInTheEncodingThatItNames) {
  const std::string head = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>";
  EXPECT_TRUE(SameDocument(head + "<A><B>Fran\xE7"
                                  "ais</B></A>",
                           head + "\r\n<A>\r\n <B>Fran\xE7"
                                  "ais</B>\r\n</A>"));
  EXPECT_TRUE(SameDocument(head + "<A>\xE7</A>", "<A>\xC3\xA7</A>"));
  EXPECT_FALSE(SameDocument(head + "<A>\xE7</A>", head + "<A>\xE8</A>"));
  EXPECT_FALSE(SameDocument("\xE7", "\xE8"));
}

Json Error(const std::string& description, const std::string& source = "Parvex") {
  return {{"number", "0x800A005B"}, {"source", source}, {"description", description}};
}

TEST(SameError, LeavesOutOnlyWhatAnotherParserSays) {
  const Json here = Error("no COMMAND/NAME: line 1, column 1: it does not begin with '<'");
  const Json there = Error("no COMMAND/NAME: line 0, column 0: error (0x80004005)");
  EXPECT_TRUE(SameError(here, there, true));
  EXPECT_FALSE(SameError(here, there, false));
  EXPECT_FALSE(SameError(here, Error("no COMMAND: line 0, column 0: error"), true));
  EXPECT_FALSE(SameError(Error("a"), Error("b"), true));
  EXPECT_FALSE(SameError(here, Error("no COMMAND/NAME: line 1", "KDQU470.CKDBuilder"), true));
}

}  // namespace
}  // namespace parvex::replay
