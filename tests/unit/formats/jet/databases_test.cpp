#include "formats/jet/databases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "formats/jet/file.h"
#include "formats/jet/row.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/writer.h"
#include "seams/automation_error.h"
#include "tests/support/jet_readers.h"
#include "tests/support/one_file.h"
#include "tests/support/raised_by.h"
#include "tests/unit/formats/jet/changed_header.h"

namespace parvex::jet {
namespace {

using standin::JetTable;
using test::ErrorIn;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = standin::JetColumn::Type;
using Texts = std::vector<std::optional<std::string>>;

constexpr const char* kPath = "C:\\Project.mdb";
/// Of the first table that is not the system's.
constexpr std::uint32_t kDefinitionPage = kCataloguePage + 4;

JetTable ConfigTable(int rows) {
  JetTable table{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, {}};
  for (int i = 0; i < rows; ++i) table.rows.push_back({"KDQ47", "key" + std::to_string(i), "v" + std::to_string(i)});
  return table;
}

class JetDatabasesTest : public testing::TestWithParam<Version> {
 protected:
  test::OneFile file;
  Databases databases{file};
  const std::size_t pageSize = PageSize(GetParam());
  /// A letter beyond Latin-1 that either version can store.
  const std::string beyond = "€";

  void Make(JetTable table) { file.bytes = standin::MakeJetDatabase(std::vector{std::move(table)}, GetParam()); }

  std::unique_ptr<RecordSet> Rows(const std::string& sql) {
    database_ = databases.Open(kPath);
    return database_->OpenRecordSet(sql);
  }
  Texts Column(const std::string& name, const std::string& table = "Config") {
    const auto rows = Rows("SELECT * FROM " + table);
    Texts texts;
    for (; !rows->AtEnd(); rows->MoveNext()) texts.push_back(rows->Column(name));
    return texts;
  }
  void SetValue(RecordSet& rows, const std::string& value) {
    rows.Edit();
    rows.SetColumn("sValue", value);
    rows.Update();
  }

