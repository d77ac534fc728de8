#include "formats/jet/file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/jet/row.h"
#include "tests/support/raised_by.h"
#include "tests/unit/formats/jet/one_database.h"

namespace parvex::jet {
namespace {

using standin::JetTable;
using test::ErrorIn;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = standin::JetColumn::Type;

using JetFileTest = OneDatabase;

TEST_P(JetFileTest, ReadsMemosThatAreKeptOutsideTheirRows) {
  constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
  Make({"Notes", {{"note", Type::Memo}}, {{"inside"}, {"on one page"}, {"over two pages"}}});
  const auto onePage = static_cast<std::uint32_t>(file.bytes.size() / pageSize);
  const std::string text = *File(file.bytes, "f").Texts().Encode(std::string(1000, 'a') + beyond, false);
  const std::string link = "\1" + std::string({static_cast<char>(onePage + 2), 0, 0});
  DataPage whole{.version = GetParam(), .owner = kLongValueOwner, .slots = {{.bytes = text}}};
  DataPage head{.version = GetParam(), .owner = kLongValueOwner, .slots = {{.bytes = link + text.substr(0, 900)}}};
  DataPage tail{.version = GetParam(),
                .owner = kLongValueOwner,
                .slots = {{.bytes = "another"}, {.bytes = std::string(4, '\0') + text.substr(900)}}};
  const std::string pages = EncodeDataPage(whole) + EncodeDataPage(head) + EncodeDataPage(tail);
  File changed(file.bytes + pages, "f");
  const TableDefinition table = changed.ReadTable(kDefinitionPage);
  const std::vector<Row> rows = changed.ReadRows(table);
  const auto header = [&](std::uint32_t kind, std::uint32_t page) {
    std::string bytes(12, '\0');
    Put32(bytes, 0, kind | static_cast<std::uint32_t>(text.size()));
    PutPlace(bytes, 4, {page, 0});
    return bytes;
  };
  changed.ReplaceRow(table, rows[1], {header(0x40000000u, onePage)});
  changed.ReplaceRow(table, rows[2], {header(0, onePage + 1)});
  file.bytes = changed.Bytes();
  const std::string expected = std::string(1000, 'a') + beyond;
  EXPECT_THAT(Column("note", "Notes"), ElementsAre("inside", expected, expected));
}

TEST_P(JetFileTest, AMemoWhoseChainHasNoEndIsAnError) {
  Make({"Notes", {{"note", Type::Memo}}, {{"x"}}});
  const auto page = static_cast<std::uint32_t>(file.bytes.size() / pageSize);
  DataPage part{.version = GetParam(),
                .owner = 0,
                .slots = {{.bytes = std::string({0, static_cast<char>(page), 0, 0}) + "text"}}};
  File changed(file.bytes + EncodeDataPage(part), "f");
  const TableDefinition table = changed.ReadTable(kDefinitionPage);
  std::string header(12, '\0');
  Put32(header, 0, static_cast<std::uint32_t>(file.bytes.size()));
  PutPlace(header, 4, {page, 0});
  changed.ReplaceRow(table, changed.ReadRows(table)[0], {header});
  file.bytes = changed.Bytes();
  EXPECT_THAT(ErrorIn([&] { Column("note", "Notes"); }), HasSubstr("3343 "));
}

// A small file would otherwise become as much text as it has rows times bytes.
TEST_P(JetFileTest, RowsThatShareOneMemoAreAnError) {
  JetTable notes{"Notes", {{"note", Type::Memo}}, {}};
  for (int i = 0; i < 100; ++i) notes.rows.push_back({"x"});
  Make(notes);
  const auto page = static_cast<std::uint32_t>(file.bytes.size() / pageSize);
  const DataPage part{.version = GetParam(), .owner = 0, .slots = {{.bytes = std::string(1800, 'm')}}};
  File changed(file.bytes + EncodeDataPage(part), "f");
  const TableDefinition table = changed.ReadTable(kDefinitionPage);
  const std::string header = Bytes32(0x40000000u | 1800) + BytesOfPlace({page, 0}) + std::string(4, '\0');
  const std::vector<Row> rows = changed.ReadRows(table);
  changed.ReplaceRow(table, rows[0], {header});
  file.bytes = changed.Bytes();
  EXPECT_EQ(Column("note", "Notes").size(), 100u);
  for (const Row& row : rows) changed.ReplaceRow(table, row, {header});
  file.bytes = changed.Bytes();
  EXPECT_THAT(ErrorIn([&] { Column("note", "Notes"); }), HasSubstr("3343 the database is damaged (memos share"));
}

TEST_P(JetFileTest, PointersThatShareOneRowAreAnError) {
  Make(ConfigTable(1));
  const std::size_t rowPage = file.bytes.size() - pageSize;
  DataPage page = *DecodeDataPage(GetParam(), file.bytes.substr(rowPage));
  const auto number = static_cast<std::uint32_t>(rowPage / pageSize);
  page.slots = {{.hidden = true,
                 .bytes = EncodeRow(File(file.bytes, "f").ReadTable(kDefinitionPage).shape,
                                    {std::string(250, 'a'), std::string(250, 'b'), "c"})}};
  for (int i = 0; i < 150; ++i) page.slots.push_back({.pointer = true, .bytes = BytesOfPlace({number, 0})});
  file.bytes.replace(rowPage, pageSize, EncodeDataPage(page));
  EXPECT_THAT(ErrorIn([&] { Column("sValue"); }), HasSubstr("3343 the database is damaged (rows share"));
}

TEST_P(JetFileTest, ACatalogueWhoseNumbersAreTextsIsNone) {
  Make(ConfigTable(1));
  const std::string sound = file.bytes;
  const std::size_t lists = kCataloguePage * pageSize + (GetParam() == Version::Jet4 ? 0x3F : 0x2B);
  const std::size_t entrySize = GetParam() == Version::Jet4 ? 25 : 18;
  const std::size_t flags = GetParam() == Version::Jet4 ? 15 : 13;
  for (const std::size_t column : {0u, 3u}) {  // Id and Type
    const std::size_t entry = lists + column * entrySize;
    file.bytes = sound;
    file.bytes[entry] = static_cast<char>(ColumnType::Text);
    EXPECT_THAT(ErrorIn([&] { Column("sValue"); }), HasSubstr("3343 the database has no catalogue")) << column;
    file.bytes = sound;
    file.bytes[entry + flags] = 2;  // among the variable ones
    EXPECT_THAT(ErrorIn([&] { Column("sValue"); }), HasSubstr("3343 the database has no catalogue")) << column;
  }
}

TEST_P(JetFileTest, AnotherVersionAndAnEncryptedDatabaseAreRefusedByName) {
  Make(ConfigTable(1));
  const std::string sound = file.bytes;
  for (const char version : {'\2', '\3', '\xFF'}) {
    file.bytes[0x14] = version;
    EXPECT_EQ(ErrorIn([&] { databases.Open(kPath); }),
              "3343 a Jet database of another version than 3 and 4: \"C:\\Project.mdb\"");
  }
  file.bytes = WithHeader(sound, [](std::string& header) { Put32(header, 0x3E, 0x12345678); });
  EXPECT_THAT(ErrorIn([&] { databases.Open(kPath); }), HasSubstr("3343 an encrypted Jet database"));
}

TEST_P(JetFileTest, NewPagesAreNotFreeInTheMapOfTheFile) {
  Make(ConfigTable(1));
  const auto rows = Rows("SELECT * FROM Config");
  for (int i = 0; i < 20; ++i) {
    rows->AddNew();
    rows->SetColumn("sValue", std::string(250, 'x') + beyond);
    rows->Update();
  }
  const std::string_view mapPage = std::string_view(file.bytes).substr(pageSize, pageSize);
  const std::string map = DecodeDataPage(GetParam(), mapPage)->slots.at(0).bytes;
  const std::size_t pages = file.bytes.size() / pageSize;
  for (std::size_t page = 0; page < pages + 8; ++page) {
    EXPECT_EQ((map[5 + page / 8] >> page % 8 & 1) != 0, page >= pages) << "page " << page;
  }
}

TEST_P(JetFileTest, AMissingMapOfPagesWithRoomIsAnErrorAndNoOutput) {
  Make(ConfigTable(1));
  const std::size_t place = GetParam() == Version::Jet3 ? 0x27 : 0x3B;
  Put32(file.bytes, kDefinitionPage * pageSize + place, 0x00FFFF00);
  testing::internal::CaptureStderr();
  const std::string error = ErrorIn([&] { Column("sValue"); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(error, HasSubstr("3343 "));
}

TEST_P(JetFileTest, ADamagedByteGivesRowsOrAnErrorAndNoOutput) {
  JetTable table = ConfigTable(60);
  table.columns.push_back({"memo", Type::Memo});
  table.columns.push_back({"number", Type::Long});
  for (auto& row : table.rows) row.insert(row.end(), {"memo", "1"});
  Make(table);
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key5'"), std::string(250, 'x'));
  const std::string sound = file.bytes;
  testing::internal::CaptureStderr();
  int errors = 0;
  for (const char wrong : {'\0', '\xFF', '\x41'}) {
    for (std::size_t at = 0; at < sound.size(); at += 37) {
      file.bytes = sound;
      file.bytes[at] = wrong;
      errors += ErrorIn([&] { Column("memo"); }).empty() ? 0 : 1;
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_GT(errors, 10);
}

INSTANTIATE_TEST_SUITE_P(Versions, JetFileTest, testing::Values(Version::Jet3, Version::Jet4), VersionName);

}  // namespace
}  // namespace parvex::jet
