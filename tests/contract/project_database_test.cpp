#include "seams/project_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "formats/jet/writer.h"
#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

using standin::JetTable;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = standin::JetColumn::Type;

// Numbers of the Jet engine's own errors.
constexpr int kNothingToUpdate = 3020;
constexpr int kNoCurrentRow = 3021;
constexpr int kSyntaxError = 3075;
constexpr int kNoSuchTable = 3078;
constexpr int kFieldTooSmall = 3163;
constexpr int kNoSuchColumn = 3265;
constexpr int kNoConversion = 3421;

using Texts = std::vector<std::optional<std::string>>;

class ProjectDatabaseContract : public testing::TestWithParam<jet::Version> {
 protected:
  ContractMachine machine;
  const std::string path = machine.Path("Project.mdb");
  const std::size_t pageSize = jet::PageSize(GetParam());
  /// A letter beyond Latin-1 that the version can store.
  const std::string beyond = GetParam() == jet::Version::Jet3 ? "€" : "Ω";

  void Make(const std::vector<JetTable>& tables) {
    machine.files.Replace(path, standin::MakeJetDatabase(tables, GetParam()));
  }
  void MakeConfig(const std::vector<std::vector<std::optional<std::string>>>& rows) {
    Make({{"Config", {{"sPdsg", Type::Text, 50}, {"sKey", Type::Text, 50}, {"sValue", Type::Text, 255}}, rows}});
  }
  void MakeTags(const std::vector<std::vector<std::optional<std::string>>>& rows) {
    Make({{"TagIndex", {{"sAPP"}, {"sAppVer"}, {"sTagName"}, {"lTagId", Type::Long}}, rows}});
  }

  std::unique_ptr<Database> Open() { return machine.projectDatabases.Open(path); }

  /// One column of the rows that a statement yields.
  Texts Select(const std::string& sql, const std::string& column) {
    const std::unique_ptr<Database> database = Open();
    const std::unique_ptr<RecordSet> rows = database->OpenRecordSet(sql);
    Texts texts;
    for (; !rows->AtEnd(); rows->MoveNext()) texts.push_back(rows->Column(column));
    return texts;
  }

  /// Changes the value of the first row with a key.
  void SetValue(const std::string& key, const std::string& value) {
    const std::unique_ptr<Database> database = Open();
    const std::unique_ptr<RecordSet> rows = database->OpenRecordSet("SELECT * FROM Config WHERE sKey='" + key + "'");
    rows->Edit();
    rows->SetColumn("sValue", value);
    rows->Update();
  }

  /// The error's number and description.
  static std::pair<int, std::string> ErrorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return {error.RuntimeNumber(), error.Description()};
    }
    return {0, ""};
  }
};

TEST_P(ProjectDatabaseContract, ReadsTextBeyondAsciiCompressedAndNot) {
  std::vector<std::string> texts{"Müller & Söhne", "Ωmega 日本 and back", "😀!"};
  if (GetParam() == jet::Version::Jet3) texts = {"Müller & Söhne", "€uro „Œuvre“ and back", "™!"};
  std::vector<std::vector<std::optional<std::string>>> rows;
  for (const std::string& text : texts) rows.push_back({text, text});
  Make({{"Config", {{"packed", Type::Text, 255}, {"plain", Type::Text, 255, false}}, rows}});
  EXPECT_THAT(Select("SELECT * FROM Config", "packed"), testing::ElementsAreArray(texts));
  EXPECT_THAT(Select("SELECT * FROM Config", "plain"), testing::ElementsAreArray(texts));
}

TEST_P(ProjectDatabaseContract, TellsANullFromAnEmptyText) {
  MakeConfig({{"KDQ47", "CompanyName", std::nullopt}, {"KDQ47", "EmailID", ""}});
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre(std::nullopt, ""));
}

TEST_P(ProjectDatabaseContract, NumbersReadAsDecimalText) {
  Make({{"Numbers",
         {{"b", Type::Byte}, {"i", Type::Integer}, {"l", Type::Long}, {"d", Type::Double}},
         {{"255", "-32768", "-2147483648", "0.5"}, {std::nullopt, "0", "2147483647", "-1234567.25"}}}});
  EXPECT_THAT(Select("SELECT * FROM Numbers", "b"), ElementsAre("255", std::nullopt));
  EXPECT_THAT(Select("SELECT * FROM Numbers", "i"), ElementsAre("-32768", "0"));
  EXPECT_THAT(Select("SELECT * FROM Numbers", "l"), ElementsAre("-2147483648", "2147483647"));
  EXPECT_THAT(Select("SELECT * FROM Numbers", "d"), ElementsAre("0.5", "-1234567.25"));
}

