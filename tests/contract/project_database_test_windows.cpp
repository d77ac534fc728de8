#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/windows/machine.h"
#include "formats/jet/writer.h"
#include "tests/contract/contract_fixture.h"
#include "tests/contract/substitute_engine_windows.h"

// Which engine the adapter over the engine's objects takes, and what it makes of its values.

namespace parvex::test {
namespace {

using testing::HasSubstr;
using Type = standin::JetColumn::Type;

bool IsRegistered(const std::wstring& version) {
  CLSID id;
  return SUCCEEDED(CLSIDFromProgID((L"DAO.DBEngine." + version).c_str(), &id));
}

// What an installed or registered engine would decide otherwise.
class DatabaseEngine : public testing::Test {
 protected:
  void SetUp() override {
    if (IsRegistered(L"36") || IsRegistered(L"120")) GTEST_SKIP() << "an engine is registered here";
  }
};

TEST_F(DatabaseEngine, ThatIsAbsentIsAnErrorThatNamesBothIdentifiersTried) {
  windows::Machine machine;
  try {
    machine.GetProjectDatabases().Open("C:\\Project.mdb");
    ADD_FAILURE() << "opened";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800A01ADu);
    EXPECT_THAT(error.Description(), HasSubstr("DAO.DBEngine.36"));
    EXPECT_THAT(error.Description(), HasSubstr("DAO.DBEngine.120"));
    EXPECT_THAT(error.Description(), HasSubstr("Project.mdb"));
  }
}

class DatabaseEngineOf : public DatabaseEngine, public testing::WithParamInterface<const char*> {};

TEST_P(DatabaseEngineOf, ThisVersionAloneIsTakenAndItsTypedValuesReadAsText) {
  ContractMachine machine;
  const standin::JetTable table = {
      "T", {{"flag", Type::Boolean}, {"rate", Type::Single}}, {{"True", "0.5"}, {"False", std::nullopt}}};
  machine.files.Replace(machine.Path("Project.mdb"), standin::MakeJetDatabase({&table, 1}));
  const SubstituteEngine engine(GetParam());
  ASSERT_NE(IsRegistered(L"36"), IsRegistered(L"120"));
  const auto database = machine.projectDatabases.Open(machine.Path("Project.mdb"));
  const auto rows = database->OpenRecordSet("SELECT * FROM T");
  EXPECT_EQ(rows->Column("flag"), "True");
  EXPECT_EQ(rows->Column("rate"), "0.5");
  rows->MoveNext();
  EXPECT_EQ(rows->Column("flag"), "False");
  EXPECT_EQ(rows->Column("rate"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Versions, DatabaseEngineOf, testing::Values("36", "120"));

}  // namespace
}  // namespace parvex::test