 private:
  std::unique_ptr<Database> database_;
};

/// Where a definition has what an index adds to it, and how long its parts are.
struct IndexPlaces {
  std::size_t nameCount;
  std::size_t treeCount;
  std::size_t treeCounters;
  std::size_t treeCounterSize;
  std::size_t treeSize;
  std::size_t treeColumns;
  std::size_t namingSize;
};

IndexPlaces IndexPlacesOf(Version version) {
  if (version == Version::Jet3) return {0x1B, 0x1F, 0x2B, 8, 39, 0, 20};
  return {0x2F, 0x33, 0x3F, 12, 52, 4, 28};
}

/// The database with an index over one column of its first table: its tree and its name, without entries.
std::string WithIndex(Version version, const std::string& database, std::uint16_t columnNumber,
                      const std::string& name) {
  const IndexPlaces places = IndexPlacesOf(version);
  const std::size_t at = kDefinitionPage * PageSize(version);
  std::string page = database.substr(at, PageSize(version));
  page.resize(Get32(page, 8) + (version == Version::Jet4 ? 8 : 0) - 2);
  std::string tree(places.treeSize, '\xFF');
  Put16(tree, places.treeColumns, columnNumber);
  const std::string nameBytes = version == Version::Jet4 ? Utf16Bytes(name) : name;
  std::string nameLength = Bytes16(static_cast<std::uint16_t>(nameBytes.size()));
  if (version == Version::Jet3) nameLength.pop_back();
  Put32(page, places.nameCount, 1);
  Put32(page, places.treeCount, 1);
  page.insert(places.treeCounters, std::string(places.treeCounterSize, '\0'));
  page += tree + std::string(places.namingSize, '\0') + nameLength + nameBytes + "\xFF\xFF";
  page.resize(PageSize(version));
  return std::string(database).replace(at, PageSize(version), page);
}

TEST_P(JetDatabasesTest, AFailedUpdateLeavesTheFileAndCanBeTriedAgain) {
  Make(ConfigTable(2));
  const std::string before = file.bytes;
  const auto rows = Rows("SELECT * FROM Config");
  for (const RuntimeError refusal : {RuntimeError::DiskFull, RuntimeError::PathFileAccess}) {
    file.refusal = refusal;
    rows->Edit();
    rows->SetColumn("sValue", "new");
    EXPECT_THAT(ErrorIn([&] { rows->Update(); }), HasSubstr("refused"));
    EXPECT_EQ(file.bytes, before);
    EXPECT_EQ(rows->Column("sValue"), "v0");
  }
  file.refusal.reset();
  rows->Update();
  EXPECT_EQ(file.replaced, 1);
  EXPECT_THAT(Column("sValue"), ElementsAre("new", "v1"));
}

TEST_P(JetDatabasesTest, ARowThatSomebodyElseChangedIsNotOverwritten) {
  Make(ConfigTable(2));
  const auto mine = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
  const auto theirs = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
  SetValue(*theirs, "theirs");
  EXPECT_THAT(ErrorIn([&] { SetValue(*mine, "mine"); }), HasSubstr("3197 "));
  EXPECT_THAT(Column("sValue"), ElementsAre("theirs", "v1"));
}

TEST_P(JetDatabasesTest, ChangesOfSomebodyElseToOtherRowsSurvive) {
  Make(ConfigTable(3));
  const auto mine = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key0'");
  SetValue(*databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key2'"), std::string(250, 'x'));
  SetValue(*mine, "mine");
  EXPECT_THAT(Column("sValue"), ElementsAre("mine", "v1", std::string(250, 'x')));
}

TEST_P(JetDatabasesTest, ARowIsNotAddedToAnIndexedTable) {
  Make(ConfigTable(1));
  file.bytes = WithIndex(GetParam(), file.bytes, 1, "PrimaryKey");
  const std::string before = file.bytes;
  const auto rows = Rows("SELECT * FROM Config");
  rows->AddNew();
  rows->SetColumn("sKey", "new");
  EXPECT_EQ(ErrorIn([&] { rows->Update(); }), "3251 index \"PrimaryKey\" would have to change: \"C:\\Project.mdb\"");
  EXPECT_EQ(file.bytes, before);
}

TEST_P(JetDatabasesTest, ARowOfAnIndexedTableIsChangedWhereTheIndexDoesNotLook) {
  Make(ConfigTable(100));
  file.bytes = WithIndex(GetParam(), file.bytes, 1, "PrimaryKey");
  const auto rows = Rows("SELECT * FROM Config WHERE sKey='key7'");
  SetValue(*rows, std::string(255, 'x'));
  SetValue(*rows, std::string(254, 'y'));
  EXPECT_EQ(Column("sValue")[7], std::string(254, 'y'));
  rows->Edit();
  rows->SetColumn("sKey", "another");
  EXPECT_THAT(ErrorIn([&] { rows->Update(); }), HasSubstr("3251 index \"PrimaryKey\""));
}

TEST_P(JetDatabasesTest, ReadsBooleansAndSingles) {
  Make({"Types", {{"flag", Type::Boolean}, {"single", Type::Single}}, {{"True", "0.1"}, {"False", std::nullopt}}});
  EXPECT_THAT(Column("flag", "Types"), ElementsAre("True", "False"));
  EXPECT_THAT(Column("single", "Types"), ElementsAre("0.1", std::nullopt));
}

TEST_P(JetDatabasesTest, AColumnWithoutTextIsRefusedByNameWhereItHasAValue) {
  Make({"Parts",
        {{"name"}, {"photo", Type::LongBinary}, {"mark", Type::Binary}},
        {{"a", "\1\2", "\3"}, {"b", std::nullopt, std::nullopt}}});
  const auto rows = Rows("SELECT * FROM Parts");
  EXPECT_EQ(rows->Column("name"), "a");
  EXPECT_EQ(ErrorIn([&] { rows->Column("photo"); }),
            "13 column \"photo\" holds a value of type OLE object that has no text in table \"Parts\" of "
            "\"C:\\Project.mdb\"");
  EXPECT_THAT(ErrorIn([&] { rows->Column("mark"); }), HasSubstr("13 column \"mark\" holds a value of type Binary"));
  rows->MoveNext();
  EXPECT_EQ(rows->Column("photo"), std::nullopt);
  EXPECT_EQ(rows->Column("mark"), std::nullopt);
}

TEST_P(JetDatabasesTest, AColumnOfAnUnknownTypeIsRefusedByNameAndTheOthersAreRead) {
  Make({"Parts", {{"name"}, {"odd", Type::Currency}}, {{"a", std::string(8, '\1')}}});
  const std::string name = GetParam() == Version::Jet4 ? "\x8\0n\0a\0m\0e\0"s : "\4name"s;
  const std::size_t entrySize = GetParam() == Version::Jet4 ? 25 : 18;
  const std::size_t secondEntry = file.bytes.find(name, kDefinitionPage * pageSize) - entrySize;
  ASSERT_EQ(file.bytes[secondEntry], 5);
  file.bytes[secondEntry] = 17;
  const auto rows = Rows("SELECT * FROM Parts");
  EXPECT_EQ(rows->Column("name"), "a");
  EXPECT_THAT(ErrorIn([&] { rows->Column("odd"); }), HasSubstr("13 column \"odd\" holds a value of type number 17"));
}

TEST_P(JetDatabasesTest, ReadsMemosThatAreKeptOutsideTheirRows) {
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

TEST_P(JetDatabasesTest, AMemoWhoseChainHasNoEndIsAnError) {
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
TEST_P(JetDatabasesTest, RowsThatShareOneMemoAreAnError) {
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
  EXPECT_THAT(ErrorIn([&] { Column("note", "Notes"); }), HasSubstr("3343 The database is damaged (memos share"));
}

TEST_P(JetDatabasesTest, PointersThatShareOneRowAreAnError) {
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

TEST_P(JetDatabasesTest, AnotherVersionAndAnEncryptedDatabaseAreRefusedByName) {
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

TEST_P(JetDatabasesTest, ATextComparedWithANumberColumnIsAnError) {
  Make({"TagIndex", {{"lTagId", Type::Long}}, {{"1"}}});
  EXPECT_THAT(ErrorIn([&] { Rows("SELECT * FROM TagIndex WHERE lTagId='1'"); }), HasSubstr("3464 "));
}

TEST_P(JetDatabasesTest, StatementsBeyondTheUnderstoodFormAreSyntaxErrors) {
  Make(ConfigTable(1));
  for (const char* sql :
       {"", "SELECT", "SELECT sKey FROM Config", "SELECT * FROM", "SELECT * FROM Config WHERE", "DELETE FROM Config",
        "SELECT * FROM Config WHERE sKey", "SELECT * FROM Config WHERE sKey=", "SELECT * FROM Config WHERE sKey=key0",
        "SELECT * FROM Config WHERE sKey<>'key0'", "SELECT * FROM Config WHERE sKey='key0' OR sKey='key1'",
        "SELECT * FROM Config WHERE sKey='key0' AND", "SELECT * FROM Config ORDER BY sKey", "SELECT * FROM [Config",
        "SELECT * FROM Config WHERE sKey='a' 'b'", "SELECT * FROM Config; SELECT"}) {
    EXPECT_THAT(ErrorIn([&] { Rows(sql); }), HasSubstr(std::string("3075 syntax error in the statement: ") + sql));
  }
}

TEST_P(JetDatabasesTest, BracketsQuotesAndAFinalSemicolonAreUnderstood) {
  Make(ConfigTable(2));
  EXPECT_EQ(Rows("SELECT * FROM [Config] WHERE [sKey]=\"key1\";")->Column("sValue"), "v1");
}

TEST_P(JetDatabasesTest, MdbtoolsReadWhatWasAddedAndWhatHasMoved) {
  Make(ConfigTable(120));
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key5'"), std::string(250, 'x'));
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key6'"), std::string(250, 'x'));
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key5'"), "short again");
  const auto rows = Rows("SELECT * FROM Config");
  rows->AddNew();
  rows->SetColumn("sKey", "added");
  rows->Update();
  const auto read = test::MdbExport(file.bytes, "Config");
  if (!read) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(read->size(), 121u);
  for (const char* row : {"KDQ47|key5|short again", "|added|", "KDQ47|key119|v119"}) {
    EXPECT_THAT(*read, testing::Contains(row)) << row;
  }
  EXPECT_THAT(*test::RunMdbTool("mdb-count", "", file.bytes, "Config"), ElementsAre("121"));
}

TEST_P(JetDatabasesTest, MdbReaderReadsWhatWasAddedAndWhatHasMoved) {
  Make(ConfigTable(120));
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key5'"), std::string(250, 'x'));
  const auto rows = Rows("SELECT * FROM Config");
  rows->AddNew();
  rows->SetColumn("sKey", beyond + " added");
  rows->Update();
  const auto read = test::MdbReader(file.bytes, "Config");
  if (!read) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_EQ(read->size(), 121u);
  for (const std::string& row : {"KDQ47|key5|" + std::string(250, 'x'), "<null>|" + beyond + " added|<null>"}) {
    EXPECT_THAT(*read, testing::Contains(row)) << row;
  }
}

TEST_P(JetDatabasesTest, NewPagesAreNotFreeInTheMapOfTheFile) {
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

TEST_P(JetDatabasesTest, AMissingMapOfPagesWithRoomIsAnErrorAndNoOutput) {
  Make(ConfigTable(1));
  const std::size_t place = GetParam() == Version::Jet3 ? 0x27 : 0x3B;
  Put32(file.bytes, kDefinitionPage * pageSize + place, 0x00FFFF00);
  testing::internal::CaptureStderr();
  const std::string error = ErrorIn([&] { Column("sValue"); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(error, HasSubstr("3343 "));
}

TEST_P(JetDatabasesTest, ADamagedByteGivesRowsOrAnErrorAndNoOutput) {
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

INSTANTIATE_TEST_SUITE_P(Versions, JetDatabasesTest, testing::Values(Version::Jet3, Version::Jet4),
                         [](const auto& tested) { return tested.param == Version::Jet3 ? "Jet3"s : "Jet4"s; });

}  // namespace
}  // namespace parvex::jet
