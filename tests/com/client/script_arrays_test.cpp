#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "adapters/windows/com_object.h"
#include "parvex_idl.h"
#include "tests/com/com_session.h"

// A script engine's own array: an object with a length and members that are named by number.

namespace parvex::test {
namespace {

using testing::HasSubstr;

class ScriptArray : public windows::ComObject<IDispatch> {
 public:
  std::map<std::wstring, Variant> members;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const auto found = members.find(*names);
    *ids = found == members.end() ? DISPID_UNKNOWN : static_cast<DISPID>(std::distance(members.begin(), found) + 1);
    return found == members.end() ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD kind, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    const auto& [name, value] = *std::next(members.begin(), member - 1);
    if ((kind & DISPATCH_PROPERTYGET) == 0 || (name == L"1" && fails)) {
      return DISP_E_MEMBERNOTFOUND;
    }
    return windows::CopyVariant(result, value.Get());
  }
  bool fails = false;
};

ComPointer<ScriptArray> NewArray(VARIANT length, const std::vector<VARIANT>& elements) {
  auto array = windows::MakeCom<ScriptArray>();
  windows::CopyVariant(array->members[L"length"].Out(), length);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    windows::CopyVariant(array->members[std::to_wstring(i)].Out(), elements[i]);
  }
  return array;
}

VARIANT Real(double number) {
  VARIANT value = Number(0);
  V_VT(&value) = VT_R8;
  V_R8(&value) = number;
  return value;
}

class ScriptArrays : public testing::Test {
 protected:
  LateCall Encode(const ComPointer<ScriptArray>& array) {
    return CallByName(encoder.Get(), "EncodeArr", DISPATCH_METHOD, {Borrowed(static_cast<IDispatch*>(array.Get()))});
  }
  LateCall Put(const char* property, const ComPointer<ScriptArray>& array, WORD kind = DISPATCH_PROPERTYPUT) {
    return CallByName(unit.Get(), property, kind, {Borrowed(static_cast<IDispatch*>(array.Get()))});
  }
  IDispatch* Element(const char* property, LONG index) {
    const LateCall call = CallByName(unit.Get(), property, DISPATCH_PROPERTYGET, {Number(index)});
    EXPECT_EQ(call.result, S_OK) << index;
    return V_DISPATCH(&call.value.Get());
  }

  const ComPointer<IDispatch> encoder = Create<IDispatch>("Parvex.cBinEncoder");
  const ComPointer<IDispatch> unit = Create<IDispatch>("Parvex.BaseUnitCls");
  const ComPointer<IDispatch> accessory = Create<IDispatch>("Parvex.AccessoryCls");
  const ComPointer<IDispatch> warranty = Create<IDispatch>("Parvex.WarrantyCls");
};

TEST_F(ScriptArrays, BytesOfOneAreEncoded) {
  const LateCall call = Encode(NewArray(Number(3), {Number(77), Real(97), Number(110)}));
  ASSERT_EQ(call.result, S_OK) << call.description;
  EXPECT_EQ(TextOf(V_BSTR(&call.value.Get())), "TWFu");
  EXPECT_EQ(TextOf(V_BSTR(&Encode(NewArray(Real(0), {})).value.Get())), "");
}

TEST_F(ScriptArrays, BothPropertiesTakeOneHoweverItIsPut) {
  VARIANT null = Number(0);
  V_VT(&null) = VT_NULL;
  for (const WORD kind : {DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF}) {
    ASSERT_EQ(Put("Accessories", NewArray(Number(3), {Borrowed(accessory.Get()), null}), kind).result, S_OK);
    EXPECT_EQ(Element("Accessories", 0), accessory.Get());
    EXPECT_EQ(Element("Accessories", 1), nullptr) << "null";
    EXPECT_EQ(Element("Accessories", 2), nullptr) << "an element that it lacks";
    ASSERT_EQ(Put("Warranties", NewArray(Number(1), {Borrowed(warranty.Get())}), kind).result, S_OK);
    EXPECT_EQ(Element("Warranties", 0), warranty.Get());
  }
  const auto array = NewArray(Number(1), {Borrowed(warranty.Get())});
  VARIANT variable = Borrowed(static_cast<IDispatch*>(array.Get()));
  EXPECT_EQ(CallByName(unit.Get(), "Warranties", DISPATCH_PROPERTYPUT, {Reference(&variable)}).result, S_OK);
  EXPECT_EQ(ReferenceCount(array), 1u);
}

