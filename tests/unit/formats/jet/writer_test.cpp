#include "formats/jet/writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/jet_readers.h"

namespace parvex::standin {
namespace {

using test::Lines;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using Type = JetColumn::Type;

/// What the two readers print for the rows of the sample's first table.
const Lines kConfigRows{"KDQ47|CompanyName|Müller & Söhne", "KDQ47|EmailID|<null>", "KDQ47|ContactNumber|",
                        "KDQ47|Mixed|compressed, then Ωж日本, then compressed again", "KDQ47|Wide|日本語"};

std::vector<JetTable> SampleTables() {
  std::vector<JetTable> tables{
      {"Config",
       {{"sPdsg", Type::Text, 50}, {"sKey", Type::Text, 50}, {"sValue", Type::Text, 255}},
       {{"KDQ47", "CompanyName", "Müller & Söhne"},
        {"KDQ47", "EmailID", std::nullopt},
        {"KDQ47", "ContactNumber", ""},
        {"KDQ47", "Mixed", "compressed, then Ωж日本, then compressed again"},
        {"KDQ47", "Wide", "日本語"}}},
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

TEST(JetWriterTest, MdbtoolsFindJet4AndTheTables) {
  const std::string database = MakeJetDatabase(SampleTables());
  const auto version = test::RunMdbTool("mdb-ver", "", database);
  if (!version) GTEST_SKIP() << "mdb-ver is not installed";
  EXPECT_THAT(*version, ElementsAre("JET4"));
  EXPECT_THAT(*test::RunMdbTool("mdb-tables", "-1", database), ElementsAre("Config", "TagIndex"));
  EXPECT_THAT(*test::RunMdbTool("mdb-tables", "-S -1", database),
              ElementsAre("MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships", "Config", "TagIndex"));
}

TEST(JetWriterTest, MdbtoolsFindTheColumns) {
  const auto schema = test::RunMdbTool("mdb-schema", "--no-indexes --no-relations", MakeJetDatabase(SampleTables()));
  if (!schema) GTEST_SKIP() << "mdb-schema is not installed";
  EXPECT_THAT(*schema, Contains(HasSubstr("[sValue]\t\t\tText (255)")));
  EXPECT_THAT(*schema, Contains(HasSubstr("[lTagId]\t\t\tLong Integer")));
}

TEST(JetWriterTest, MdbtoolsReadTheRows) {
  const std::string database = MakeJetDatabase(SampleTables());
  const auto config = test::MdbExport(database, "Config");
  if (!config) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(*config, WithNullsAsEmpty(kConfigRows));
  const Lines tags = *test::MdbExport(database, "TagIndex");
  ASSERT_EQ(tags.size(), 5000u);
  EXPECT_EQ(tags.front(), "KDQ|47|Tag 0|-3");
  EXPECT_EQ(tags.back(), "KDQ|47|Tag 4999|34990");
}

TEST(JetWriterTest, MdbReaderFindsTheTablesAndRows) {
  const std::string database = MakeJetDatabase(SampleTables());
  const auto tables = test::MdbReader(database);
  if (!tables) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_THAT(*tables, ElementsAre("Config", "TagIndex"));
  EXPECT_EQ(*test::MdbReader(database, "Config"), kConfigRows);
  const Lines tags = *test::MdbReader(database, "TagIndex");
  ASSERT_EQ(tags.size(), 5000u);
  EXPECT_EQ(tags.back(), "KDQ|47|Tag 4999|34990");
}

TEST(JetWriterTest, MdbtoolsReadEveryType) {
  const auto rows = test::MdbExport(MakeJetDatabase(std::vector{TypesTable()}), "Types");
  if (!rows) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_THAT(*rows, ElementsAre("plain|" + std::string(300, 'm') + "|255|-32768|2147483647|0.5|1", "||||||0"));
}

TEST(JetWriterTest, MdbReaderReadsEveryType) {
  const auto rows = test::MdbReader(MakeJetDatabase(std::vector{TypesTable()}), "Types");
  if (!rows) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_THAT(*rows, ElementsAre("plain|" + std::string(300, 'm') + "|255|-32768|2147483647|0.5|true",
                                 "<null>|<null>|<null>|<null>|<null>|<null>|false"));
}

TEST(JetWriterTest, RowsBeyondTheFirstUsageMapAreFound) {
  // A map inside its record covers 512 pages; seven of these rows fill a page.
  JetTable wide{"Wide", {{"text", Type::Text, 255, false}}, {}};
  for (int i = 0; i < 4500; ++i) wide.rows.push_back({std::to_string(i) + std::string(250, 'x')});
  const std::string database = MakeJetDatabase(std::vector{wide});
  ASSERT_GT(database.size(), 600u * 4096);
  const auto exported = test::MdbExport(database, "Wide");
  if (!exported) GTEST_SKIP() << "mdb-export is not installed";
  EXPECT_EQ(exported->size(), 4500u);
  EXPECT_EQ(exported->back(), *wide.rows.back()[0]);
  const auto rows = test::MdbReader(database, "Wide");
  if (!rows) GTEST_SKIP() << "mdb-reader is not installed";
  EXPECT_EQ(rows->size(), 4500u);
}

TEST(JetWriterTest, ATableWithoutRowsAndADatabaseWithoutTablesAreSound) {
  const std::string empty = MakeJetDatabase({});
  const auto tables = test::RunMdbTool("mdb-tables", "-1", empty);
  if (!tables) GTEST_SKIP() << "mdb-tables is not installed";
  EXPECT_THAT(*tables, ElementsAre());
  EXPECT_THAT(*test::MdbExport(MakeJetDatabase(std::vector<JetTable>{{"Config", {{"sKey"}}, {}}}), "Config"),
              ElementsAre());
}

TEST(JetWriterTest, AValueThatItsColumnCannotHoldIsAnErrorThatNamesBoth) {
  const auto refusal = [](JetColumn column, std::string value) -> std::string {
    try {
      MakeJetDatabase(std::vector<JetTable>{{"T", {std::move(column)}, {{std::move(value)}}}});
      return "";
    } catch (const AutomationError& error) {
      return std::to_string(error.RuntimeNumber()) + " " + error.Description();
    }
  };
  EXPECT_EQ(refusal({"name", Type::Text, 3}, "four"), "3163 Column 'name' is too short for 'four'");
  EXPECT_EQ(refusal({"id", Type::Long}, "1x"), "3421 Column 'id' cannot hold '1x'");
  EXPECT_EQ(refusal({"id", Type::Long}, "2147483648"), "3421 Column 'id' cannot hold '2147483648'");
  EXPECT_EQ(refusal({"id", Type::Byte}, "-1"), "3421 Column 'id' cannot hold '-1'");
}

}  // namespace
}  // namespace parvex::standin
