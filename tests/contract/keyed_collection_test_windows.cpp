#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ocidl.h>

#include "adapters/windows/exposed_collection.h"
#include "adapters/windows/variant_values.h"
#include "keyed_collection.h"
#include "seams/automation.h"

// The argument collections as receivers meet them that know a runtime's own collection.

namespace parvex::windows {
namespace {

using automation::CollectionRef;
using automation::KeyedItems;
using automation::Value;
using testing::ElementsAre;

constexpr IID kRuntimeCollection = {0xa4c46780, 0x499f, 0x101b, {0xbb, 0x78, 0x00, 0xaa, 0x00, 0x38, 0x3c, 0xbb}};
constexpr HRESULT kInvalidCall = static_cast<HRESULT>(0x800A0005);
constexpr HRESULT kSubscript = static_cast<HRESULT>(0x800A0009);
constexpr HRESULT kMismatch = static_cast<HRESULT>(0x800A000D);
constexpr HRESULT kTaken = static_cast<HRESULT>(0x800A01C9);

Variant Of(const Value& value) { return ToVariant(value); }
Variant Text(const char* text) { return ToVariant(std::string(text)); }

Variant Typed(VARTYPE type, int number) {
  Variant value = ToVariant(number);
  EXPECT_HRESULT_SUCCEEDED(VariantChangeType(&value.Get(), &value.Get(), 0, type)) << type;
  return value;
}

VARIANT Missing() {
  VARIANT missing;
  V_VT(&missing) = VT_ERROR;
  V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
  return missing;
}

class KeyedCollection : public testing::Test {
 protected:
  CollectionRef items = std::make_shared<KeyedItems>(
      KeyedItems{{"Consumer", {1, false}}, {"Builder", {std::string("two"), true}}, {"Command Line", {true, false}}});
  ComPointer<_Collection> collection = ExposeCollection(items).As<_Collection>(kRuntimeCollection);

  HRESULT Item(Variant index, Value* found = nullptr) {
    Variant item;
    const HRESULT result = collection->Item(&index.Get(), item.Out());
    if (found != nullptr && SUCCEEDED(result)) {
      *found = FromVariant(item.Get(), "item");
    }
    return result;
  }
  Value Found(Variant index) {
    Value found;
    EXPECT_EQ(Item(std::move(index), &found), S_OK);
    return found;
  }
  HRESULT Add(Variant item, VARIANT key = Missing(), VARIANT before = Missing(), VARIANT after = Missing()) {
    return collection->Add(&item.Get(), &key, &before, &after);
  }
  std::vector<std::string> Keys() const {
    std::vector<std::string> keys;
    for (const auto& item : *items) keys.push_back(item.first);
    return keys;
  }
  ComPointer<IEnumVARIANT> Walk() {
    ComPointer<IUnknown> walk;
    EXPECT_EQ(collection->_NewEnum(walk.Out()), S_OK);
    return walk.As<IEnumVARIANT>(IID_IEnumVARIANT);
  }
  static std::vector<Value> Rest(const ComPointer<IEnumVARIANT>& walk) {
    std::vector<Value> rest;
    Variant item;
    while (walk->Next(1, item.Out(), nullptr) == S_OK) rest.push_back(FromVariant(item.Get(), "item"));
    return rest;
  }
};

TEST_F(KeyedCollection, HasTheInterfaceOfARuntimesCollection) {
  ASSERT_TRUE(collection);
  LONG count = 0;
  EXPECT_EQ(collection->Count(&count), S_OK);
  EXPECT_EQ(count, 3);
  EXPECT_TRUE(collection.As<IDispatch>(IID_IDispatch));
  const auto support = collection.As<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(kRuntimeCollection), S_OK);
}

TEST_F(KeyedCollection, ItemsAreFoundByEveryKindOfKeyAndNumber) {
  EXPECT_EQ(Found(Text("builder")), Value(std::string("two")));
  EXPECT_EQ(Found(Text("COMMAND LINE")), Value(true));
  for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT, VT_R4, VT_R8,
                             VT_CY, VT_DATE, VT_DECIMAL}) {
    EXPECT_EQ(Found(Typed(static_cast<VARTYPE>(type), 2)), Value(std::string("two"))) << type;
  }
  short number = 1;
  Variant reference;
  V_VT(&reference.Get()) = VT_BYREF | VT_I2;
  V_I2REF(&reference.Get()) = &number;
  EXPECT_EQ(Found(reference), Value(1));
  Variant inner = Text("BUILDER");
  V_VT(&reference.Get()) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference.Get()) = &inner.Get();
  EXPECT_EQ(Found(reference), Value(std::string("two")));
  V_VT(&reference.Get()) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&reference.Get()) = &V_BSTR(&inner.Get());
  EXPECT_EQ(Found(reference), Value(std::string("two")));
}

