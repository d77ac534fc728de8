#include "formats/jet/databases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/jet/stored_text.h"
#include "seams/automation_error.h"
#include "tests/support/jet_readers.h"
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

using JetDatabasesTest = OneDatabase;

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

TEST_P(JetDatabasesTest, ARowIsNotStoredInATableThatSomebodyElseHasGivenOtherColumns) {
  JetTable other = ConfigTable(2);
  other.columns.push_back({"sMore"});
  for (auto& row : other.rows) row.push_back("more");
  for (const bool isNew : {true, false}) {
    Make(ConfigTable(2));
    const auto mine = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
    Make(other);
    const std::string before = file.bytes;
    isNew ? mine->AddNew() : mine->Edit();
    mine->SetColumn("sValue", "mine");
    EXPECT_THAT(ErrorIn([&] { mine->Update(); }), HasSubstr("3197 the columns were changed by somebody else"));
    EXPECT_EQ(file.bytes, before);
  }
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

INSTANTIATE_TEST_SUITE_P(Versions, JetDatabasesTest, testing::Values(Version::Jet3, Version::Jet4), VersionName);

}  // namespace
}  // namespace parvex::jet