TEST_F(ScriptArrays, ALengthThatIsNoneIsRefusedByTheNameOfTheParameter) {
  const Bstr word("many");
  VARIANT empty = Number(0);
  V_VT(&empty) = VT_EMPTY;
  for (const VARIANT& length : {Number(-1), Real(-1e300), Real(4294967295.0), Real(1e300), Number((1 << 24) + 1),
                                Borrowed(word.Get()), empty, Borrowed(accessory.Get())}) {
    const LateCall encoded = Encode(NewArray(length, {Number(77)}));
    EXPECT_EQ(encoded.number, kTypeMismatch) << V_VT(&length);
    EXPECT_THAT(encoded.description, HasSubstr("bytes: the length of the array"));
    const LateCall put = Put("Accessories", NewArray(length, {Borrowed(accessory.Get())}));
    EXPECT_EQ(put.number, kTypeMismatch) << V_VT(&length);
    EXPECT_THAT(put.description, HasSubstr("Accessories: the length of the array"));
  }
  const LateCall object = CallByName(encoder.Get(), "EncodeArr", DISPATCH_METHOD, {Borrowed(accessory.Get())});
  EXPECT_EQ(object.number, kTypeMismatch);
  EXPECT_THAT(object.description, HasSubstr("an object without a length"));
}

TEST_F(ScriptArrays, AnElementThatIsNoneIsRefusedByItsNumberAndTheStoredArrayStays) {
  ASSERT_EQ(Put("Accessories", NewArray(Number(1), {Borrowed(accessory.Get())})).result, S_OK);
  const LateCall another =
      Put("Accessories", NewArray(Number(2), {Borrowed(accessory.Get()), Borrowed(warranty.Get())}));
  EXPECT_EQ(another.number, kTypeMismatch);
  EXPECT_THAT(another.description, HasSubstr("Accessories: element 1"));
  EXPECT_EQ(Element("Accessories", 0), accessory.Get());
  const LateCall tooBig = Encode(NewArray(Number(2), {Number(77), Number(256)}));
  EXPECT_EQ(tooBig.number, kTypeMismatch);
  EXPECT_THAT(tooBig.description, HasSubstr("bytes: element 1"));
  EXPECT_THAT(Encode(NewArray(Number(2), {Number(77)})).description, HasSubstr("bytes: element 1"))
      << "an element that it lacks is no byte";
  const auto failing = NewArray(Number(2), {Number(77), Number(77)});
  failing->fails = true;
  EXPECT_THAT(Encode(failing).description, HasSubstr("bytes: element 1 cannot be read"));
}

// What compilers of early-bound clients read.
TEST(TypeLibraryArrays, GoInByReference) {
  for (const auto& [name, method] :
       {std::pair{"Parvex.BaseUnitCls", L"Accessories"}, std::pair{"Parvex.BaseUnitCls", L"Warranties"},
        std::pair{"Parvex.cBinEncoder", L"EncodeArr"}}) {
    const auto object = Create<IDispatch>(name);
    ComPointer<ITypeInfo> info;
    ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Out()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    int seen = 0;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
      Bstr memberName;
      info->GetDocumentation(function->memid, memberName.Out(), nullptr, nullptr, nullptr);
      if (memberName.Text() == windows::Narrow(method) && function->cParams > 0 &&
          (function->lprgelemdescParam[0].paramdesc.wParamFlags & PARAMFLAG_FIN) != 0) {
        const TYPEDESC& type = function->lprgelemdescParam[0].tdesc;
        ASSERT_EQ(type.vt, VT_PTR) << memberName.Text();
        EXPECT_EQ(type.lptdesc->vt, VT_SAFEARRAY);
        ++seen;
      }
      info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(seen, 1) << name;
  }
}

}  // namespace
}  // namespace parvex::test