TEST_F(KeyedCollection, WhatIsNotThereIsTheRuntimesError) {
  EXPECT_EQ(Item(Text("nobody")), kInvalidCall);
  EXPECT_EQ(Item(Text("2")), kInvalidCall) << "a text is a key";
  EXPECT_EQ(Item(Text("")), kInvalidCall);
  for (const int number : {0, -1, 4, 2147483647}) {
    EXPECT_EQ(Item(Of(number)), kSubscript) << number;
  }
  EXPECT_EQ(Item(Of(1e300)), kSubscript);
  EXPECT_EQ(Item(Of(true)), kSubscript) << "true is the number -1";
  EXPECT_EQ(Item(Of(Value())), kMismatch);
  EXPECT_EQ(Item(Of(automation::ObjectRef())), kMismatch);
  Variant item;
  EXPECT_EQ(collection->Item(nullptr, item.Out()), kMismatch);
  Variant index = Of(1);
  EXPECT_EQ(collection->Item(&index.Get(), nullptr), E_POINTER);
  EXPECT_EQ(collection->Count(nullptr), E_POINTER);
  EXPECT_EQ(collection->_NewEnum(nullptr), E_POINTER);
  EXPECT_EQ(collection->Add(nullptr, nullptr, nullptr, nullptr), kInvalidCall);
}

TEST_F(KeyedCollection, ItemsAreAddedWhereTheyAreWantedAndRemoved) {
  EXPECT_EQ(Add(Of(4), Text("last").Get()), S_OK);
  EXPECT_EQ(Add(Of(0), Text("first").Get(), Of(1).Get()), S_OK);
  EXPECT_EQ(Add(Of(2), Text("middle").Get(), Missing(), Text("CONSUMER").Get()), S_OK);
  EXPECT_EQ(Add(Of(5)), S_OK);
  EXPECT_THAT(Keys(), ElementsAre("first", "Consumer", "middle", "Builder", "Command Line", "last", ""));
  Variant byNumber = Typed(VT_R8, 1);
  EXPECT_EQ(collection->Remove(&byNumber.Get()), S_OK);
  Variant byKey = Text("builder");
  EXPECT_EQ(collection->Remove(&byKey.Get()), S_OK);
  EXPECT_EQ(collection->Remove(&byKey.Get()), kInvalidCall);
  EXPECT_THAT(Keys(), ElementsAre("Consumer", "middle", "Command Line", "last", ""));
}

TEST_F(KeyedCollection, AnAdditionThatCannotBeIsRefusedAndChangesNothing) {
  EXPECT_EQ(Add(Of(4), Text("BUILDER").Get()), kTaken);
  EXPECT_EQ(Add(Of(4), Of(1).Get()), kMismatch) << "a key is a text";
  EXPECT_EQ(Add(Of(4), Missing(), Of(1).Get(), Of(1).Get()), kInvalidCall) << "before and after";
  EXPECT_EQ(Add(Of(4), Missing(), Text("nobody").Get()), kInvalidCall);
  EXPECT_EQ(Add(Of(4), Missing(), Missing(), Of(4).Get()), kSubscript);
  EXPECT_THAT(Keys(), ElementsAre("Consumer", "Builder", "Command Line"));
}

