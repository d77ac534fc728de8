#include "formats/jet/code_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/posix/code_pages.h"
#include "seams/automation_error.h"
#include "tests/support/raised_by.h"
#include "tests/unit/formats/jet/one_database.h"

namespace parvex::jet {
namespace {

using standin::JetTable;
using test::ErrorIn;
using namespace std::string_literals;
using testing::HasSubstr;

class Jet3File : public testing::Test {
 protected:
  test::OneFile file;

  /// A database whose header names another code page than the one that its texts are written in.
  void MakeInCodePage(std::uint16_t number, const std::string& value) {
    const JetTable table{"Config", {{"sKey"}, {"sValue"}}, {{"k", value}}};
    file.bytes = WithHeader(standin::MakeJetDatabase({&table, 1}, Version::Jet3),
                            [number](std::string& header) { Put16(header, 0x3C, number); });
  }
};

TEST_F(Jet3File, HasItsTextsReadAndWrittenInItsCodePage) {
  MakeInCodePage(1251, "Ìèð");
  Databases databases(file, posix::CodePageOf);
  const auto found = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sValue='Мир'");
  EXPECT_EQ(found->Column("sValue"), "Мир");
  found->Edit();
  found->SetColumn("sValue", "Да");
  found->Update();
  EXPECT_EQ(databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config")->Column("sValue"), "Да");
  EXPECT_NE(file.bytes.find("k\xC4\xE0"), std::string::npos);
}

TEST_F(Jet3File, CountsItsColumnsInOneByte) {
  for (const std::size_t place : {0x15u, 0x17u}) {
    MakeInCodePage(1252, "x");
    Put16(file.bytes, kDefinitionPage * PageSize(Version::Jet3) + place, 256);
    EXPECT_THAT(ErrorIn([&] { Databases(file).Open(kPath)->OpenRecordSet("SELECT * FROM Config"); }),
                HasSubstr("3343 the database is damaged (a table has too many columns)"));
  }
}

TEST_F(Jet3File, InACodePageThatIsNotKnownIsRefusedByItsNumber) {
  MakeInCodePage(1251, "x");
  try {
    Databases(file).Open(kPath);
    ADD_FAILURE() << "opened";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 3343);
    EXPECT_EQ(error.Description(), "a Jet 3 database in code page 1251, which is not known: \"C:\\Project.mdb\"");
  }
}

TEST_F(Jet3File, RefusesTextsThatItsCodePageLacksByNameAndNeverReplacesThem) {
  MakeInCodePage(1252, "x");
  const std::string before = file.bytes;
  Databases databases(file);
  const auto rows = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config");
  rows->Edit();
  try {
    rows->SetColumn("sValue", "5 Ω");
    ADD_FAILURE() << "taken";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 3421);
    EXPECT_EQ(error.Description(),
              "column \"sValue\" cannot hold \"5 Ω\": the code page of the file lacks a character of it");
  }
  EXPECT_EQ(file.bytes, before);
}

}  // namespace
}  // namespace parvex::jet
