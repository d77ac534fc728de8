#include "journal/journalled_automation.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <sstream>

#include "seams/automation_error.h"

namespace parvex::journal {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

// An object of the outside: what its members do is up to the test.
struct FakeObject : Object {
  std::string name = "outside's own name";
  std::function<Value(std::string_view)> get = [](std::string_view) { return Value(); };
  std::function<void(std::string_view, const Value&)> put = [](std::string_view, const Value&) {};
  std::function<Value(std::string_view, std::span<Argument>)> call = [](std::string_view, std::span<Argument>) {
    return Value();
  };

  std::string Name() const override { return name; }
  Value Get(std::string_view member) override { return get(member); }
  void Put(std::string_view member, const Value& value) override { put(member, value); }
  Value Call(std::string_view member, std::span<Argument> arguments) override { return call(member, arguments); }
};

struct FakeAutomation : automation::Automation {
  std::shared_ptr<FakeObject> object = std::make_shared<FakeObject>();
  ObjectRef Create(std::string_view programmaticId) override {
    if (programmaticId == "Missing.Class") {
      throw MakeRuntimeError(RuntimeError::CannotCreateObject, "no Missing.Class");
    }
    return object;
  }
};

class JournalledAutomationTest : public testing::Test {
 protected:
  // The lines written since the last call of this.
  std::string NewLines() {
    const std::string lines = out_.str();
    out_.str("");
    return lines;
  }
  ObjectRef CreateQuietly(const char* programmaticId = "A.B") {
    ObjectRef object = journalled_.Create(programmaticId);
    NewLines();
    return object;
  }

