#include "formats/jet/databases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "formats/jet/file.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/writer.h"
#include "seams/automation_error.h"
#include "tests/support/jet_readers.h"
#include "tests/support/one_file.h"

namespace parvex::jet {
namespace {

using standin::JetTable;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = standin::JetColumn::Type;
using Texts = std::vector<std::optional<std::string>>;

constexpr const char* kPath = "C:\\Project.mdb";
/// Of the first table that is not the system's.
constexpr std::uint32_t kDefinitionPage = jet::kCataloguePage + 4;

JetTable ConfigTable(int rows) {
  JetTable table{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, {}};
  for (int i = 0; i < rows; ++i) table.rows.push_back({"KDQ47", "key" + std::to_string(i), "v" + std::to_string(i)});
  return table;
}

class JetDatabasesTest : public testing::Test {
 protected:
  test::OneFile file;
  Databases databases{file};

  void Make(JetTable table) { file.bytes = standin::MakeJetDatabase(std::vector{std::move(table)}); }

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
  /// "number description" of the error that an action ends with.
  template <typename Action>
  std::string ErrorOf(Action action) {
    try {
      action();
      return "";
    } catch (const AutomationError& error) {
      return std::to_string(error.RuntimeNumber()) + " " + error.Description();
    }
  }

 private:
  std::unique_ptr<Database> database_;
};

/// The database with an index over one column of its first table: its tree and its name, without entries.
std::string WithIndex(const std::string& database, std::uint16_t columnNumber, const std::string& name) {
  const std::size_t at = kDefinitionPage * jet::kPageSize;
  std::string page = database.substr(at, jet::kPageSize);
  page.resize(jet::Get32(page, 8) + 8 - 2);
  std::string tree(52, '\xFF');
  jet::Put16(tree, 4, columnNumber);
  std::string naming(28, '\0');
  const std::string nameBytes = jet::Utf16Bytes(name);
  std::string nameLength;
  jet::Append16(nameLength, static_cast<std::uint16_t>(nameBytes.size()));
  jet::Put32(page, 0x2F, 1);
  jet::Put32(page, 0x33, 1);
  page.insert(0x3F, std::string(12, '\0'));
  page += tree + naming + nameLength + nameBytes + "\xFF\xFF";
  page.resize(jet::kPageSize);
  return std::string(database).replace(at, jet::kPageSize, page);
}

TEST_F(JetDatabasesTest, AFailedUpdateLeavesTheFileAndCanBeTriedAgain) {
  Make(ConfigTable(2));
  const std::string before = file.bytes;
  const auto rows = Rows("SELECT * FROM Config");
  for (const RuntimeError refusal : {RuntimeError::DiskFull, RuntimeError::PathFileAccess}) {
    file.refusal = refusal;
    rows->Edit();
    rows->SetColumn("sValue", "new");
    EXPECT_THAT(ErrorOf([&] { rows->Update(); }), HasSubstr("refused"));
    EXPECT_EQ(file.bytes, before);
    EXPECT_EQ(rows->Column("sValue"), "v0");
  }
  file.refusal.reset();
  rows->Update();
  EXPECT_EQ(file.replaced, 1);
  EXPECT_THAT(Column("sValue"), ElementsAre("new", "v1"));
}

TEST_F(JetDatabasesTest, ARowThatSomebodyElseChangedIsNotOverwritten) {
  Make(ConfigTable(2));
  const auto mine = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
  const auto theirs = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
  SetValue(*theirs, "theirs");
  EXPECT_THAT(ErrorOf([&] { SetValue(*mine, "mine"); }), HasSubstr("3197 "));
  EXPECT_THAT(Column("sValue"), ElementsAre("theirs", "v1"));
}

TEST_F(JetDatabasesTest, ChangesOfSomebodyElseToOtherRowsSurvive) {
  Make(ConfigTable(3));
  const auto mine = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key0'");
  SetValue(*databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key2'"), std::string(250, 'x'));
  SetValue(*mine, "mine");
  EXPECT_THAT(Column("sValue"), ElementsAre("mine", "v1", std::string(250, 'x')));
}

TEST_F(JetDatabasesTest, ARowIsNotAddedToAnIndexedTable) {
  Make(ConfigTable(1));
  file.bytes = WithIndex(file.bytes, 1, "PrimaryKey");
  const std::string before = file.bytes;
  const auto rows = Rows("SELECT * FROM Config");
  rows->AddNew();
  rows->SetColumn("sKey", "new");
  EXPECT_EQ(ErrorOf([&] { rows->Update(); }), "3251 Index 'PrimaryKey' would have to change: 'C:\\Project.mdb'");
  EXPECT_EQ(file.bytes, before);
}

TEST_F(JetDatabasesTest, ARowOfAnIndexedTableIsChangedWhereTheIndexDoesNotLook) {
  Make(ConfigTable(100));
  file.bytes = WithIndex(file.bytes, 1, "PrimaryKey");
  const auto rows = Rows("SELECT * FROM Config WHERE sKey='key7'");
  SetValue(*rows, std::string(255, 'x'));
  SetValue(*rows, std::string(254, 'y'));
  EXPECT_EQ(Column("sValue")[7], std::string(254, 'y'));
  rows->Edit();
  rows->SetColumn("sKey", "another");
  EXPECT_THAT(ErrorOf([&] { rows->Update(); }), HasSubstr("3251 Index 'PrimaryKey'"));
}

TEST_F(JetDatabasesTest, ReadsBooleansAndSingles) {
  Make({"Types", {{"flag", Type::Boolean}, {"single", Type::Single}}, {{"True", "0.1"}, {"False", std::nullopt}}});
  EXPECT_THAT(Column("flag", "Types"), ElementsAre("True", "False"));
  EXPECT_THAT(Column("single", "Types"), ElementsAre("0.1", std::nullopt));
}

TEST_F(JetDatabasesTest, AColumnWithoutTextIsRefusedByNameWhereItHasAValue) {
  Make({"Parts",
        {{"name"}, {"photo", Type::LongBinary}, {"mark", Type::Binary}},
        {{"a", "\1\2", "\3"}, {"b", std::nullopt, std::nullopt}}});
  const auto rows = Rows("SELECT * FROM Parts");
  EXPECT_EQ(rows->Column("name"), "a");
  EXPECT_EQ(
      ErrorOf([&] { rows->Column("photo"); }),
      "13 Column 'photo' holds a value of type OLE object that has no text in table 'Parts' of 'C:\\Project.mdb'");
  EXPECT_THAT(ErrorOf([&] { rows->Column("mark"); }), HasSubstr("13 Column 'mark' holds a value of type Binary"));
  rows->MoveNext();
  EXPECT_EQ(rows->Column("photo"), std::nullopt);
  EXPECT_EQ(rows->Column("mark"), std::nullopt);
}

TEST_F(JetDatabasesTest, AColumnOfAnUnknownTypeIsRefusedByNameAndTheOthersAreRead) {
  Make({"Parts", {{"name"}, {"odd", Type::Currency}}, {{"a", std::string(8, '\1')}}});
  const std::size_t definition = file.bytes.find("n\0a\0m\0e\0"s, kDefinitionPage * kPageSize);
  const std::size_t secondEntry = definition - 2 - 25;
  ASSERT_EQ(file.bytes[secondEntry], 5);
  file.bytes[secondEntry] = 17;
  const auto rows = Rows("SELECT * FROM Parts");
  EXPECT_EQ(rows->Column("name"), "a");
  EXPECT_THAT(ErrorOf([&] { rows->Column("odd"); }), HasSubstr("13 Column 'odd' holds a value of type number 17"));
}

TEST_F(JetDatabasesTest, ReadsMemosThatAreKeptOutsideTheirRows) {
  constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
  Make({"Notes", {{"note", Type::Memo}}, {{"inside"}, {"on one page"}, {"over two pages"}}});
  const auto onePage = static_cast<std::uint32_t>(file.bytes.size() / jet::kPageSize);
  const std::string text = jet::EncodeText(std::string(1000, 'a') + "Ω", false);
  const std::string link = "\1" + std::string({static_cast<char>(onePage + 2), 0, 0});
  jet::DataPage whole{.owner = kLongValueOwner, .slots = {{.bytes = text}}};
  jet::DataPage head{.owner = kLongValueOwner, .slots = {{.bytes = link + text.substr(0, 1500)}}};
  jet::DataPage tail{.owner = kLongValueOwner,
                     .slots = {{.bytes = "another"}, {.bytes = std::string(4, '\0') + text.substr(1500)}}};
  const std::string pages = jet::EncodeDataPage(whole) + jet::EncodeDataPage(head) + jet::EncodeDataPage(tail);
  jet::File changed(file.bytes + pages, "f");
  const jet::TableDefinition table = changed.ReadTable(kDefinitionPage);
  const std::vector<jet::Row> rows = changed.ReadRows(table);
  const auto header = [&](std::uint32_t kind, std::uint32_t page) {
    std::string bytes(12, '\0');
    jet::Put32(bytes, 0, kind | static_cast<std::uint32_t>(text.size()));
    jet::PutPlace(bytes, 4, {page, 0});
    return bytes;
  };
  changed.ReplaceRow(table, rows[1], {header(0x40000000u, onePage)});
  changed.ReplaceRow(table, rows[2], {header(0, onePage + 1)});
  file.bytes = changed.Bytes();
  const std::string expected = std::string(1000, 'a') + "Ω";
  EXPECT_THAT(Column("note", "Notes"), ElementsAre("inside", expected, expected));
}

TEST_F(JetDatabasesTest, AMemoWhoseChainHasNoEndIsAnError) {
  Make({"Notes", {{"note", Type::Memo}}, {{"x"}}});
  const auto page = static_cast<std::uint32_t>(file.bytes.size() / jet::kPageSize);
  jet::DataPage part{.owner = 0, .slots = {{.bytes = std::string({0, static_cast<char>(page), 0, 0}) + "text"}}};
  jet::File changed(file.bytes + jet::EncodeDataPage(part), "f");
  const jet::TableDefinition table = changed.ReadTable(kDefinitionPage);
  std::string header(12, '\0');
  jet::Put32(header, 0, static_cast<std::uint32_t>(file.bytes.size()));
  jet::PutPlace(header, 4, {page, 0});
  changed.ReplaceRow(table, changed.ReadRows(table)[0], {header});
  file.bytes = changed.Bytes();
  EXPECT_THAT(ErrorOf([&] { Column("note", "Notes"); }), HasSubstr("3343 "));
}

TEST_F(JetDatabasesTest, AnOlderVersionAndAnEncryptedDatabaseAreRefusedByName) {
  Make(ConfigTable(1));
  const std::string sound = file.bytes;
  file.bytes[0x14] = 0;
  EXPECT_THAT(ErrorOf([&] { databases.Open(kPath); }), HasSubstr("3343 A Jet database of another version than 4"));
  std::string header = sound.substr(0, jet::kPageSize);
  jet::ToggleHeaderMask(header);
  jet::Put32(header, 0x3E, 0x12345678);
  jet::ToggleHeaderMask(header);
  file.bytes = header + sound.substr(jet::kPageSize);
  EXPECT_THAT(ErrorOf([&] { databases.Open(kPath); }), HasSubstr("3343 An encrypted Jet database"));
}

TEST_F(JetDatabasesTest, ATextComparedWithANumberColumnIsAnError) {
  Make({"TagIndex", {{"lTagId", Type::Long}}, {{"1"}}});
  EXPECT_THAT(ErrorOf([&] { Rows("SELECT * FROM TagIndex WHERE lTagId='1'"); }), HasSubstr("3464 "));
}

TEST_F(JetDatabasesTest, StatementsBeyondTheUnderstoodFormAreSyntaxErrors) {
  Make(ConfigTable(1));
  for (const char* sql :
       {"", "SELECT", "SELECT sKey FROM Config", "SELECT * FROM", "SELECT * FROM Config WHERE", "DELETE FROM Config",
        "SELECT * FROM Config WHERE sKey", "SELECT * FROM Config WHERE sKey=", "SELECT * FROM Config WHERE sKey=key0",
        "SELECT * FROM Config WHERE sKey<>'key0'", "SELECT * FROM Config WHERE sKey='key0' OR sKey='key1'",
        "SELECT * FROM Config WHERE sKey='key0' AND", "SELECT * FROM Config ORDER BY sKey", "SELECT * FROM [Config",
        "SELECT * FROM Config WHERE sKey='a' 'b'", "SELECT * FROM Config; SELECT"}) {
    EXPECT_THAT(ErrorOf([&] { Rows(sql); }), HasSubstr(std::string("3075 Syntax error in the statement: ") + sql));
  }
}

TEST_F(JetDatabasesTest, BracketsQuotesAndAFinalSemicolonAreUnderstood) {
  Make(ConfigTable(2));
  EXPECT_EQ(Rows("SELECT * FROM [Config] WHERE [sKey]=\"key1\";")->Column("sValue"), "v1");
}

TEST_F(JetDatabasesTest, MdbtoolsReadWhatWasAddedAndWhatHasMoved) {
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

TEST_F(JetDatabasesTest, MdbReaderReadsWhatWasAddedAndWhatHasMoved) {
  Make(ConfigTable(120));
  SetValue(*Rows("SELECT * FROM Config WHERE sKey='key5'"), std::string(250, 'x'));
  const auto rows = Rows("SELECT * FROM Config");
  rows->AddNew();
  rows->SetColumn("sKey", "Ω added");
  rows->Update();
  const auto read = test::MdbReader(file.bytes, "Config");
  if (!read) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_EQ(read->size(), 121u);
  for (const std::string& row : {"KDQ47|key5|" + std::string(250, 'x'), std::string("<null>|Ω added|<null>")}) {
    EXPECT_THAT(*read, testing::Contains(row)) << row;
  }
}

TEST_F(JetDatabasesTest, NewPagesAreNotFreeInTheMapOfTheFile) {
  Make(ConfigTable(1));
  const auto rows = Rows("SELECT * FROM Config");
  for (int i = 0; i < 20; ++i) {
    rows->AddNew();
    rows->SetColumn("sValue", std::string(250, 'x') + "Ω");
    rows->Update();
  }
  const std::string_view mapPage = std::string_view(file.bytes).substr(jet::kPageSize, jet::kPageSize);
  const std::string map = jet::DecodeDataPage(mapPage)->slots.at(0).bytes;
  const std::size_t pages = file.bytes.size() / jet::kPageSize;
  for (std::size_t page = 0; page < pages + 8; ++page) {
    EXPECT_EQ((map[5 + page / 8] >> page % 8 & 1) != 0, page >= pages) << "page " << page;
  }
}

TEST_F(JetDatabasesTest, AMissingMapOfPagesWithRoomIsAnErrorAndNoOutput) {
  Make(ConfigTable(1));
  jet::Put32(file.bytes, kDefinitionPage * jet::kPageSize + 0x3B, 0x00FFFF00);
  testing::internal::CaptureStderr();
  const std::string error = ErrorOf([&] { Column("sValue"); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(error, HasSubstr("3343 "));
}

TEST_F(JetDatabasesTest, ADamagedByteGivesRowsOrAnErrorAndNoOutput) {
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
      errors += ErrorOf([&] { Column("memo"); }).empty() ? 0 : 1;
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_GT(errors, 10);
}

}  // namespace
}  // namespace parvex::jet
