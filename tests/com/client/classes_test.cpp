#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/com/public_classes.h"

// What a host is compiled against: classes, interfaces, slots, member ids.

namespace parvex::test {
namespace {

constexpr std::size_t kFirstSlot = 7;  // behind the methods of IDispatch

class EveryClass : public testing::TestWithParam<PublicClass> {
 protected:
  ComPointer<IUnknown> MakeObject(REFIID id = IID_IUnknown) const {
    ComPointer<IUnknown> object;
    EXPECT_HRESULT_SUCCEEDED(
        CoCreateInstance(GetParam().id, nullptr, CLSCTX_INPROC_SERVER, id, reinterpret_cast<void**>(object.Out())));
    return object;
  }
};

INSTANTIATE_TEST_SUITE_P(Published, EveryClass, testing::ValuesIn(PublicClasses()),
                         [](const auto& info) { return info.param.name; });

TEST_P(EveryClass, BothProgrammaticIdsAndTheClassIdMakeIt) {
  for (const std::string& id : {GetParam().ProgrammaticId(), GetParam().ProgrammaticId() + ".1"}) {
    CLSID named;
    EXPECT_HRESULT_SUCCEEDED(CLSIDFromProgID(windows::Widen(id).c_str(), &named));
    EXPECT_EQ(named, GetParam().id) << id;
    EXPECT_TRUE(Create<IDispatch>(id)) << id;
  }
  EXPECT_TRUE(MakeObject());
}

TEST_P(EveryClass, ItsVersionedProgrammaticIdIsTheOneThatTheClassGives) {
  wchar_t* given = nullptr;
  ASSERT_HRESULT_SUCCEEDED(ProgIDFromCLSID(GetParam().id, &given));
  EXPECT_EQ(windows::Narrow(given), GetParam().ProgrammaticId() + ".1");
  CoTaskMemFree(given);
}

TEST_P(EveryClass, OffersItsInterfaceAndDispatchAndErrorInformationAndNoOther) {
  const ComPointer<IUnknown> object = MakeObject();
  for (const IID& id : {GetParam().interfaceId, IID_IDispatch, IID_ISupportErrorInfo}) {
    const ComPointer<IUnknown> offered = object.As<IUnknown>(id);
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered.As<IUnknown>(IID_IUnknown).Get(), object.Get()) << "one identity";
  }
  for (const PublicClass& other : PublicClasses()) {
    EXPECT_EQ(static_cast<bool>(object.As<IUnknown>(other.interfaceId)), other.name == GetParam().name) << other.name;
  }
  EXPECT_FALSE(object.As<IUnknown>(IID_IPersist));
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_P(EveryClass, SupportsErrorInformationForItsOwnInterfaceOnly) {
  const auto support = MakeObject().As<ISupportErrorInfo>(IID_ISupportErrorInfo);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(GetParam().interfaceId), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);
}

TEST_P(EveryClass, IsNotAggregated) {
  const ComPointer<IUnknown> outer = MakeObject();
  void* object = &object;
  EXPECT_EQ(CoCreateInstance(GetParam().id, outer.Get(), CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_P(EveryClass, ItsLastReleaseLeavesNoReference) {
  ComPointer<IUnknown> object = MakeObject();
  ComPointer<IUnknown> dispatch = object.As<IUnknown>(IID_IDispatch);
  EXPECT_EQ(ReferenceCount(object), 2u);
  dispatch = {};
  EXPECT_EQ(object.Detach()->Release(), 0u);
}

// The type library in the DLL and the one beside it.
TEST_P(EveryClass, ItsMembersHaveTheListedSlotsAndIds) {
  std::vector<std::string> properties = GetParam().texts;
  properties.insert(properties.end(), GetParam().arrays.begin(), GetParam().arrays.end());
  struct Member {
    std::string name;
    INVOKEKIND kind;
    MEMBERID id;
  };
  std::vector<Member> wanted;
  MEMBERID id = 0;
  for (const std::string& name : properties) {
    ++id;
    wanted.push_back({name, INVOKE_PROPERTYGET, id});
    wanted.push_back({name, INVOKE_PROPERTYPUT, id});
  }
  for (const std::string& name : GetParam().methods) {
    wanted.push_back({name, INVOKE_FUNC, ++id});
  }
  for (const wchar_t* file : {L"Parvex.dll", L"Parvex.tlb"}) {
    ComPointer<ITypeLib> library;
    ASSERT_HRESULT_SUCCEEDED(LoadTypeLibEx((ComponentFolder() + file).c_str(), REGKIND_NONE, library.Out()));
    ComPointer<ITypeInfo> dispatch;
    ASSERT_HRESULT_SUCCEEDED(library->GetTypeInfoOfGuid(GetParam().interfaceId, dispatch.Out()));
    HREFTYPE dual = 0;
    ASSERT_HRESULT_SUCCEEDED(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &dual)) << "a dual interface";
    ComPointer<ITypeInfo> info;
    ASSERT_HRESULT_SUCCEEDED(dispatch->GetRefTypeInfo(dual, info.Out()));
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      FUNCDESC* function = nullptr;
      ASSERT_HRESULT_SUCCEEDED(info->GetFuncDesc(static_cast<UINT>(i), &function)) << wanted[i].name;
      Bstr name;
      info->GetDocumentation(function->memid, name.Out(), nullptr, nullptr, nullptr);
      EXPECT_EQ(name.Text(), wanted[i].name);
      EXPECT_EQ(function->invkind, wanted[i].kind) << wanted[i].name;
      EXPECT_EQ(function->memid, wanted[i].id) << wanted[i].name;
      EXPECT_EQ(static_cast<std::size_t>(function->oVft), (kFirstSlot + i) * sizeof(void*)) << wanted[i].name;
      info->ReleaseFuncDesc(function);
    }
    FUNCDESC* none = nullptr;
    EXPECT_EQ(info->GetFuncDesc(static_cast<UINT>(wanted.size()), &none), TYPE_E_ELEMENTNOTFOUND) << "and no other";
  }
}

TEST_P(EveryClass, SaysWhatItIsByItsTypeInformation) {
  const auto object = MakeObject(GetParam().interfaceId).As<IDispatch>(IID_IDispatch);
  UINT count = 0;
  EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(object->GetTypeInfoCount(nullptr), E_POINTER);
  ComPointer<ITypeInfo> info;
  ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Out()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_HRESULT_SUCCEEDED(info->GetTypeAttr(&attributes));
  EXPECT_EQ(attributes->guid, GetParam().interfaceId);
  info->ReleaseTypeAttr(attributes);
  EXPECT_EQ(object->GetTypeInfo(1, LOCALE_USER_DEFAULT, info.Out()), DISP_E_BADINDEX);
  EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
}

// The slots of the compiled interface, not only those of the library: what is put through a slot is read by its name.
class EveryDataClass : public EveryClass {};

INSTANTIATE_TEST_SUITE_P(Published, EveryDataClass, testing::ValuesIn(DataClasses()),
                         [](const auto& info) { return info.param.name; });

TEST_P(EveryDataClass, EachSlotReachesThePropertyOfItsName) {
  using Get = HRESULT(STDMETHODCALLTYPE*)(void*, BSTR*);
  using Put = HRESULT(STDMETHODCALLTYPE*)(void*, BSTR);
  const ComPointer<IUnknown> object = MakeObject(GetParam().interfaceId);
  void** const slots = *reinterpret_cast<void***>(object.Get());
  const auto dispatch = object.As<IDispatch>(IID_IDispatch);
  std::size_t slot = kFirstSlot;
  for (const std::string& name : GetParam().texts) {
    Bstr read;
    const auto get = reinterpret_cast<Get>(slots[slot]);
    const auto put = reinterpret_cast<Put>(slots[slot + 1]);
    ASSERT_EQ(get(object.Get(), read.Out()), S_OK) << name;
    EXPECT_EQ(read.Text(), "") << name << " of a new object";
    const std::string text = "the " + name;
    const bool isHidden = GetParam().name == "BaseUnitCls" && name == "FileName";
    ASSERT_EQ(put(object.Get(), Bstr(text).Get()), S_OK) << name;
    ASSERT_EQ(get(object.Get(), read.Out()), S_OK) << name;
    EXPECT_EQ(read.Text(), isHidden ? "" : text) << name;
    const LateCall late = CallByName(dispatch.Get(), name, DISPATCH_PROPERTYGET);
    EXPECT_EQ(late.result, S_OK) << name;
    EXPECT_EQ(TextOf(V_BSTR(&late.value.Get())), isHidden ? "" : text) << name;
    slot += 2;
  }
}

TEST_P(EveryDataClass, PropertiesAreKeptApart) {
  const auto dispatch = MakeObject(GetParam().interfaceId).As<IDispatch>(IID_IDispatch);
  for (const std::string& name : GetParam().texts) {
    const Bstr text("late " + name);
    EXPECT_EQ(CallByName(dispatch.Get(), name, DISPATCH_PROPERTYPUT, {Borrowed(text.Get())}).result, S_OK) << name;
  }
  for (const std::string& name : GetParam().texts) {
    const bool isHidden = GetParam().name == "BaseUnitCls" && name == "FileName";
    const LateCall read = CallByName(dispatch.Get(), name, DISPATCH_PROPERTYGET);
    EXPECT_EQ(TextOf(V_BSTR(&read.value.Get())), isHidden ? "" : "late " + name);
  }
}

TEST(ClassFactories, KnowTheirClassesOnly) {
  const HMODULE module = LoadLibraryW((ComponentFolder() + L"Parvex.dll").c_str());
  const auto get = reinterpret_cast<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
  ASSERT_NE(get, nullptr);
  void* factory = &factory;
  EXPECT_EQ(get(IID_IPersist, IID_IClassFactory, &factory), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(factory, nullptr);
  EXPECT_EQ(get(__uuidof(TagCls), IID_IPersist, &factory), E_NOINTERFACE);
  EXPECT_EQ(factory, nullptr);
  EXPECT_EQ(get(__uuidof(TagCls), IID_IClassFactory, nullptr), E_POINTER);
  ComPointer<IClassFactory> made;
  ASSERT_EQ(get(__uuidof(TagCls), IID_IClassFactory, reinterpret_cast<void**>(made.Out())), S_OK);
  EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  void* tag = &tag;
  EXPECT_EQ(made->CreateInstance(nullptr, __uuidof(IWarrantyCls), &tag), E_NOINTERFACE);
  EXPECT_EQ(tag, nullptr);
  made = {};
  FreeLibrary(module);
}

}  // namespace
}  // namespace parvex::test
