#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapters/windows/com_object.h"
#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/variant_values.h"
#include "seams/member_errors.h"

// Objects of this system driven from outside, and outer objects driven from here: one drives the other through
// IDispatch, as a script and the report server would.

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
using automation::ObjectRef;
using automation::Value;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint32_t kToldToFail = 0x80040123u;

/// Echoes what it is given.
class Echo : public automation::Object {
 public:
  std::string Name() const override { return "Echo"; }
  Value Get(std::string_view member) override {
    if (member == "Fail") throw AutomationError(kToldToFail, "Echo.Fail", "told to fail");
    if (member == "Method") throw automation::NoSuchMember("Echo", member);
    return kept;
  }
  void Put(std::string_view, const Value& value) override { kept = value; }
  Value Call(std::string_view member, std::span<Argument> arguments) override {
    calls.push_back(std::string(member) + "/" + std::to_string(arguments.size()));
    if (member == "Swap") std::swap(arguments[0].value, arguments[1].value);
    return arguments.empty() ? Value() : arguments.back().value;
  }

  Value kept;
  std::vector<std::string> calls;
};

class ExposedAutomation : public testing::Test {
 protected:
  std::shared_ptr<Echo> inner = std::make_shared<Echo>();
  /// The same object, seen through its dispatch interface.
  ObjectRef outer = WrapDispatch(ExposeObject(inner), "Outer");

  Value RoundTrip(const Value& value) {
    outer->Put("Kept", value);
    return outer->Get("Kept");
  }
};

TEST_F(ExposedAutomation, ValuesOfEveryKindTravelThereAndBack) {
  for (const Value& value : {Value(), Value(true), Value(false), Value(-2147483647 - 1), Value(0.1),
                             Value(std::string()), Value(std::string("Größe 😀")), Value(std::string("a\0b", 3))}) {
    EXPECT_EQ(RoundTrip(value), value) << value.index();
  }
  EXPECT_EQ(RoundTrip(ObjectRef()), Value(ObjectRef()));
}

TEST_F(ExposedAutomation, ArgumentsComeInTheirOrder) {
  Argument arguments[] = {{1, false}, {std::string("two"), false}, {3.5, false}};
  EXPECT_EQ(outer->Call("Last", arguments), Value(3.5));
  EXPECT_THAT(inner->calls, ElementsAre("Last/3"));
}

TEST_F(ExposedAutomation, WhatIsPassedByReferenceComesBackChangedAndTheRestDoesNot) {
  Argument arguments[] = {{std::string("a"), true}, {std::string("b"), true}};
  outer->Call("Swap", arguments);
  EXPECT_EQ(arguments[0].value, Value(std::string("b")));
  EXPECT_EQ(arguments[1].value, Value(std::string("a")));
  Argument values[] = {{std::string("a"), false}, {std::string("b"), false}};
  outer->Call("Swap", values);
  EXPECT_EQ(values[0].value, Value(std::string("a")));
}

TEST_F(ExposedAutomation, AFailureKeepsItsNumberSourceAndDescription) {
  try {
    outer->Get("Fail");
    ADD_FAILURE() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), kToldToFail);
    EXPECT_EQ(error.Source(), "Echo.Fail");
    EXPECT_EQ(error.Description(), "told to fail");
  }
}

TEST_F(ExposedAutomation, AMemberThatAScriptMayMeanEitherWayIsTriedAsAProperty) {
  const ComPointer<IDispatch> dispatch = ExposeObject(inner);
  const auto invoke = [&](const wchar_t* name) {
    auto* asked = const_cast<wchar_t*>(name);
    DISPID id = 0;
    EXPECT_EQ(dispatch->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    DISPPARAMS none = {};
    Variant answer;
    EXPECT_EQ(dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                               answer.Out(), nullptr, nullptr),
              S_OK);
    return FromVariant(answer.Get(), "answer");
  };
  inner->kept = 7;
  EXPECT_EQ(invoke(L"Kept"), Value(7));
  invoke(L"Method");
  EXPECT_THAT(inner->calls, ElementsAre("Method/0"));
}

TEST_F(ExposedAutomation, AnOuterObjectThatComesBackIsTheOneThatWentIn) {
  const auto second = std::make_shared<Echo>();
  second->kept = std::string("second");
  const Value back = RoundTrip(ObjectRef(second));
  EXPECT_EQ(std::get<ObjectRef>(back)->Get("Kept"), second->kept);
  const ObjectRef wrapped = WrapDispatch(ExposeObject(second), "Second");
  EXPECT_EQ(ExposeObject(wrapped).Get(), ExposeObject(wrapped).Get()) << "no object is wrapped twice";
}