TEST_P(ProjectDatabaseContract, ReadsMemos) {
  const std::string text = "Line one\r\n" + beyond + " " + std::string(1500, 'm');
  Make({{"Notes", {{"note", Type::Memo}}, {{text}, {""}, {std::nullopt}}}});
  EXPECT_THAT(Select("SELECT * FROM Notes", "note"), ElementsAre(text, "", std::nullopt));
}

TEST_P(ProjectDatabaseContract, ThousandsOfRowsComeInTheirOrder) {
  std::vector<std::vector<std::optional<std::string>>> rows;
  Texts expected;
  for (int i = 0; i < 5000; ++i) {
    rows.push_back({"KDQ", "47", "Tag", std::to_string(i)});
    expected.push_back(std::to_string(i));
  }
  MakeTags(rows);
  EXPECT_EQ(Select("SELECT * FROM TagIndex", "lTagId"), expected);
}

TEST_P(ProjectDatabaseContract, SelectsByAllConditions) {
  MakeTags({{"KDQ", "46", "AHU-1", "1"}, {"KDQ", "47", "AHU-1", "2"}, {"KDQ", "47", "AHU-2", "3"}});
  EXPECT_THAT(Select("SELECT * FROM TagIndex WHERE sAPP ='KDQ' AND sAppVer='47' and sTagName='AHU-1'", "lTagId"),
              ElementsAre("2"));
  EXPECT_THAT(Select("SELECT * FROM TagIndex WHERE sAPP ='KDQ' AND sAppVer='48' and sTagName='AHU-1'", "lTagId"),
              ElementsAre());
}

TEST_P(ProjectDatabaseContract, DuplicatesComeAllTheLastOneLast) {
  MakeTags({{"KDQ", "47", "AHU-1", "1"}, {"KDQ", "47", "AHU-2", "2"}, {"KDQ", "47", "AHU-1", "3"}});
  EXPECT_THAT(Select("SELECT * FROM TagIndex WHERE sTagName='AHU-1'", "lTagId"), ElementsAre("1", "3"));
}

TEST_P(ProjectDatabaseContract, ComparesTextsAndNamesWithoutRegardToLetterCase) {
  MakeTags({{"kdq", "47", "Lüfter", "1"}, {"KDQ", "47", "LÜFTER", "2"}, {"KDQ", "47", "Lufter", "3"}});
  EXPECT_THAT(Select("select * From TAGINDEX where SAPP='Kdq' And stagname='lüFTER'", "LTAGID"), ElementsAre("1", "2"));
}

TEST_P(ProjectDatabaseContract, ANullMatchesNoText) {
  MakeConfig({{"KDQ47", "CompanyName", std::nullopt}});
  EXPECT_THAT(Select("SELECT * FROM Config WHERE sValue=''", "sKey"), ElementsAre());
}

TEST_P(ProjectDatabaseContract, BlanksMayStandAnywhereBetweenWords) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  EXPECT_THAT(Select("  SELECT  *  FROM  Config  WHERE  sPdsg  =  'KDQ47'  AND\r\n\tsKey='CompanyName' ", "sValue"),
              ElementsAre("Acme"));
}

TEST_P(ProjectDatabaseContract, BlanksInsideATextCount) {
  MakeConfig({{"KDQ47", "a  b", "1"}, {"KDQ47", "a b", "2"}, {"KDQ47", " a b", "3"}});
  EXPECT_THAT(Select("SELECT * FROM Config WHERE sKey='a b'", "sValue"), ElementsAre("2"));
}

TEST_P(ProjectDatabaseContract, ADoubledApostropheInATextIsOne) {
  MakeConfig({{"KDQ47", "O'Brien", "1"}, {"KDQ47", "'", "2"}});
  EXPECT_THAT(Select("SELECT * FROM Config WHERE sKey='O''Brien'", "sValue"), ElementsAre("1"));
  EXPECT_THAT(Select("SELECT * FROM Config WHERE sKey=''''", "sValue"), ElementsAre("2"));
}

