#include <gtest/gtest.h>

#include "seams/xml.h"

namespace parvex {
namespace {

// What an expression selects with text() are the texts one by one, not those of their element together.

TEST(XmlTextNode, IsReadWithoutOuterBlanksAndComparedWithThem) {
  const auto document = xml::Document::Parse("<r><n> a </n><n>a</n></r>");
  const auto texts = document.All("/r/n/text()");
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(texts[0].Text(), "a");
  EXPECT_EQ(texts[1].Text(), "a");
  EXPECT_FALSE(texts[0].First("self::node()[.='a']"));
  EXPECT_TRUE(texts[0].First("self::node()[.=' a ']"));
  EXPECT_TRUE(texts[1].First("self::node()[.='a']"));
}

TEST(XmlTextNode, StandsForItselfBesideOtherContentOfItsElement) {
  const auto document = xml::Document::Parse("<r><n>a<!-- b -->c</n><n><![CDATA[d]]><x>e</x></n></r>");
  const auto texts = document.All("/r/n/text()");
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_TRUE(texts[0].First("self::node()[.='a']"));
  EXPECT_TRUE(texts[1].First("self::node()[.='c']"));
  EXPECT_TRUE(texts[2].First("self::node()[.='d']"));
  EXPECT_EQ(texts[2].Text(), "d");
  EXPECT_EQ(texts[2].Parent().Name(), "n");
}

}  // namespace
}  // namespace parvex
