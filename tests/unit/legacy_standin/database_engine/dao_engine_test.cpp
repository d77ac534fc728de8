#include "legacy_standin/database_engine/dao_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/jet/writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using test::RaisedBy;
using Type = JetColumn::Type;

constexpr const char* kPath = "C:\\Project.mdb";
constexpr int kNoSuchMember = 438;
constexpr int kFileNotFound = 3024;
constexpr int kInvalidPath = 3044;
constexpr int kNoSuchColumn = 3265;
constexpr int kObjectInvalid = 3420;
constexpr int kNoConversion = 3421;

class DaoEngineTest : public testing::Test {
 protected:
  DaoEngineTest() {
    const JetTable table = {"Config",
                            {{"sKey"}, {"lId", Type::Long}, {"dRate", Type::Double}, {"bUsed", Type::Boolean}},
                            {{"CompanyName", "7", "0.5", "True"}, {std::nullopt, std::nullopt, std::nullopt, "False"}}};
    machine.platform.files->Replace(kPath, MakeJetDatabase({&table, 1}));
  }

  static Value Call(const ObjectRef& object, std::string_view member, std::vector<Value> values = {}) {
    std::vector<Argument> arguments;
    for (Value& value : values) arguments.push_back({std::move(value), false});
    return object->Call(member, arguments);
  }
  static ObjectRef ObjectOf(const Value& value) { return std::get<ObjectRef>(value); }

  ObjectRef Engine() { return DaoClasses(*machine.platform.files).front().create(); }
  ObjectRef Database() { return ObjectOf(Call(Engine(), "OpenDatabase", {std::string(kPath)})); }
  ObjectRef Rows() { return ObjectOf(Call(Database(), "OpenRecordset", {std::string("SELECT * FROM Config"), 2})); }
  static Value Column(const ObjectRef& rows, const std::string& name) {
    return ObjectOf(Call(rows, "Fields", {name}))->Get("Value");
  }

  test::FakeMachine machine;
};

TEST_F(DaoEngineTest, IsOfferedUnderBothIdentifiers) {
  std::vector<std::string> names;
  for (const LateBoundClass& offered : DaoClasses(*machine.platform.files)) names.push_back(offered.create()->Name());
  EXPECT_THAT(names, testing::ElementsAre("DAO.DBEngine.36", "DAO.DBEngine.120"));
}

TEST_F(DaoEngineTest, ValuesHaveTheTypesOfTheirColumns) {
  const ObjectRef rows = Rows();
  EXPECT_EQ(Column(rows, "sKey"), Value("CompanyName"));
  EXPECT_EQ(Column(rows, "lId"), Value(7));
  EXPECT_EQ(Column(rows, "dRate"), Value(0.5));
  EXPECT_EQ(Column(rows, "bUsed"), Value(true));
  Call(rows, "movenext");
  EXPECT_EQ(Column(rows, "sKey"), Value());
  EXPECT_EQ(Column(rows, "lId"), Value());
  EXPECT_EQ(Column(rows, "bUsed"), Value(false));
  EXPECT_EQ(rows->Get("eof"), Value(false));
  Call(rows, "MoveNext");
  EXPECT_EQ(rows->Get("EOF"), Value(true));
}

TEST_F(DaoEngineTest, AmountsAndDatesAreNumbersAndBinaryValuesAreRefused) {
  const JetTable table = {"Config",
                          {{"money", Type::Currency}, {"day", Type::DateTime}, {"photo", Type::LongBinary}},
                          {{std::string("\x39\x30\0\0\0\0\0\0", 8), std::string("\0\0\0\0\0\0\x12\xC0", 8), "x"}}};
  machine.platform.files->Replace(kPath, MakeJetDatabase({&table, 1}));
  const ObjectRef rows = Rows();
  EXPECT_EQ(Column(rows, "money"), Value(1.2345));
  EXPECT_EQ(Column(rows, "day"), Value(-4.5));
  EXPECT_EQ(RaisedBy([&] { Column(rows, "photo"); }), 13);
}