TEST_P(ProjectDatabaseContract, AnApostropheInATextBreaksTheStatementWhichTheErrorShows) {
  MakeTags({{"KDQ", "47", "O'Brien", "1"}});
  const std::string sql = "SELECT * FROM TagIndex WHERE sAPP ='KDQ' AND sAppVer='47' and sTagName='O'Brien'";
  const auto [number, description] = ErrorOf([&] { Open()->OpenRecordSet(sql); });
  EXPECT_EQ(number, kSyntaxError);
  EXPECT_THAT(description, HasSubstr("O'Brien"));
}

TEST_P(ProjectDatabaseContract, ATextThatIsNotClosedIsASyntaxError) {
  MakeConfig({});
  EXPECT_EQ(RaisedBy([&] { Open()->OpenRecordSet("SELECT * FROM Config WHERE sKey='x"); }), kSyntaxError);
}

TEST_P(ProjectDatabaseContract, AMissingTableIsAnErrorThatNamesIt) {
  MakeConfig({});
  const auto [number, description] = ErrorOf([&] { Open()->OpenRecordSet("SELECT * FROM TagIndex"); });
  EXPECT_EQ(number, kNoSuchTable);
  EXPECT_THAT(description, HasSubstr("TagIndex"));
}

TEST_P(ProjectDatabaseContract, AConditionOnAMissingColumnIsAnError) {
  MakeConfig({});
  EXPECT_NE(RaisedBy([&] { Open()->OpenRecordSet("SELECT * FROM Config WHERE sWrong='x'"); }), 0);
}

TEST_P(ProjectDatabaseContract, AMissingColumnIsAnErrorThatNamesIt) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM Config");
  EXPECT_EQ(RaisedBy([&] { rows->Column("sWrong"); }), kNoSuchColumn);
  rows->Edit();
  EXPECT_EQ(RaisedBy([&] { rows->SetColumn("sWrong", "x"); }), kNoSuchColumn);
}

TEST_P(ProjectDatabaseContract, AMissingFileOrFolderIsAnError) {
  EXPECT_EQ(RaisedBy([&] { machine.projectDatabases.Open(machine.Path("none.mdb")); }), 53);
  EXPECT_EQ(RaisedBy([&] { machine.projectDatabases.Open(machine.Path("none\\Project.mdb")); }), 76);
  EXPECT_EQ(ErrorIn([&] { machine.projectDatabases.Open(machine.Path("none.mdb")); }),
            "53 cannot read \"" + machine.Path("none.mdb") + "\": it does not exist");
  EXPECT_EQ(ErrorIn([&] { machine.projectDatabases.Open(machine.Path("none\\Project.mdb")); }),
            "76 cannot read \"" + machine.Path("none\\Project.mdb") + "\": its folder does not exist");
}

TEST_P(ProjectDatabaseContract, AnEmptyFileAndATextFileAreErrorsThatNameTheFile) {
  for (const std::string& bytes : {std::string(), std::string("no database"), std::string(3 * pageSize, '\0')}) {
    machine.files.Replace(path, bytes);
    const auto [number, description] = ErrorOf([&] { Open()->OpenRecordSet("SELECT * FROM Config"); });
    EXPECT_NE(number, 0) << bytes.size() << " bytes";
    EXPECT_THAT(description, HasSubstr("Project.mdb"));
  }
}

TEST_P(ProjectDatabaseContract, ATruncatedFileIsAnErrorWhereverItEnds) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const std::string whole = machine.files.ReadAll(path);
  for (std::size_t size = 0; size < whole.size(); size += pageSize / 2) {
    machine.files.Replace(path, whole.substr(0, size));
    EXPECT_NE(RaisedBy([&] { Select("SELECT * FROM Config", "sValue"); }), 0) << "cut to " << size << " bytes";
  }
}

TEST_P(ProjectDatabaseContract, NothingIsCurrentInAnEmptyRecordSet) {
  MakeConfig({});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM Config WHERE sPdsg='KDQ47'");
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_EQ(RaisedBy([&] { rows->Column("sValue"); }), kNoCurrentRow);
  EXPECT_EQ(RaisedBy([&] { rows->MoveNext(); }), kNoCurrentRow);
  EXPECT_EQ(RaisedBy([&] { rows->Edit(); }), kNoCurrentRow);
}