  std::ostringstream out_;
  FakeAutomation outside_;
  FakeObject& fake_ = *outside_.object;
  JournalledAutomation journalled_{outside_, out_};
};

std::string Line(const std::string& object, const std::string& op, const std::string& member = "",
                 const std::string& args = "[]", const std::string& result = "null") {
  return "{\"kind\":\"automation\",\"object\":\"" + object + "\",\"op\":\"" + op + "\",\"member\":\"" + member +
         "\",\"args\":" + args + ",\"result\":" + result + "}\n";
}

TEST_F(JournalledAutomationTest, WritesCreationAndRelease) {
  ObjectRef object = journalled_.Create("A.B");
  EXPECT_EQ(object->Name(), "A.B");
  EXPECT_EQ(NewLines(), Line("A.B", "create"));
  ObjectRef second = object;
  object.reset();
  EXPECT_EQ(NewLines(), "");
  second.reset();
  EXPECT_EQ(NewLines(), Line("A.B", "release"));
}

TEST_F(JournalledAutomationTest, NumbersTheObjectsOfAProgrammaticIdFromTheSecondOn) {
  const ObjectRef first = journalled_.Create("A.B");
  const ObjectRef second = journalled_.Create("A.B");
  const ObjectRef other = journalled_.Create("C.D");
  const ObjectRef third = journalled_.Create("A.B");
  EXPECT_EQ(NewLines(),
            Line("A.B", "create") + Line("A.B#2", "create") + Line("C.D", "create") + Line("A.B#3", "create"));
  EXPECT_EQ(third->Name(), "A.B#3");
}

TEST_F(JournalledAutomationTest, DoesNotReuseTheNumberOfAReleasedObject) {
  CreateQuietly().reset();
  EXPECT_EQ(journalled_.Create("A.B")->Name(), "A.B#2");
}

TEST_F(JournalledAutomationTest, WritesAFailedCreationThatDoesNotCount) {
  EXPECT_THROW(journalled_.Create("Missing.Class"), AutomationError);
  EXPECT_EQ(NewLines(),
            "{\"kind\":\"automation\",\"object\":\"Missing.Class\",\"op\":\"create\",\"member\":\"\",\"args\":[],"
            "\"result\":null,\"error\":{\"number\":\"0x800A01AD\",\"source\":\"Parvex\","
            "\"description\":\"no Missing.Class\"}}\n");
}

TEST_F(JournalledAutomationTest, WritesGetsWithTheirValue) {
  const ObjectRef object = CreateQuietly();
  const std::pair<Value, std::string> values[] = {
      {Value(), "null"},
      {Value(true), "true"},
      {Value(std::int32_t{-7}), "-7"},
      {Value(2.5), "2.5"},
      {Value(std::string("a\"\xC3\xBC")), "\"a\\\"\xC3\xBC\""},
      {Value(ObjectRef()), "null"},
      {Value(CollectionRef()), "null"},
  };
  for (const auto& [value, json] : values) {
    fake_.get = [&](std::string_view) { return value; };
    EXPECT_EQ(value, object->Get("UILoaded"));
    EXPECT_EQ(NewLines(), Line("A.B", "get", "UILoaded", "[]", json));
  }
}

TEST_F(JournalledAutomationTest, WritesPutsWithOneArgument) {
  const ObjectRef object = CreateQuietly();
  Value seen;
  fake_.put = [&](std::string_view member, const Value& value) {
    EXPECT_EQ(member, "standalone");
    seen = value;
  };
  object->Put("standalone", false);
  EXPECT_EQ(Value(false), seen);
  EXPECT_EQ(NewLines(), Line("A.B", "put", "standalone", "[false]"));
}

TEST_F(JournalledAutomationTest, WritesByReferenceArgumentsWithTheirValueBeforeTheCall) {
  const ObjectRef object = CreateQuietly();
  fake_.call = [](std::string_view, std::span<Argument> arguments) {
    EXPECT_TRUE(arguments[0].byReference);
    arguments[0].value = std::string("after");
    return Value(true);
  };
  std::vector<Argument> arguments = {{std::string("before"), true}, {std::int32_t{1}}};
  EXPECT_EQ(Value(true), object->Call("MakeReport", arguments));
  EXPECT_EQ(Value(std::string("after")), arguments[0].value);
  EXPECT_EQ(NewLines(), Line("A.B", "call", "MakeReport", "[\"before\",1]", "true"));
}

TEST_F(JournalledAutomationTest, NamesAnObjectFromAMemberByParentAndMember) {
  const ObjectRef object = CreateQuietly();
  const auto framework = std::make_shared<FakeObject>();
  const auto broker = std::make_shared<FakeObject>();
  fake_.get = [&](std::string_view) { return Value(ObjectRef(framework)); };
  framework->get = [&](std::string_view) { return Value(ObjectRef(broker)); };
  ObjectRef gotFramework = std::get<ObjectRef>(object->Get("Framework"));
  ObjectRef gotBroker = std::get<ObjectRef>(gotFramework->Get("ServiceBroker"));
  EXPECT_EQ(NewLines(),
            Line("A.B", "get", "Framework", "[]", "{\"object\":\"A.B.Framework\"}") +
                Line("A.B.Framework", "get", "ServiceBroker", "[]", "{\"object\":\"A.B.Framework.ServiceBroker\"}"));
  gotFramework.reset();
  gotBroker.reset();
  EXPECT_EQ(NewLines(), Line("A.B.Framework", "release") + Line("A.B.Framework.ServiceBroker", "release"));
}

TEST_F(JournalledAutomationTest, JournalsTheObjectThatACallGivesBack) {
  const ObjectRef object = CreateQuietly("A.B");
  const auto given = std::make_shared<FakeObject>();
  fake_.call = [&](std::string_view, std::span<Argument>) { return Value(ObjectRef(given)); };
  object->Call("Run", {});
  EXPECT_EQ(NewLines(), Line("A.B", "call", "Run", "[]", "{\"object\":\"A.B.Run\"}") + Line("A.B.Run", "release"));
}

TEST_F(JournalledAutomationTest, WritesObjectsEmptyReferencesAndKeyedCollectionsAsArguments) {
  const ObjectRef builder = CreateQuietly("K.Builder");
  const auto consumer = std::make_shared<FakeObject>();
  consumer->name = "LegacyORLAPull";
  const auto items = std::make_shared<KeyedItems>(KeyedItems{
      {"Consumer", {ObjectRef(consumer)}}, {"Builder", {builder, true}}, {"Command Line", {std::string("\\\\X\\Y")}}});
  std::vector<Argument> arguments = {{true}, {ObjectRef()}, {CollectionRef(items)}};
  builder->Call("View", arguments);
  EXPECT_EQ(NewLines(),
            Line("K.Builder", "call", "View",
                 "[true,null,[[\"Consumer\",{\"object\":\"LegacyORLAPull\"}],[\"Builder\",{\"object\":\"K.Builder\"}],"
                 "[\"Command Line\",\"\\\\\\\\X\\\\Y\"]]]"));
}

TEST_F(JournalledAutomationTest, TheOutsideGetsItsOwnObjectsBackAtAnyDepth) {
  const ObjectRef object = CreateQuietly();
  const auto inner = std::make_shared<KeyedItems>(KeyedItems{{"k", {object}}});
  const auto outer =
      std::make_shared<KeyedItems>(KeyedItems{{"direct", {object, true}}, {"nested", {CollectionRef(inner)}}});
  fake_.call = [&](std::string_view, std::span<Argument> arguments) {
    EXPECT_EQ(Value(ObjectRef(outside_.object)), arguments[0].value);
    const auto& seen = *std::get<CollectionRef>(arguments[1].value);
    EXPECT_EQ(Value(ObjectRef(outside_.object)), seen[0].second.value);
    EXPECT_TRUE(seen[0].second.byReference);
    const auto& nested = *std::get<CollectionRef>(seen[1].second.value);
    EXPECT_EQ(Value(ObjectRef(outside_.object)), nested[0].second.value);
    return Value();
  };
  std::vector<Argument> arguments = {{object}, {CollectionRef(outer)}};
  object->Call("Run", arguments);
  EXPECT_EQ(Value(object), arguments[0].value);
  EXPECT_EQ(Value(CollectionRef(outer)), arguments[1].value);
  EXPECT_EQ(Value(object), (*outer)[0].second.value);
  EXPECT_EQ(Value(CollectionRef(inner)), (*outer)[1].second.value);
  EXPECT_EQ(Value(object), (*inner)[0].second.value);

  Value put;
  fake_.put = [&](std::string_view, const Value& value) { put = value; };
  object->Put("Owner", object);
  EXPECT_EQ(Value(ObjectRef(outside_.object)), put);
}

TEST_F(JournalledAutomationTest, WhatTheOutsideDidToACollectionIsSeenByItsCaller) {
  const ObjectRef object = CreateQuietly();
  const auto given = std::make_shared<FakeObject>();
  fake_.call = [&](std::string_view, std::span<Argument> arguments) {
    auto& items = *std::get<CollectionRef>(arguments[0].value);
    items[0].second.value = std::string("changed");
    items.push_back({"new", {ObjectRef(given)}});
    return Value();
  };
  const auto items = std::make_shared<KeyedItems>(KeyedItems{{"first", {std::string("1")}}});
  std::vector<Argument> arguments = {{CollectionRef(items)}};
  object->Call("Fill", arguments);
  ASSERT_EQ(items->size(), 2u);
  EXPECT_EQ(Value(std::string("changed")), (*items)[0].second.value);
  EXPECT_EQ((*items)[1].first, "new");
  EXPECT_EQ(std::get<ObjectRef>((*items)[1].second.value)->Name(), "A.B.Fill");
}

TEST_F(JournalledAutomationTest, WritesFailuresOfEachOperationAndPassesThemOn) {
  const ObjectRef object = CreateQuietly();
  const AutomationError error(0x80020003u, "A.B", "no such member");
  fake_.get = [&](std::string_view) -> Value { throw error; };
  fake_.put = [&](std::string_view, const Value&) { throw error; };
  fake_.call = [&](std::string_view, std::span<Argument>) -> Value { throw error; };
  std::vector<Argument> arguments = {{std::string("x"), true}};
  const std::string tail =
      ",\"result\":null,\"error\":{\"number\":\"0x80020003\",\"source\":\"A.B\",\"description\":\"no such member\"}}\n";
  const std::string head = "{\"kind\":\"automation\",\"object\":\"A.B\",\"op\":\"";
  EXPECT_THROW(object->Get("G"), AutomationError);
  EXPECT_EQ(head + "get\",\"member\":\"G\",\"args\":[]" + tail, NewLines());
  EXPECT_THROW(object->Put("P", true), AutomationError);
  EXPECT_EQ(head + "put\",\"member\":\"P\",\"args\":[true]" + tail, NewLines());
  EXPECT_THROW(object->Call("C", arguments), AutomationError);
  EXPECT_EQ(head + "call\",\"member\":\"C\",\"args\":[\"x\"]" + tail, NewLines());
}

TEST_F(JournalledAutomationTest, WritesWhatACallCausedBeforeTheCall) {
  const ObjectRef object = CreateQuietly();
  fake_.call = [&](std::string_view, std::span<Argument>) {
    journalled_.Create("C.D");
    return Value();
  };
  object->Call("Run", {});
  EXPECT_EQ(NewLines(), Line("C.D", "create") + Line("C.D", "release") + Line("A.B", "call", "Run"));
}

TEST_F(JournalledAutomationTest, WritesANumberThatJsonLacksAsNull) {
  const ObjectRef object = CreateQuietly();
  fake_.get = [](std::string_view) { return Value(std::numeric_limits<double>::infinity()); };
  object->Get("N");
  EXPECT_EQ(NewLines(), Line("A.B", "get", "N"));
}

}  // namespace
}  // namespace parvex::journal