TEST_F(ExposedAutomation, AnObjectAnswersTheInterfacesItHas) {
  const ComPointer<IDispatch> dispatch = ExposeObject(inner);
  EXPECT_TRUE(dispatch.As<IUnknown>(IID_IUnknown));
  EXPECT_TRUE(dispatch.As<IDispatch>(IID_IDispatch));
  EXPECT_FALSE(dispatch.As<IUnknown>(IID_IEnumVARIANT));
  EXPECT_EQ(dispatch->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
  UINT count = 7;
  EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
}

TEST(ExposedObjects, AreCountedWhileTheyLive) {
  const long before = ModuleUse::Count();
  {
    const auto inner = std::make_shared<Echo>();
    const ObjectRef outer = WrapDispatch(ExposeObject(inner), "Outer");
    outer->Put("Kept", ObjectRef(std::make_shared<Echo>()));
    outer->Put("Kept", std::make_shared<KeyedItems>());
    EXPECT_GT(ModuleUse::Count(), before);
    inner->kept = Value();
    EXPECT_EQ(ModuleUse::Count(), before + 1) << "what nobody holds is gone";
  }
  EXPECT_EQ(ModuleUse::Count(), before);
  ModuleUse::Lock();
  EXPECT_EQ(ModuleUse::Count(), before + 1);
  ModuleUse::Unlock();
}

// --- Collections -----------------------------------------------------------------------------------------------------

class ExposedCollection : public testing::Test {
 protected:
  CollectionRef items = std::make_shared<KeyedItems>(
      KeyedItems{{"first", {1, false}}, {"second", {std::string("two"), false}}, {"third", {true, false}}});
  ComPointer<IDispatch> dispatch = ComPointer<IDispatch>::Share(V_DISPATCH(&ToVariant(items).Get()));
  ObjectRef outer = WrapDispatch(dispatch, "Items");

  Value Item(Value key) {
    Argument argument{std::move(key), false};
    return outer->Call("Item", {&argument, 1});
  }
};

TEST_F(ExposedCollection, ItemsAreFoundByKeyAndByNumber) {
  EXPECT_EQ(outer->Get("Count"), Value(3));
  EXPECT_EQ(Item(std::string("SECOND")), Value(std::string("two")));
  EXPECT_EQ(Item(1), Value(1));
  EXPECT_EQ(Item(3), Value(true));
}

TEST_F(ExposedCollection, WhatIsNotInItIsAnError) {
  EXPECT_THROW(Item(0), AutomationError);
  EXPECT_THROW(Item(4), AutomationError);
  EXPECT_THROW(Item(std::string("fourth")), AutomationError);
  EXPECT_THROW(Item(true), AutomationError);
  EXPECT_THROW(outer->Get("NoSuchMember"), AutomationError);
}

TEST_F(ExposedCollection, IsChangedForItsOwnerToo) {
  Argument added[] = {{std::string("four"), false}, {std::string("fourth"), false}};
  outer->Call("Add", added);
  Argument removed{std::string("first"), false};
  outer->Call("Remove", {&removed, 1});
  ASSERT_EQ(items->size(), 3u);
  EXPECT_EQ(items->front().first, "second");
  EXPECT_EQ(items->back().first, "fourth");
  EXPECT_EQ(items->back().second.value, Value(std::string("four")));
}

TEST_F(ExposedCollection, IsWalkedThroughByItsEnumerator) {
  DISPPARAMS none = {};
  Variant answer;
  ASSERT_EQ(dispatch->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, answer.Out(),
                             nullptr, nullptr),
            S_OK);
  const auto walk = ComPointer<IUnknown>::Share(V_UNKNOWN(&answer.Get())).As<IEnumVARIANT>(IID_IEnumVARIANT);
  ASSERT_TRUE(walk);
  Variant item;
  ULONG got = 0;
  EXPECT_EQ(walk->Next(1, item.Out(), &got), S_OK);
  EXPECT_EQ(FromVariant(item.Get(), "item"), Value(1));
  ComPointer<IEnumVARIANT> copy;
  EXPECT_EQ(walk->Clone(copy.Out()), S_OK);
  EXPECT_EQ(walk->Skip(1), S_OK);
  EXPECT_EQ(walk->Next(1, item.Out(), &got), S_OK);
  EXPECT_EQ(FromVariant(item.Get(), "item"), Value(true));
  EXPECT_EQ(walk->Next(1, item.Out(), &got), S_FALSE);
  EXPECT_EQ(got, 0u);
  EXPECT_EQ(walk->Skip(1), S_FALSE);
  EXPECT_EQ(walk->Reset(), S_OK);
  EXPECT_EQ(walk->Skip(3), S_OK);
  EXPECT_EQ(copy->Next(1, item.Out(), nullptr), S_OK);
  EXPECT_EQ(FromVariant(item.Get(), "item"), Value(std::string("two"))) << "a copy goes on where it was made";
}

// --- Values from outside ---------------------------------------------------------------------------------------------

TEST(FromVariant, ReadsASingleAsItsShortestDecimal) {
  Variant single;
  V_VT(&single.Get()) = VT_R4;
  V_R4(&single.Get()) = 0.1F;
  EXPECT_EQ(FromVariant(single.Get(), "single"), Value(0.1));
}

TEST(FromVariant, ReadsSmallAndLargeIntegersDatesAndCurrency) {
  Variant value;
  V_VT(&value.Get()) = VT_I2;
  V_I2(&value.Get()) = -5;
  EXPECT_EQ(FromVariant(value.Get(), "short"), Value(-5));
  V_VT(&value.Get()) = VT_CY;
  V_CY(&value.Get()).int64 = 12500;
  EXPECT_EQ(FromVariant(value.Get(), "currency"), Value(1.25));
  V_VT(&value.Get()) = VT_I8;
  V_I8(&value.Get()) = 5'000'000'000;
  EXPECT_EQ(FromVariant(value.Get(), "large"), Value(std::string("5000000000"))) << "no digit is lost";
}

TEST(FromVariant, RefusesWhatItCannotRead) {
  Variant array;
  V_VT(&array.Get()) = VT_ARRAY | VT_I4;
  V_ARRAY(&array.Get()) = SafeArrayCreateVector(VT_I4, 0, 1);
  try {
    FromVariant(array.Get(), "Items.Item");
    ADD_FAILURE() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 13);
    EXPECT_THAT(error.Description(), HasSubstr("Items.Item"));
  }
}

}  // namespace
}  // namespace parvex::windows
