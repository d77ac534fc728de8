#include "formats/text/markup_bounds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "formats/text/tree_bounds.h"
#include "tests/support/hostile_markup.h"

namespace parvex::xml {
namespace {

using test::Numbered;
using test::Repeated;
using testing::EndsWith;

// What stands in the values is no tag, and no attribute.
std::string WithAttributes(std::size_t count) {
  return "<r>\n<a" + Numbered(count, [](const std::string& n) { return " b" + n + "='=>'"; }) + "/></r>";
}

TEST(MarkupBounds, AnElementHasAThousandAttributes) {
  EXPECT_EQ(BeyondBounds(WithAttributes(1'000)), "");
  EXPECT_EQ(BeyondBounds(WithAttributes(1'001)), "line 2, column 1: an element with more than 1000 attributes");
}

TEST(MarkupBounds, AttributesAreCountedBehindWhateverComesBefore) {
  for (const std::string before :
       {"<!-- <a ' -->", "<?p <a \" ?>", "<!DOCTYPE r [<!ENTITY e \"<x '\">]>",
        "<!DOCTYPE r [<!-- ' --><!ENTITY e ']>'>]>", "\xEF\xBB\xBF<!DOCTYPE r [<?p ' ]>?>]>"}) {
    EXPECT_EQ(BeyondBounds(before + WithAttributes(1'000)), "") << before;
    EXPECT_THAT(BeyondBounds(before + WithAttributes(1'001)), EndsWith("attributes")) << before;
  }
}

TEST(MarkupBounds, AttributesAreCountedWhereverTheElementStands) {
  const std::string many = WithAttributes(1'001);
  for (std::size_t offset = 0; offset < 12'000; offset += 97) {
    EXPECT_NE(BeyondBounds("<r>" + std::string(offset, 'x') + many + std::string(12'000, 'x') + "</r>"), "") << offset;
    EXPECT_NE(BeyondBounds("<r>" + Repeated("<a/>", offset / 4) + std::string(offset % 64, ' ') + many + "</r>"), "")
        << offset;
  }
}

TEST(MarkupBounds, WhatIsNoTagHasNoAttributes) {
  const std::string many = WithAttributes(5'000);
  EXPECT_EQ(BeyondBounds("<r><![CDATA[" + many + "]]></r>"), "");
  EXPECT_EQ(BeyondBounds("<r><!--" + many + "--></r>"), "");
  EXPECT_EQ(BeyondBounds("<r><?p " + many + "?></r>"), "");
  EXPECT_EQ(BeyondBounds("<r>" + Repeated("a='b' ", 10'000) + "</r>"), "");
}

std::string DoctypeOf(std::size_t bytes) {
  const std::string head = "<!DOCTYPE r [<!ENTITY e '";
  const std::string end = "'>]>";
  return head + std::string(bytes - head.size() - end.size(), '>') + end;
}

TEST(MarkupBounds, ADoctypeHas32KilobytesWhateverStandsAroundIt) {
  for (const std::string before : {"", "<?xml version='1.0'?>\n<!-- <!DOCTYPE r> -->"}) {
    EXPECT_EQ(BeyondBounds(before + DoctypeOf(32'768) + "<r>" + std::string(100'000, 'x') + "</r>"), "");
    EXPECT_THAT(BeyondBounds(before + DoctypeOf(32'769) + "<r/>"),
                EndsWith(": the DOCTYPE is longer than 32768 bytes"));
  }
  EXPECT_EQ(BeyondBounds("<r><![CDATA[<!DOCTYPE r [" + std::string(100'000, 'x') + "]]></r>"), "");
}

TEST(TreeBounds, CountDeclarationsThatHoldAtOnce) {
  const auto declared = [](std::size_t count) {
    return Numbered(count, [](const std::string& n) { return " xmlns:p" + n + "='u'"; });
  };
  const std::string outer = "<r" + declared(200) + ">";
  EXPECT_EQ(BeyondTreeBounds(outer + Repeated("<a" + declared(50) + "/>", 10) + "</r>"), "");
  EXPECT_EQ(BeyondTreeBounds(outer + Repeated("<a" + declared(50) + "></a>", 10) + "</r>"), "");
  EXPECT_THAT(BeyondTreeBounds(outer + "<a" + declared(25) + "><b" + declared(26) + "/></a></r>"),
              EndsWith(": " + TooManyDeclarations()));
}

TEST(TreeBounds, CountDifferentNames) {
  const auto named = [](std::size_t count) {
    return "<r>" + Numbered(count, [](const std::string& n) { return "<a" + n + "/>"; }) + "</r>";
  };
  EXPECT_EQ(BeyondTreeBounds(named(99'999)), "");
  EXPECT_EQ(BeyondTreeBounds("<r>" + Repeated("<name of='a longer text'/>", 120'000) + "</r>"), "");
  EXPECT_THAT(BeyondTreeBounds(named(100'001)), EndsWith(": " + TooManyNames()));
}

TEST(TreeBounds, WeighTheTreeAgainstItsText) {
  EXPECT_EQ(BeyondTreeBounds("<r>" + Repeated("<a/>", 200'000) + "</r>"), "") << "small enough whatever it is of";
  for (const char* dense : {"<a/>", "x<a/>", "<a b=''/>", "<!---->", "<?a?>"}) {
    EXPECT_THAT(BeyondTreeBounds("<r>" + Repeated(dense, 400'000) + "</r>"), EndsWith(": " + TooLargeTree())) << dense;
  }
  EXPECT_EQ(BeyondTreeBounds("<r>" + Repeated("<SUPPLIER>Korvane</SUPPLIER>", 400'000) + "</r>"), "");
}

}  // namespace
}  // namespace parvex::xml
