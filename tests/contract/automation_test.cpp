#include "seams/automation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "seams/member_errors.h"
#include "tests/contract/contract_fixture.h"
#include "tests/support/raised_by.h"

namespace parvex::test {
namespace {

using automation::Argument;
using automation::Value;

/// Has the property Kept and the method Swap, which exchanges what its two arguments refer to, and nothing else.
class Swapper : public automation::Object {
 public:
  explicit Swapper(std::string name) : name_(std::move(name)) {}
  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override {
    Need(member == "Kept", member);
    return kept_;
  }
  void Put(std::string_view member, const Value& value) override {
    Need(member == "Kept", member);
    kept_ = value;
  }
  Value Call(std::string_view member, std::span<Argument> arguments) override {
    Need(member == "Swap", member);
    std::swap(arguments[0].value, arguments[1].value);
    return arguments[0].byReference && arguments[1].byReference;
  }

 private:
  void Need(bool known, std::string_view member) const {
    if (!known) {
      throw automation::NoSuchMember(name_, member);
    }
  }
  const std::string name_;
  Value kept_;
};

class OfferedSwapper : public testing::Test {
 protected:
  ContractMachine machine;
  std::string id;
  automation::ObjectRef swapper = Created();

  automation::ObjectRef Created() {
    id = machine.Offer([this] { return std::make_shared<Swapper>(id); });
    return machine.automation.Create(id);
  }
};

TEST_F(OfferedSwapper, AMissingMemberIsErrorNumber438ThatNamesObjectAndMember) {
  const std::string expected = "438 " + id + ".Missing: the object has no such member";
  EXPECT_EQ(ErrorIn([&] { swapper->Get("Missing"); }), expected);
  EXPECT_EQ(ErrorIn([&] { swapper->Put("Missing", 1); }), expected);
  EXPECT_EQ(ErrorIn([&] { swapper->Call("Missing", {}); }), expected);
  Argument argument{1, true};
  EXPECT_EQ(ErrorIn([&] { swapper->Call("Missing", {&argument, 1}); }), expected);
}

TEST_F(OfferedSwapper, WhatIsPassedByReferenceComesBackAsTheMemberLeftIt) {
  const std::pair<Value, Value> pairs[] = {{std::string("a"), std::string("Größe 😀")},
                                           {std::string(), std::string("b\0c", 3)},
                                           {1, -2},
                                           {0.5, 1e300},
                                           {true, false}};
  for (const auto& [first, second] : pairs) {
    Argument arguments[] = {{first, true}, {second, true}};
    EXPECT_EQ(swapper->Call("Swap", arguments), Value(true));
    EXPECT_EQ(arguments[0].value, second) << second.index();
    EXPECT_EQ(arguments[1].value, first) << first.index();
  }
}

TEST_F(OfferedSwapper, AnObjectByReferenceIsReplacedByAnother) {
  const auto first = std::make_shared<Swapper>("first");
  const auto second = std::make_shared<Swapper>("second");
  first->Put("Kept", std::string("of the first"));
  second->Put("Kept", std::string("of the second"));
  Argument arguments[] = {{automation::ObjectRef(first), true}, {automation::ObjectRef(second), true}};
  swapper->Call("Swap", arguments);
  EXPECT_EQ(std::get<automation::ObjectRef>(arguments[0].value)->Get("Kept"), Value(std::string("of the second")));
  EXPECT_EQ(std::get<automation::ObjectRef>(arguments[1].value)->Get("Kept"), Value(std::string("of the first")));
}

TEST(AutomationContract, AnUnregisteredIdentifierCannotBeCreatedAndIsNamed) {
  ContractMachine machine;
  for (const char* id : {"Parvex.NoSuchClass", ""}) {
    try {
      machine.automation.Create(id);
      ADD_FAILURE() << "created " << id;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Number(), 0x800A01ADu);
      EXPECT_EQ(error.Description(), "no component is registered as \"" + std::string(id) + "\"");
    }
  }
}

}  // namespace
}  // namespace parvex::test