TEST_P(ProjectDatabaseContract, AnAddedRowIsThereForTheNextRecordSetAndAfterReopening) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  {
    const auto database = Open();
    const auto rows = database->OpenRecordSet("SELECT * FROM Config WHERE sPdsg='KDQ47' and sKey='EmailID'");
    ASSERT_TRUE(rows->AtEnd());
    rows->AddNew();
    rows->SetColumn("sPdsg", "KDQ47");
    rows->SetColumn("sKey", "EmailID");
    rows->SetColumn("sValue", "büro@example.com " + beyond);
    rows->Update();
    const auto again = database->OpenRecordSet("SELECT * FROM Config WHERE sKey='EmailID'");
    ASSERT_FALSE(again->AtEnd());
    EXPECT_EQ(again->Column("sValue"), "büro@example.com " + beyond);
  }
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre("Acme", "büro@example.com " + beyond));
}

TEST_P(ProjectDatabaseContract, ColumnsThatAnAddedRowLeavesOutAreNull) {
  MakeTags({});
  {
    const auto database = Open();
    const auto rows = database->OpenRecordSet("SELECT * FROM TagIndex");
    rows->AddNew();
    rows->SetColumn("lTagId", "-7");
    rows->Update();
  }
  EXPECT_THAT(Select("SELECT * FROM TagIndex", "sTagName"), ElementsAre(std::nullopt));
  EXPECT_THAT(Select("SELECT * FROM TagIndex", "lTagId"), ElementsAre("-7"));
}

TEST_P(ProjectDatabaseContract, AChangedRowKeepsItsPlaceAndItsOtherColumns) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}, {"KDQ47", "EmailID", std::nullopt}, {"KDQ47", "ContactNumber", "1"}});
  SetValue("EmailID", "a@example.com");
  EXPECT_THAT(Select("SELECT * FROM Config", "sKey"), ElementsAre("CompanyName", "EmailID", "ContactNumber"));
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre("Acme", "a@example.com", "1"));
}

TEST_P(ProjectDatabaseContract, ARecordSetShowsTheChangesMadeThroughIt) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM Config");
  rows->Edit();
  rows->SetColumn("sValue", "New");
  rows->Update();
  EXPECT_EQ(rows->Column("sValue"), "New");
  rows->Edit();
  rows->SetColumn("sValue", "Newer");
  rows->Update();
  EXPECT_EQ(rows->Column("sValue"), "Newer");
}

TEST_P(ProjectDatabaseContract, ATextMayBecomeEmpty) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  SetValue("CompanyName", "");
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre(""));
}

// Rows that together fill a page: what grows has to move, again and again, and everything else stays.
TEST_P(ProjectDatabaseContract, RowsThatOutgrowTheirPagesKeepTheirPlace) {
  constexpr int kRows = 120;
  std::vector<std::vector<std::optional<std::string>>> rows;
  Texts expected;
  for (int i = 0; i < kRows; ++i) {
    rows.push_back({"KDQ47", "key" + std::to_string(i), "v" + std::to_string(i)});
    expected.push_back("v" + std::to_string(i));
  }
  MakeConfig(rows);
  for (const std::size_t length : {250u, 10u, 255u}) {
    for (int i = 0; i < kRows; i += 3) {
      const std::string letter = i % 2 == 0 ? "x" : beyond;
      std::string value = std::to_string(i) + ":";
      while (value.size() < length * letter.size() - 4 * letter.size()) value += letter;
      SetValue("key" + std::to_string(i), value);
      expected[i] = value;
    }
    EXPECT_EQ(Select("SELECT * FROM Config", "sValue"), expected);
  }
}

TEST_P(ProjectDatabaseContract, AddedRowsFillNewPages) {
  MakeConfig({});
  Texts expected;
  {
    const auto database = Open();
    const auto rows = database->OpenRecordSet("SELECT * FROM Config");
    for (int i = 0; i < 60; ++i) {
      rows->AddNew();
      rows->SetColumn("sKey", "key" + std::to_string(i));
      rows->SetColumn("sValue", std::string(200, 'x') + beyond + std::to_string(i));
      rows->Update();
      expected.push_back("key" + std::to_string(i));
    }
  }
  EXPECT_EQ(Select("SELECT * FROM Config", "sKey"), expected);
  EXPECT_GT(machine.files.ReadAll(path).size(), 10 * pageSize);
}

