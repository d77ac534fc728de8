#include "formats/jet/writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "seams/automation_error.h"
#include "tests/support/jet_readers.h"

namespace parvex::standin {
namespace {

using test::Lines;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = JetColumn::Type;

using jet::Version;

/// Texts of which Jet 4 takes two bytes for a character, in one row after the other or mixed with others, and for Jet 3
/// texts of its code page.
struct Samples {
  std::string mixed;
  std::string wide;
};

Samples SamplesOf(Version version) {
  if (version == Version::Jet3) return {"plain, then €Š„“, then plain again", "€™Ÿ"};
  return {"compressed, then Ωж日本, then compressed again", "日本語"};
}

/// What the two readers print for the rows of the sample's first table.
Lines ConfigRows(Version version) {
  return {"KDQ47|CompanyName|Müller & Söhne", "KDQ47|EmailID|<null>", "KDQ47|ContactNumber|",
          "KDQ47|Mixed|" + SamplesOf(version).mixed, "KDQ47|Wide|" + SamplesOf(version).wide};
}

std::vector<JetTable> SampleTables(Version version) {
  const Samples samples = SamplesOf(version);
  std::vector<JetTable> tables{
      {"Config",
       {{"sPdsg", Type::Text, 50}, {"sKey", Type::Text, 50}, {"sValue", Type::Text, 255}},
       {{"KDQ47", "CompanyName", "Müller & Söhne"},
        {"KDQ47", "EmailID", std::nullopt},
        {"KDQ47", "ContactNumber", ""},
        {"KDQ47", "Mixed", samples.mixed},
        {"KDQ47", "Wide", samples.wide}}},
      {"TagIndex",
       {{"sAPP", Type::Text, 10}, {"sAppVer", Type::Text, 10}, {"sTagName", Type::Text, 100}, {"lTagId", Type::Long}},
       {}}};
  for (int i = 0; i < 5000; ++i) {
    tables[1].rows.push_back({"KDQ", "47", "Tag " + std::to_string(i), std::to_string(7 * i - 3)});
  }
  return tables;
}

JetTable TypesTable() {
  return {"Types",
          {{"text", Type::Text, 20, false},
           {"memo", Type::Memo},
           {"byte", Type::Byte},
           {"integer", Type::Integer},
           {"long", Type::Long},
           {"double", Type::Double},
           {"flag", Type::Boolean}},
          {{"plain", std::string(300, 'm'), "255", "-32768", "2147483647", "0.5", "True"},
           {std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt, "False"}}};
}

Lines WithNullsAsEmpty(Lines lines) {
  for (std::string& line : lines) {
    if (const std::size_t at = line.find("<null>"); at != std::string::npos) line.erase(at, 6);
  }
  return lines;
}

class JetWriterTest : public testing::TestWithParam<Version> {};

TEST_P(JetWriterTest, MdbtoolsFindTheVersionAndTheTables) {
  const std::string database = MakeJetDatabase(SampleTables(GetParam()), GetParam());
  const auto version = test::RunMdbTool("mdb-ver", "", database);
  if (!version) GTEST_SKIP() << "mdb-ver is not installed";
  EXPECT_THAT(*version, ElementsAre(GetParam() == Version::Jet3 ? "JET3" : "JET4"));
  EXPECT_THAT(*test::RunMdbTool("mdb-tables", "-1", database), ElementsAre("Config", "TagIndex"));
  EXPECT_THAT(*test::RunMdbTool("mdb-tables", "-S -1", database),
              ElementsAre("MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships", "Config", "TagIndex"));
}

TEST_P(JetWriterTest, MdbtoolsFindTheColumns) {
  const auto schema = test::RunMdbTool("mdb-schema", "--no-indexes --no-relations",
                                       MakeJetDatabase(SampleTables(GetParam()), GetParam()));
  if (!schema) GTEST_SKIP() << "mdb-schema is not installed";
  EXPECT_THAT(*schema, Contains(HasSubstr("[sValue]\t\t\tText (255)")));
  EXPECT_THAT(*schema, Contains(HasSubstr("[lTagId]\t\t\tLong Integer")));
}

TEST_P(JetWriterTest, MdbtoolsReadTheRows) {
  const std::string database = MakeJetDatabase(SampleTables(GetParam()), GetParam());
  const auto config = test::MdbExport(database, "Config");
  if (!config) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(*config, WithNullsAsEmpty(ConfigRows(GetParam())));
  const Lines tags = *test::MdbExport(database, "TagIndex");
  ASSERT_EQ(tags.size(), 5000u);
  EXPECT_EQ(tags.front(), "KDQ|47|Tag 0|-3");
  EXPECT_EQ(tags.back(), "KDQ|47|Tag 4999|34990");
}

TEST_P(JetWriterTest, MdbReaderFindsTheTablesAndRows) {
  const std::string database = MakeJetDatabase(SampleTables(GetParam()), GetParam());
  const auto tables = test::MdbReader(database);
  if (!tables) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_THAT(*tables, ElementsAre("Config", "TagIndex"));
  EXPECT_EQ(*test::MdbReader(database, "Config"), ConfigRows(GetParam()));
  const Lines tags = *test::MdbReader(database, "TagIndex");
  ASSERT_EQ(tags.size(), 5000u);
  EXPECT_EQ(tags.back(), "KDQ|47|Tag 4999|34990");
}

TEST_P(JetWriterTest, MdbtoolsReadEveryType) {
  const auto rows = test::MdbExport(MakeJetDatabase(std::vector{TypesTable()}, GetParam()), "Types");
  if (!rows) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_THAT(*rows, ElementsAre("plain|" + std::string(300, 'm') + "|255|-32768|2147483647|0.5|1", "||||||0"));
}

TEST_P(JetWriterTest, MdbReaderReadsEveryType) {
  const auto rows = test::MdbReader(MakeJetDatabase(std::vector{TypesTable()}, GetParam()), "Types");
  if (!rows) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_THAT(*rows, ElementsAre("plain|" + std::string(300, 'm') + "|255|-32768|2147483647|0.5|true",
                                 "<null>|<null>|<null>|<null>|<null>|<null>|false"));
}

/// The number of the first line that differs, whatever their order, since a short row may have found room on an earlier
/// page; nothing when all are the same.
std::optional<std::size_t> FirstDifference(Lines read, Lines expected) {
  std::sort(read.begin(), read.end());
  std::sort(expected.begin(), expected.end());
  const auto [at, _] = std::mismatch(read.begin(), read.end(), expected.begin(), expected.end());
  if (at == read.end() && read.size() == expected.size()) return std::nullopt;
  return at - read.begin();
}

// In Jet 3 an offset has one byte, and jumps beside it.
TEST_P(JetWriterTest, BothReadersReadRowsOfEveryLength) {
  JetTable table{"Rows", {{"first"}, {"number", Type::Long}, {"memo", Type::Memo}, {"last"}}, {}};
  Lines expected;
  for (std::size_t length = 0; length<1700; length += length> 200 && length < 320 ? 1 : 23) {
    const std::string first(length % 256, 'a');
    const std::string memo(length, 'm');
    table.rows.push_back({first, "7", memo, "z"});
    expected.push_back(first + "|7|" + memo + "|z");
  }
  const std::string database = MakeJetDatabase(std::vector{table}, GetParam());
  const auto exported = test::MdbExport(database, "Rows");
  if (!exported) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(FirstDifference(*exported, expected), std::nullopt);
  const auto read = test::MdbReader(database, "Rows");
  if (!read) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_EQ(FirstDifference(*read, expected), std::nullopt);
}

TEST_P(JetWriterTest, RowsBeyondTheFirstUsageMapAreFound) {
  // A map inside its record covers 512 pages of Jet 4, and 1,024 of half the size of Jet 3; seven of these rows fill a
  // page.
  const int rowCount = GetParam() == Version::Jet3 ? 9000 : 4500;
  JetTable wide{"Wide", {{"text", Type::Text, 255, false}}, {}};
  for (int i = 0; i < rowCount; ++i) wide.rows.push_back({std::to_string(i) + std::string(250, 'x')});
  const std::string database = MakeJetDatabase(std::vector{wide}, GetParam());
  ASSERT_GT(database.size(), (GetParam() == Version::Jet3 ? 1200u : 600u) * jet::PageSize(GetParam()));
  const auto exported = test::MdbExport(database, "Wide");
  if (!exported) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(exported->size(), wide.rows.size());
  EXPECT_EQ(exported->back(), *wide.rows.back()[0]);
  const auto rows = test::MdbReader(database, "Wide");
  if (!rows) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_EQ(rows->size(), wide.rows.size());
}

TEST_P(JetWriterTest, ATableWithoutRowsAndADatabaseWithoutTablesAreSound) {
  const std::string empty = MakeJetDatabase({}, GetParam());
  const auto tables = test::RunMdbTool("mdb-tables", "-1", empty);
  if (!tables) GTEST_SKIP() << "mdb-tables is not installed";
  EXPECT_THAT(*tables, ElementsAre());
  EXPECT_THAT(*test::MdbExport(MakeJetDatabase(std::vector<JetTable>{{"Config", {{"sKey"}}, {}}}), "Config"),
              ElementsAre());
}

TEST_P(JetWriterTest, AValueThatItsColumnCannotHoldIsAnErrorThatNamesBoth) {
  const auto refusal = [](JetColumn column, std::string value) -> std::string {
    try {
      MakeJetDatabase(std::vector<JetTable>{{"T", {std::move(column)}, {{std::move(value)}}}}, GetParam());
      return "";
    } catch (const AutomationError& error) {
      return std::to_string(error.RuntimeNumber()) + " " + error.Description();
    }
  };
  EXPECT_EQ(refusal({"name", Type::Text, 3}, "four"), "3163 column \"name\" is too short for \"four\"");
  EXPECT_EQ(refusal({"id", Type::Long}, "1x"), "3421 column \"id\" cannot hold \"1x\"");
  EXPECT_EQ(refusal({"id", Type::Long}, "2147483648"), "3421 column \"id\" cannot hold \"2147483648\"");
  EXPECT_EQ(refusal({"id", Type::Byte}, "-1"), "3421 column \"id\" cannot hold \"-1\"");
}

INSTANTIATE_TEST_SUITE_P(Versions, JetWriterTest, testing::Values(Version::Jet3, Version::Jet4),
                         [](const auto& tested) {
                           return std::string(tested.param == Version::Jet3 ? "Jet3" : "Jet4");
                         });

TEST(MakeJetDatabase, NamesThatTheCodePageOfJet3LacksAreRefused) {
  const auto refusal = [](const JetTable& table) -> std::string {
    try {
      MakeJetDatabase({&table, 1}, Version::Jet3);
      return "";
    } catch (const AutomationError& error) {
      return std::to_string(error.RuntimeNumber()) + " " + error.Description();
    }
  };
  EXPECT_EQ(refusal({"Таблица", {{"sKey"}}, {}}), "3421 the code page of the file lacks a character of \"Таблица\"");
  EXPECT_EQ(refusal({"Table", {{"ключ"}}, {}}), "3421 the code page of the file lacks a character of \"ключ\"");
  EXPECT_EQ(refusal({"Table", {{"sum", Type::Decimal}}, {}}),
            "3251 Jet 3 has no Decimal, as which column \"sum\" is asked for");
}

}  // namespace
}  // namespace parvex::standin