TEST_F(DaoEngineTest, ReadsJet3Too) {
  const JetTable table = {"Config", {{"sKey"}, {"lId", Type::Long}}, {{"Köln €", "7"}}};
  machine.platform.files->Replace(kPath, MakeJetDatabase({&table, 1}, jet::Version::Jet3));
  EXPECT_EQ(Column(Rows(), "sKey"), Value("Köln €"));
  EXPECT_EQ(Column(Rows(), "lId"), Value(7));
}

TEST_F(DaoEngineTest, TakesTextsAndNumbers) {
  const ObjectRef rows = Rows();
  Call(rows, "Edit");
  const ObjectRef fields = ObjectOf(rows->Get("Fields"));
  const auto field = [&](const std::string& name) { return ObjectOf(Call(fields, "Item", {name})); };
  field("sKey")->Put("Value", 12);
  field("lId")->Put("Value", std::string("8"));
  field("dRate")->Put("Value", 0.1);
  field("bUsed")->Put("Value", false);
  EXPECT_EQ(RaisedBy([&] { field("sKey")->Put("Value", Value()); }), kNoConversion);
  Call(rows, "Update");
  const ObjectRef again = Rows();
  EXPECT_EQ(Column(again, "sKey"), Value("12"));
  EXPECT_EQ(Column(again, "lId"), Value(8));
  EXPECT_EQ(Column(again, "dRate"), Value(0.1));
  EXPECT_EQ(Column(again, "bUsed"), Value(false));
}

TEST_F(DaoEngineTest, FailuresCarryTheEnginesOwnNumbers) {
  const auto open = [&](const std::string& path) { return RaisedBy([&] { Call(Engine(), "OpenDatabase", {path}); }); };
  EXPECT_EQ(open("C:\\none.mdb"), kFileNotFound);
  EXPECT_EQ(open("C:\\none\\Project.mdb"), kInvalidPath);
  EXPECT_EQ(RaisedBy([&] { Call(Rows(), "Fields", {std::string("sWrong")}); }), kNoSuchColumn);
  EXPECT_EQ(RaisedBy([&] { Call(Engine(), "OpenDatabase"); }), 450);
  EXPECT_EQ(RaisedBy([&] { Call(Database(), "OpenRecordset", {std::string("SELECT * FROM Config"), 4}); }), 5);
}

TEST_F(DaoEngineTest, WhatWasClosedIsOfNoUse) {
  const ObjectRef rows = Rows();
  const ObjectRef field = ObjectOf(Call(rows, "Fields", {std::string("sKey")}));
  Call(rows, "Close");
  EXPECT_EQ(RaisedBy([&] { rows->Get("EOF"); }), kObjectInvalid);
  EXPECT_EQ(RaisedBy([&] { field->Get("Value"); }), kObjectInvalid);
  EXPECT_EQ(RaisedBy([&] { Call(rows, "Close"); }), kObjectInvalid);
  const ObjectRef database = Database();
  Call(database, "Close");
  EXPECT_EQ(RaisedBy([&] { Call(database, "OpenRecordset", {std::string("SELECT * FROM Config")}); }), kObjectInvalid);
}

TEST_F(DaoEngineTest, OtherMembersAreNotThere) {
  const ObjectRef rows = Rows();
  const ObjectRef field = ObjectOf(Call(rows, "Fields", {std::string("sKey")}));
  EXPECT_EQ(RaisedBy([&] { rows->Get("RecordCount"); }), kNoSuchMember);
  EXPECT_EQ(RaisedBy([&] { Call(rows, "Delete"); }), kNoSuchMember);
  EXPECT_EQ(RaisedBy([&] { field->Get("Type"); }), kNoSuchMember);
  EXPECT_EQ(RaisedBy([&] { Engine()->Put("Version", 1); }), kNoSuchMember);
}

}  // namespace
}  // namespace parvex::standin
