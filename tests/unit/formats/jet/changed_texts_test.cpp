#include "formats/jet/changed_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "seams/automation_error.h"
#include "tests/support/raised_by.h"
#include "tests/unit/formats/jet/one_database.h"

namespace parvex::jet {
namespace {

using standin::JetColumn;
using test::ErrorIn;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = JetColumn::Type;

// Every letter becomes an x, which both versions store in as many bytes as most others.
void PutX(RowTexts& row) {
  for (RowTexts::Field& field : row.fields) {
    if (field.text && !field.isNumber) {
      std::replace_if(
          field.text->begin(), field.text->end(), [](char c) { return c >= 'a' && c <= 'z'; }, 'x');
    }
  }
}

void Nothing(RowTexts&) {}

class ChangedTextsTest : public OneDatabase {
 protected:
  std::string Changed(const std::function<void(RowTexts&)>& change = PutX) {
    return WithChangedTexts(file.bytes, change);
  }
  bool Holds(const std::string& bytes, const std::string& text) const {
    return bytes.find(text) != std::string::npos || bytes.find(Utf16Bytes(text)) != std::string::npos;
  }
};

TEST_P(ChangedTextsTest, StandWhereTheTextsStood) {
  Make({"Config",
        {{"sKey"}, {"sValue", Type::Text, 50, false}, {"note", Type::Memo}},
        {{"Key 1", "Value", "a note"}, {std::nullopt, "", std::nullopt}}});
  const std::size_t size = file.bytes.size();
  file.bytes = Changed();
  EXPECT_EQ(file.bytes.size(), size);
  EXPECT_THAT(Column("sKey"), ElementsAre("Kxx 1", std::nullopt));
  EXPECT_THAT(Column("sValue"), ElementsAre("Vxxxx", ""));
  EXPECT_THAT(Column("note"), ElementsAre("x xxxx", std::nullopt));
}

TEST_P(ChangedTextsTest, OfManyRowsAndPagesAreAllChangedAndNoneIsLost) {
  Make(ConfigTable(3000));
  file.bytes = Changed();
  const auto keys = Column("sKey");
  ASSERT_EQ(keys.size(), 3000u);
  EXPECT_EQ(keys[2999], "xxx2999");
  EXPECT_FALSE(Holds(file.bytes, "key"));
}

TEST_P(ChangedTextsTest, OfMemosOnPagesOfTheirOwnAreChangedToo) {
  Make({"Notes", {{"note", Type::Memo}}, {{"on one page"}}});
  // The value moves to a record of its own, as the engine keeps longer ones.
  const std::string inside =
      EncodeLongValue(GetParam() == Version::Jet3 ? "on one page" : EncodeText("on one page", true));
  const std::size_t at = file.bytes.find(inside);
  ASSERT_NE(at, std::string::npos);
  const std::string bytes = inside.substr(12);
  const auto page = static_cast<std::uint32_t>(file.bytes.size() / pageSize);
  file.bytes += EncodeDataPage(
      {.version = GetParam(), .owner = Get32("LVAL", 0), .slots = {{.bytes = bytes}, {.bytes = "orphan"}}});
  Put32(file.bytes, at, 0x40000000u | static_cast<std::uint32_t>(bytes.size()));
  PutPlace(file.bytes, at + 4, {page, 0});
  file.bytes = Changed();
  EXPECT_THAT(Column("note", "Notes"), ElementsAre("xx xxx xxxx"));
  EXPECT_FALSE(Holds(file.bytes, "orphan"));
}

TEST_P(ChangedTextsTest, AreAllThatIsLeftOfWhatNoRowReaches) {
  Make(ConfigTable(3));
  std::string& bytes = file.bytes;
  const std::size_t rows = bytes.size() - pageSize;
  ASSERT_EQ(bytes[rows], 1);
  bytes.replace(rows + 100, 7, "remains");
  bytes += EncodeDataPage({.version = GetParam(), .owner = kDefinitionPage, .slots = {{.bytes = "removed"}}});
  bytes += std::string("\4\1", 2) + std::string(30, '\0') + std::string(pageSize - 32, 'i');
  bytes += std::string("\2\1", 2) + std::string(pageSize - 2, 'd');
  bytes += std::string("\7\1", 2) + std::string(pageSize - 2, 'u');
  bytes = Changed(Nothing);
  for (const char* gone : {"remains", "removed", "iiiiiiii", "dddddddd", "uuuuuuuu"}) {
    EXPECT_FALSE(Holds(bytes, gone)) << gone;
  }
  EXPECT_THAT(Column("sKey"), ElementsAre("key0", "key1", "key2"));
}

TEST_P(ChangedTextsTest, OfDeletedRowsAreGone) {
  Make(ConfigTable(2));
  const std::size_t rows = file.bytes.size() - pageSize;
  const std::size_t slot = rows + (GetParam() == Version::Jet3 ? 10 : 14);
  Put16(file.bytes, slot, static_cast<std::uint16_t>(Get16(file.bytes, slot) | 0xC000));
  EXPECT_TRUE(Holds(file.bytes, "key0"));
  file.bytes = Changed(Nothing);
  EXPECT_FALSE(Holds(file.bytes, "key0"));
  EXPECT_THAT(Column("sKey"), ElementsAre("key1"));
}

TEST_P(ChangedTextsTest, HaveAmountsBesideThemAndZerosForWhatIsClosed) {
  Make({"Config",
        {{"price", Type::Currency}, {"cost", Type::Double}, {"picture", Type::LongBinary}, {"code", Type::Binary}},
        {{std::string("\x10\x27\0\0\0\0\0\0", 8), "2.5", "pixels", "secret"}}});
  file.bytes = Changed([](RowTexts& row) {
    for (RowTexts::Field& field : row.fields) {
      if (field.column == "price") {
        EXPECT_EQ(field.text, "1.0000");
        EXPECT_TRUE(field.isNumber);
        field.text = "3.2500";
      } else if (field.column == "cost") {
        field.text = "7.5";
      }
    }
  });
  EXPECT_THAT(Column("price"), ElementsAre("3.2500"));
  EXPECT_THAT(Column("cost"), ElementsAre("7.5"));
  EXPECT_FALSE(Holds(file.bytes, "pixels"));
  EXPECT_FALSE(Holds(file.bytes, "secret"));
}

TEST_P(ChangedTextsTest, LeaveNoPassword) {
  Make(ConfigTable(1));
  const std::string without = file.bytes;
  file.bytes = WithHeader(file.bytes, [](std::string& header) { header.replace(0x42, 6, "secret"); });
  EXPECT_NE(file.bytes, without);
  EXPECT_EQ(Changed(Nothing), without);
}

TEST_P(ChangedTextsTest, HaveToBeAsLongAsTheOnesBefore) {
  Make(ConfigTable(1));
  EXPECT_THAT(ErrorIn([&] {
                Changed([](RowTexts& row) {
                  for (RowTexts::Field& field : row.fields) {
                    field.text = "quite another length";
                  }
                });
              }),
              HasSubstr("has no room in its place"));
}

TEST_P(ChangedTextsTest, AreNoneInAFileThatIsNoDatabase) {
  EXPECT_THAT(ErrorIn([&] { WithChangedTexts("hello", PutX); }), HasSubstr("3343"));
}

INSTANTIATE_TEST_SUITE_P(Versions, ChangedTextsTest, testing::Values(Version::Jet3, Version::Jet4), VersionName);

}  // namespace
}  // namespace parvex::jet
