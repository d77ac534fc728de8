#include "formats/jet/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/jet/writer.h"

namespace parvex::jet {
namespace {

std::string DatabaseOf(const std::vector<std::string>& names, Version version) {
  std::vector<standin::JetTable> tables;
  for (const std::string& name : names) {
    tables.push_back({.name = name, .columns = {{.name = "sName"}}, .rows = {{"a"}}});
  }
  return standin::MakeJetDatabase(tables, version);
}

TEST(JetCatalogue, NamesTheTablesInTheirOrderWithoutThoseOfTheEngine) {
  for (const Version version : {Version::Jet3, Version::Jet4}) {
    const File file(DatabaseOf({"TagIndex", "Größen"}, version), "x.mdb");
    const std::vector<NamedTable> tables = UserTables(file);
    ASSERT_EQ(tables.size(), 2u);
    EXPECT_EQ(tables[0].name, "TagIndex");
    EXPECT_EQ(tables[1].name, "Größen");
    EXPECT_EQ(file.ReadRows(file.ReadTable(tables[1].definitionPage)).size(), 1u);
  }
}

TEST(JetCatalogue, ADatabaseIsKnownByItsFirstBytes) {
  EXPECT_TRUE(LooksLikeDatabase(DatabaseOf({}, Version::Jet4)));
  EXPECT_FALSE(LooksLikeDatabase("Standard Jet DB"));
  EXPECT_FALSE(LooksLikeDatabase(""));
}

}  // namespace
}  // namespace parvex::jet
