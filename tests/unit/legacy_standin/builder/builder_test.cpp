#include "legacy_standin/builder/builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy_standin/projects/stored_tag.h"
#include "seams/automation_error.h"
#include "tests/support/raised_by.h"
#include "tests/unit/legacy_standin/tag_project.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::KeyedItems;
using automation::ObjectRef;
using automation::Value;
using test::RaisedBy;

class BuilderTest : public testing::Test, protected TagProject {
 protected:
  BuilderTest() {
    machine.Write("C:\\Korvane\\TQ5-VX\\Bin\\Tools.xml",
                  "<Tools><Tool><Pdsg>RTU47</Pdsg><Version>5</Version></Tool>"
                  "<Tool><Pdsg>FCB47</Pdsg><Version>6</Version></Tool></Tools>");
  }

  static void View(automation::Object& builder) {
    Argument arguments[] = {{true}, {ObjectRef()}};
    builder.Call("View", arguments);
  }
  static bool IsLoaded(automation::Object& builder) { return std::get<bool>(builder.Get("UILoaded")); }

  ObjectRef Broker() {
    Builder builder(application);
    View(builder);
    return std::get<ObjectRef>(std::get<ObjectRef>(builder.Get("Framework"))->Get("ServiceBroker"));
  }

  Value Run(const std::string& commandLine) {
    const auto items = std::make_shared<KeyedItems>();
    items->emplace_back("Consumer", Argument{ObjectRef()});
    items->emplace_back("Builder", Argument{ObjectRef(), true});
    items->emplace_back("Command Line", Argument{commandLine});
    return CallService(items);
  }

  Value CallService(automation::CollectionRef items, const std::string& service = "Workflow Service") {
    Argument arguments[] = {{service}, {std::string("runBuilder")}, {std::move(items)}, {std::string("QuoteBuilder")}};
    return Broker()->Call("CallService", arguments);
  }

  std::vector<Unit> Units() { return store.ReadUnits("Clinic"); }
};

TEST_F(BuilderTest, IsLoadedAtTheThirdLookBehindView) {
  Builder builder(application);
  builder.Put("standalone", false);
  EXPECT_FALSE(std::get<bool>(builder.Get("standalone")));
  for (int i = 0; i < 5; ++i) {
    EXPECT_FALSE(IsLoaded(builder)) << "not before View";
  }
  View(builder);
  EXPECT_FALSE(IsLoaded(builder));
  EXPECT_FALSE(IsLoaded(builder));
  EXPECT_TRUE(IsLoaded(builder));
  EXPECT_TRUE(IsLoaded(builder));
}

TEST_F(BuilderTest, LoadsAsSlowlyAsItIsTold) {
  application.settings.builder.polls = 100;
  Builder builder(application);
  View(builder);
  int looks = 1;
  while (!IsLoaded(builder)) {
    ++looks;
  }
  EXPECT_EQ(looks, 101);
}

TEST_F(BuilderTest, RefusesWhatItHasNotAndWhatItCannotWorkWith) {
  Builder builder(application);
  EXPECT_EQ(RaisedBy([&] { builder.Get("Version"); }), 438);
  EXPECT_EQ(RaisedBy([&] { builder.Put("UILoaded", true); }), 438);
  EXPECT_EQ(RaisedBy([&] { builder.Put("standalone", std::string("no")); }), 13);
  EXPECT_EQ(RaisedBy([&] { builder.Call("View", {}); }), 450);
  Argument textForFlag[] = {{std::string("no")}, {ObjectRef()}};
  EXPECT_EQ(RaisedBy([&] { builder.Call("View", textForFlag); }), 13);
  Argument textForObject[] = {{true}, {std::string("no")}};
  EXPECT_EQ(RaisedBy([&] { builder.Call("View", textForObject); }), 13);
  EXPECT_EQ(RaisedBy([&] { builder.Get("Framework"); }), 5) << "not before View";
  builder.Call("Shutdown", {});
  EXPECT_EQ(RaisedBy([&] { View(builder); }), 5);
}

TEST_F(BuilderTest, FailsAtTheMemberThatItIsTold) {
  for (const char* member :
       {"standalone", "View", "UILoaded", "Framework", "ServiceBroker", "CallService", "Shutdown"}) {
    application.settings.builder.failAt = member;
    std::string failure;
    try {
      Builder builder(application);
      builder.Put("standalone", false);
      View(builder);
      IsLoaded(builder);
      Run("\\\\:Nowhere");
      builder.Call("Shutdown", {});
    } catch (const AutomationError& error) {
      failure = error.Description();
    }
    EXPECT_THAT(failure, testing::HasSubstr(std::string(".") + member + ": told to fail"));
  }
}