TEST_P(ProjectDatabaseContract, WhatIsNotUpdatedIsDropped) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}, {"KDQ47", "EmailID", "a@example.com"}});
  {
    const auto database = Open();
    const auto rows = database->OpenRecordSet("SELECT * FROM Config");
    rows->Edit();
    rows->SetColumn("sValue", "dropped by moving on");
    rows->MoveNext();
    EXPECT_EQ(RaisedBy([&] { rows->Update(); }), kNothingToUpdate);
    rows->AddNew();
    rows->SetColumn("sValue", "dropped at the end");
  }
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre("Acme", "a@example.com"));
}

TEST_P(ProjectDatabaseContract, NothingIsSetOrSavedWithoutAddNewOrEdit) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM Config");
  EXPECT_EQ(RaisedBy([&] { rows->SetColumn("sValue", "x"); }), kNothingToUpdate);
  EXPECT_EQ(RaisedBy([&] { rows->Update(); }), kNothingToUpdate);
}

TEST_P(ProjectDatabaseContract, ATextOfTheColumnsLengthIsTakenALongerOneRefused) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  std::string longest;
  for (int i = 0; i < 255; ++i) longest += beyond;
  SetValue("CompanyName", longest);
  EXPECT_EQ(RaisedBy([&] { SetValue("CompanyName", longest + beyond); }), kFieldTooSmall);
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre(longest));
}

TEST_P(ProjectDatabaseContract, ATextIsTakenOrRefusedAndNeverReplaced) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const auto [number, description] = ErrorOf([&] { SetValue("CompanyName", "10 Ω"); });
  const bool taken = GetParam() == jet::Version::Jet4;
  EXPECT_EQ(number, taken ? 0 : kNoConversion);
  EXPECT_THAT(description, HasSubstr(taken ? "" : "10 Ω"));
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre(taken ? "10 Ω" : "Acme"));
}

TEST_P(ProjectDatabaseContract, AColumnWithoutTextIsAnErrorThatNamesItWhereItHasAValue) {
  Make({{"Parts", {{"name"}, {"photo", Type::LongBinary}}, {{"a", "\1\2"}, {"b", std::nullopt}}}});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM Parts");
  const auto [number, description] = ErrorOf([&] { rows->Column("photo"); });
  EXPECT_EQ(number, 13);
  EXPECT_THAT(description, HasSubstr("photo"));
  EXPECT_EQ(rows->Column("name"), "a");
  rows->MoveNext();
  EXPECT_EQ(rows->Column("photo"), std::nullopt);
}

TEST_P(ProjectDatabaseContract, ATextThatIsNoNumberIsRefusedForANumberColumn) {
  MakeTags({{"KDQ", "47", "AHU-1", "1"}});
  const auto database = Open();
  const auto rows = database->OpenRecordSet("SELECT * FROM TagIndex");
  rows->Edit();
  EXPECT_NE(RaisedBy([&] {
              rows->SetColumn("lTagId", "many");
              rows->Update();
            }),
            0);
  EXPECT_THAT(Select("SELECT * FROM TagIndex", "lTagId"), ElementsAre("1"));
}

TEST_P(ProjectDatabaseContract, AReadOnlyFileIsReadAndNotChanged) {
  MakeConfig({{"KDQ47", "CompanyName", "Acme"}});
  const std::string before = machine.files.ReadAll(path);
  machine.SetReadOnly(path, true);
  EXPECT_THAT(Select("SELECT * FROM Config", "sValue"), ElementsAre("Acme"));
  EXPECT_NE(RaisedBy([&] { SetValue("CompanyName", "New"); }), 0);
  machine.SetReadOnly(path, false);
  EXPECT_EQ(machine.files.ReadAll(path), before);
}

INSTANTIATE_TEST_SUITE_P(Versions, ProjectDatabaseContract, testing::Values(jet::Version::Jet3, jet::Version::Jet4),
                         [](const auto& tested) {
                           return std::string(tested.param == jet::Version::Jet3 ? "Jet3" : "Jet4");
                         });

}  // namespace
}  // namespace parvex::test