TEST_F(KeyedCollection, AValueOfEveryTypeIsGivenBackAsItWas) {
  Variant array;
  V_VT(&array.Get()) = VT_ARRAY | VT_UI1;
  V_ARRAY(&array.Get()) = SafeArrayCreateVector(VT_UI1, 0, 3);
  Variant null;
  V_VT(&null.Get()) = VT_NULL;
  for (Variant value : {Typed(VT_I2, 7), Typed(VT_DATE, 7), Typed(VT_CY, 7), array, null, Of(7), Text("7")}) {
    ASSERT_EQ(Add(value, Text("kept").Get()), S_OK);
    Variant index = Text("kept");
    Variant item;
    EXPECT_EQ(collection->Item(&index.Get(), item.Out()), S_OK);
    EXPECT_EQ(V_VT(&item.Get()), V_VT(&value.Get()));
    EXPECT_EQ(collection->Remove(&index.Get()), S_OK);
  }
}

TEST_F(KeyedCollection, AnEnumerationIsOfTheItemsThatWereThere) {
  const auto walk = Walk();
  ULONG fetched = 9;
  Variant two[2];
  EXPECT_EQ(walk->Next(2, &two[0].Get(), &fetched), S_OK);
  EXPECT_EQ(fetched, 2u);
  items->clear();
  EXPECT_EQ(walk->Skip(5), S_FALSE);
  EXPECT_EQ(walk->Reset(), S_OK);
  EXPECT_THAT(Rest(walk), ElementsAre(Value(1), Value(std::string("two")), Value(true)));
  EXPECT_EQ(Add(Of(8)), S_OK);
  EXPECT_THAT(Rest(Walk()), ElementsAre(Value(8)));
}

TEST_F(KeyedCollection, AnEnumeratorRefusesWhatItCannotAnswer) {
  const auto walk = Walk();
  Variant item;
  ULONG fetched = 9;
  EXPECT_EQ(walk->Next(1, nullptr, &fetched), E_POINTER);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(walk->Next(2, item.Out(), nullptr), E_INVALIDARG);
  EXPECT_EQ(walk->Clone(nullptr), E_POINTER);
  EXPECT_EQ(walk->Next(0, nullptr, nullptr), S_OK);
  EXPECT_EQ(walk->Next(1, item.Out(), nullptr), S_OK);
  EXPECT_EQ(FromVariant(item.Get(), "item"), Value(1)) << "nothing was lost meanwhile";
}

TEST_F(KeyedCollection, TypeInformationNamesItsMembers) {
  UINT count = 0;
  EXPECT_EQ(collection->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  ComPointer<ITypeInfo> info;
  ASSERT_EQ(collection->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Out()), S_OK);
  const std::pair<const wchar_t*, DISPID> members[] = {
      {L"Item", 0}, {L"add", 1}, {L"COUNT", 2}, {L"Remove", 3}, {L"_NewEnum", DISPID_NEWENUM}};
  for (const auto& [name, id] : members) {
    auto* asked = const_cast<wchar_t*>(name);
    DISPID found = 99;
    EXPECT_EQ(collection->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &found), S_OK);
    EXPECT_EQ(found, id);
    EXPECT_EQ(info->GetIDsOfNames(&asked, 1, &found), S_OK);
  }
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->guid, kRuntimeCollection);
  info->ReleaseTypeAttr(attributes);
  const auto classInfo = collection.As<IProvideClassInfo>(IID_IProvideClassInfo);
  ASSERT_TRUE(classInfo);
  ASSERT_EQ(classInfo->GetClassInfo(info.Out()), S_OK);
  Bstr name;
  EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(name.Text(), "Collection");
}

TEST_F(KeyedCollection, ArgumentsAreTakenByName) {
  wchar_t member[] = L"Add", before[] = L"Before", item[] = L"Item", key[] = L"Key";
  LPOLESTR names[] = {member, before, item, key};
  DISPID ids[4] = {};
  ASSERT_EQ(collection->GetIDsOfNames(IID_NULL, names, 4, LOCALE_USER_DEFAULT, ids), S_OK);
  const Variant first = Of(1);
  const Variant value = Text("value");
  const Variant name = Text("named");
  VARIANTARG arguments[] = {first.Get(), value.Get(), name.Get()};
  DISPPARAMS parameters = {arguments, ids + 1, 3, 3};
  EXPECT_EQ(collection->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                               nullptr),
            S_OK);
  EXPECT_THAT(Keys(), ElementsAre("named", "Consumer", "Builder", "Command Line"));
  EXPECT_EQ(Found(Text("named")), Value(std::string("value")));
}

}  // namespace
}  // namespace parvex::windows