TEST_F(BuilderTest, MakesATagOfTheGroup) {
  Run("\\\\RTU47\\Clinic");
  const std::vector<Unit> units = Units();
  ASSERT_EQ(units.size(), 7u);
  EXPECT_EQ(units.back().tagId, 1107);
  EXPECT_EQ(TagNameOf(units.back()), "New RTU-1107");
  EXPECT_EQ(PdsgOf(units.back()), "RTU47");
  EXPECT_EQ(ProductAttribute(units.back(), "TagVersion"), "5");
}

TEST_F(BuilderTest, ConfiguresATag) {
  Run("\\\\\\RTU47\\RTU-1\\1101\\Clinic\\Clinic");
  EXPECT_EQ(FieldOf(Units()[0].keys, "Quantity"), "3");
  EXPECT_EQ(ProductAttribute(Units()[0], "Quantity"), "3");
  EXPECT_EQ(ProductAttribute(Units()[0], "TagVersion"), "5");
  EXPECT_EQ(ProductAttribute(Units()[1], "TagVersion"), "4.71.0");
}

TEST_F(BuilderTest, RefusesAQuantityAndATagNumberThatWouldGoRound) {
  std::vector<Unit> units = Units();
  for (auto& [key, value] : units[0].keys) {
    value = key == "Quantity" ? "2147483647" : value;
  }
  units[1].tagId = 2147483647;
  store.WriteUnits("Clinic", units);
  EXPECT_EQ(test::RaisedBy([&] { Run("\\\\\\RTU47\\RTU-1\\1101\\Clinic\\Clinic"); }), 6);
  EXPECT_EQ(test::RaisedBy([&] { Run("\\\\RTU47\\Clinic"); }), 6);
  EXPECT_EQ(Units(), units) << "nothing is changed";
}

TEST_F(BuilderTest, RebuildsEveryTagWithTheVersionOfItsTool) {
  Run("\\\\:Clinic");
  std::vector<std::string> versions;
  for (const Unit& unit : Units()) {
    versions.push_back(ProductAttribute(unit, "TagVersion"));
  }
  EXPECT_THAT(versions, testing::ElementsAre("5", "4.71.0", "4.71.0", "", "", "6"));
}

TEST_F(BuilderTest, ReturnsNormallyAndChangesNothingWhereTheCommandLineNamesNothing) {
  const std::vector<Unit> before = Units();
  for (const char* line : {"", "\\", "Clinic", "\\\\", "\\\\:", "\\\\:Nowhere", "\\\\:Cli\\nic", "\\\\RTU47\\Nowhere",
                           "\\\\\\RTU47\\No\\1\\Clinic\\1", "\\\\\\RTU47\\RTU-1\\1101\\Nowhere\\1",
                           "\\\\\\RTU47\\RTU-1", "\\\\Clinic", "\\\\RTU47\\a/b"}) {
    EXPECT_NO_THROW(Run(line)) << line;
    EXPECT_EQ(Units(), before) << line;
  }
}

TEST_F(BuilderTest, SaysWhetherItsUserCancelledAndThenChangesNothing) {
  const std::vector<Unit> before = Units();
  EXPECT_EQ(std::get<ObjectRef>(Run("\\\\:Nowhere"))->Get("Cancelled"), Value(false));
  application.settings.builder.cancelled = true;
  EXPECT_EQ(std::get<ObjectRef>(Run("\\\\RTU47\\Clinic"))->Get("Cancelled"), Value(true));
  EXPECT_EQ(Units(), before);
}

TEST_F(BuilderTest, RefusesACallThatIsNotTheOneItKnows) {
  EXPECT_EQ(RaisedBy([&] { CallService(nullptr); }), 13);
  EXPECT_EQ(RaisedBy([&] { CallService(std::make_shared<KeyedItems>()); }), 5);
  const auto misordered = std::make_shared<KeyedItems>();
  misordered->emplace_back("Builder", Argument{ObjectRef()});
  misordered->emplace_back("Consumer", Argument{ObjectRef()});
  misordered->emplace_back("Command Line", Argument{std::string()});
  EXPECT_EQ(RaisedBy([&] { CallService(misordered); }), 5);
  EXPECT_EQ(RaisedBy([&] { CallService(nullptr, "Other Service"); }), 5);
  EXPECT_EQ(RaisedBy([&] { Broker()->Call("RunService", {}); }), 438);
}

}  // namespace
}  // namespace parvex::standin
