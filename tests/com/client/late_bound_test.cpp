#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"

// Calls by name, with the arguments that script hosts and other late-bound callers pass.

namespace parvex::test {
namespace {

using testing::HasSubstr;

std::string TextOfValue(const LateCall& call) {
  return V_VT(&call.value.Get()) == VT_BSTR ? TextOf(V_BSTR(&call.value.Get())) : "(no text)";
}

class LateBound : public testing::Test {
 protected:
  LateCall Call(std::string_view member, std::vector<VARIANT> arguments = {}) {
    return CallByName(pull.Get(), member, DISPATCH_METHOD, std::move(arguments));
  }
  const ComPointer<IDispatch> pull = Create<IDispatch>("Parvex.LegacyORLAPull");
  const Bstr options{Command("getOptions")};
  const Bstr unknown{Command("noSuchCommand")};
};

TEST_F(LateBound, PullNGORLATakesATextHoweverItIsPassed) {
  VARIANT variable = Borrowed(unknown.Get());
  BSTR text = unknown.Get();
  VARIANT byReference = Number(0);
  V_VT(&byReference) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&byReference) = &text;
  for (const VARIANT& argument : {variable, Reference(&variable), byReference, Reference(&byReference)}) {
    const LateCall call = Call("PullNGORLA", {argument});
    EXPECT_EQ(call.result, S_OK) << V_VT(&argument) << " " << call.description;
    EXPECT_THAT(TextOfValue(call), HasSubstr("Unrecognized"));
  }
  EXPECT_EQ(V_BSTR(&variable), unknown.Get()) << "the caller's variable stays";
}

TEST_F(LateBound, PullNGORLAConvertsWhatTheRuntimeConvertsAndRefusesTheRest) {
  const LateCall number = Call("PullNGORLA", {Number(7)});
  EXPECT_EQ(number.result, DISP_E_EXCEPTION);
  EXPECT_THAT(number.description, HasSubstr("COMMAND/NAME")) << "a number is a text that is no command";
  const auto tag = Create<IDispatch>("Parvex.TagCls");
  const LateCall object = Call("PullNGORLA", {Borrowed(tag.Get())});
  EXPECT_EQ(object.result, DISP_E_EXCEPTION);
  EXPECT_EQ(object.number, kTypeMismatch);
  EXPECT_EQ(object.source, "Parvex");
  EXPECT_THAT(object.description, HasSubstr("commandXml"));
}

TEST_F(LateBound, PullTakesADocumentHoweverItIsPassed) {
  const auto document = NewDocument(Command("getOptions"));
  const auto dispatch = document.As<IDispatch>(IID_IDispatch);
  VARIANT variable = Borrowed(dispatch.Get());
  IDispatch* object = dispatch.Get();
  VARIANT byReference = Number(0);
  V_VT(&byReference) = VT_BYREF | VT_DISPATCH;
  V_DISPATCHREF(&byReference) = &object;
  VARIANT unknownObject = Number(0);
  V_VT(&unknownObject) = VT_UNKNOWN;
  V_UNKNOWN(&unknownObject) = document.Get();
  const ULONG references = ReferenceCount(document);
  for (const VARIANT& argument : {variable, Reference(&variable), byReference, unknownObject}) {
    const LateCall call = Call("Pull", {argument});
    ASSERT_EQ(call.result, S_OK) << V_VT(&argument) << " " << call.description;
    ASSERT_EQ(V_VT(&call.value.Get()), VT_DISPATCH);
    const auto reply = ComPointer<IDispatch>::Share(V_DISPATCH(&call.value.Get())).As<IXMLDOMDocument2>(kXmlDocument2);
    ASSERT_TRUE(reply);
    EXPECT_EQ(TextAt(reply.Get(), "//returnError"), "(none)") << "the options themselves";
  }
  EXPECT_EQ(ReferenceCount(document), references);
}

TEST_F(LateBound, PullRefusesWhatIsNoDocument) {
  const auto tag = Create<IDispatch>("Parvex.TagCls");
  VARIANT nothing = Number(0);
  V_VT(&nothing) = VT_EMPTY;
  for (const VARIANT& argument :
       {Borrowed(tag.Get()), Borrowed(static_cast<IDispatch*>(nullptr)), nothing, Borrowed(unknown.Get()), Number(1)}) {
    const LateCall call = Call("Pull", {argument});
    EXPECT_EQ(call.result, DISP_E_EXCEPTION) << V_VT(&argument);
    EXPECT_EQ(call.source, "Parvex");
    EXPECT_NE(call.description, "");
    EXPECT_EQ(V_VT(&call.value.Get()), VT_EMPTY);
  }
}

TEST_F(LateBound, WrongCountsOfArgumentsAndUnknownMembersAreRefused) {
  for (const char* member : {"Pull", "PullNGORLA"}) {
    EXPECT_EQ(Call(member).result, DISP_E_BADPARAMCOUNT) << member;
    EXPECT_EQ(Call(member, {Number(1), Number(2)}).result, DISP_E_BADPARAMCOUNT) << member;
  }
  EXPECT_EQ(Call("Push", {Number(1)}).result, DISP_E_UNKNOWNNAME);
  const auto encoder = Create<IDispatch>("Parvex.cBinEncoder");
  EXPECT_EQ(CallByName(encoder.Get(), "EncodeArr", DISPATCH_METHOD).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(CallByName(encoder.Get(), "Encode", DISPATCH_METHOD).result, DISP_E_BADPARAMCOUNT);
  const auto unit = Create<IDispatch>("Parvex.BaseUnitCls");
  EXPECT_EQ(CallByName(unit.Get(), "Accessories", DISPATCH_PROPERTYGET, {Number(1), Number(2)}).result,
            DISP_E_BADPARAMCOUNT);
}

TEST_F(LateBound, NamesIgnoreLetterCase) { EXPECT_EQ(Call("pullngorla", {Borrowed(unknown.Get())}).result, S_OK); }

TEST_F(LateBound, MisusedInvocationsAreRefused) {
  DISPPARAMS none = {};
  EXPECT_EQ(pull->Invoke(1, IID_IPersist, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(pull->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(pull->Invoke(77, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), DISP_E_MEMBERNOTFOUND);
  VARIANT argument = Borrowed(options.Get());
  DISPPARAMS one = {&argument, nullptr, 1, 0};
  EXPECT_EQ(pull->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &one, nullptr, nullptr, nullptr), S_OK)
      << "nobody need want the result";
  VARIANT number = Number(1);
  DISPPARAMS wrong = {&number, nullptr, 1, 0};
  EXPECT_EQ(pull->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &wrong, nullptr, nullptr, nullptr), kTypeMismatch)
      << "nobody need want the exception";
}

class LateBoundUnit : public testing::Test {
 protected:
  LateCall Put(VARIANT value, WORD kind = DISPATCH_PROPERTYPUT) {
    return CallByName(unit.Get(), "Accessories", kind, {value});
  }
  LateCall Element(LONG index) {
    return CallByName(unit.Get(), "Accessories", DISPATCH_PROPERTYGET | DISPATCH_METHOD, {Number(index)});
  }
  /// A script's array: variants, from `lower`.
  static Variant Array(LONG lower, std::vector<VARIANT> elements) {
    SAFEARRAYBOUND bound = {static_cast<ULONG>(elements.size()), lower};
    SAFEARRAY* array = SafeArrayCreate(VT_VARIANT, 1, &bound);
    for (std::size_t i = 0; i < elements.size(); ++i) {
      LONG index = lower + static_cast<LONG>(i);
      SafeArrayPutElement(array, &index, &elements[i]);
    }
    Variant owned;
    *owned.Out() = Borrowed(array, VT_VARIANT);
    return owned;
  }

  const ComPointer<IDispatch> unit = Create<IDispatch>("Parvex.BaseUnitCls");
  const ComPointer<IDispatch> accessory = Create<IDispatch>("Parvex.AccessoryCls");
  const ComPointer<IDispatch> warranty = Create<IDispatch>("Parvex.WarrantyCls");
};

TEST_F(LateBoundUnit, ItsArraysAreVariantsThatHoldTheObjects) {
  const Variant given = Array(1, {Borrowed(accessory.Get()), Borrowed(static_cast<IDispatch*>(nullptr))});
  ASSERT_EQ(Put(given.Get()).result, S_OK);
  const LateCall read = CallByName(unit.Get(), "Accessories", DISPATCH_PROPERTYGET);
  ASSERT_EQ(V_VT(&read.value.Get()), VT_ARRAY | VT_VARIANT);
  LONG lower = 0;
  LONG upper = 0;
  SafeArrayGetLBound(V_ARRAY(&read.value.Get()), 1, &lower);
  SafeArrayGetUBound(V_ARRAY(&read.value.Get()), 1, &upper);
  EXPECT_EQ(lower, 1);
  EXPECT_EQ(upper, 2);
  EXPECT_EQ(V_DISPATCH(&Element(1).value.Get()), accessory.Get());
  const LateCall empty = Element(2);
  EXPECT_EQ(V_VT(&empty.value.Get()), VT_DISPATCH);
  EXPECT_EQ(V_DISPATCH(&empty.value.Get()), nullptr);
}

TEST_F(LateBoundUnit, AnIndexOutsideTheArrayOrNoNumberIsRefused) {
  const Variant given = Array(1, {Borrowed(accessory.Get())});
  ASSERT_EQ(Put(given.Get()).result, S_OK);
  EXPECT_EQ(Element(0).result, DISP_E_BADINDEX);
  EXPECT_EQ(Element(2).result, DISP_E_BADINDEX);
  const Bstr word("first");
  const LateCall call = CallByName(unit.Get(), "Accessories", DISPATCH_PROPERTYGET, {Borrowed(word.Get())});
  EXPECT_EQ(call.number, kTypeMismatch);
}

TEST_F(LateBoundUnit, AnArrayIsTakenHoweverItIsPassed) {
  Variant given = Array(0, {Borrowed(accessory.Get())});
  SAFEARRAY* array = V_ARRAY(&given.Get());
  VARIANT byReference = Number(0);
  V_VT(&byReference) = VT_BYREF | VT_ARRAY | VT_VARIANT;
  V_ARRAYREF(&byReference) = &array;
  VARIANT element = Borrowed(accessory.Get());
  const Variant ofReferences = Array(0, {Reference(&element)});
  for (const VARIANT& value : {given.Get(), Reference(&given.Get()), byReference, ofReferences.Get()}) {
    const Variant none = Array(0, {});
    ASSERT_EQ(Put(none.Get()).result, S_OK);
    for (const WORD kind : {DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF}) {
      const LateCall put = Put(value, kind);
      ASSERT_EQ(put.result, S_OK) << V_VT(&value) << " " << put.description;
      EXPECT_EQ(V_DISPATCH(&Element(0).value.Get()), accessory.Get());
    }
  }
}

TEST_F(LateBoundUnit, WhatIsRefusedLeavesTheStoredArray) {
  const Variant good = Array(1, {Borrowed(accessory.Get())});
  ASSERT_EQ(Put(good.Get()).result, S_OK);
  const Bstr text("text");
  const Variant ofAnotherClass = Array(0, {Borrowed(accessory.Get()), Borrowed(warranty.Get())});
  const Variant ofTexts = Array(0, {Borrowed(text.Get())});
  for (const VARIANT& value : {ofAnotherClass.Get(), ofTexts.Get(), Number(3), Borrowed(accessory.Get())}) {
    const LateCall put = Put(value);
    EXPECT_EQ(put.result, DISP_E_EXCEPTION) << V_VT(&value);
    EXPECT_EQ(put.number, kTypeMismatch);
    EXPECT_EQ(put.source, "Parvex");
    EXPECT_THAT(put.description, HasSubstr("Accessories"));
    EXPECT_EQ(V_DISPATCH(&Element(1).value.Get()), accessory.Get());
  }
}

TEST_F(LateBoundUnit, ItsTextsConvertWhatTheyAreGiven) {
  ASSERT_EQ(CallByName(unit.Get(), "Quantity", DISPATCH_PROPERTYPUT, {Number(12)}).result, S_OK);
  EXPECT_EQ(TextOfValue(CallByName(unit.Get(), "Quantity", DISPATCH_PROPERTYGET)), "12");
  const Bstr text("by reference");
  VARIANT variable = Borrowed(text.Get());
  ASSERT_EQ(CallByName(unit.Get(), "Quantity", DISPATCH_PROPERTYPUT, {Reference(&variable)}).result, S_OK);
  EXPECT_EQ(TextOfValue(CallByName(unit.Get(), "Quantity", DISPATCH_PROPERTYGET)), "by reference");
}

TEST(LateBoundEncoder, TakesBytesAndAScriptsArrayOfNumbers) {
  const auto encoder = Create<IDispatch>("Parvex.cBinEncoder");
  const auto encode = [&](VARIANT argument) {
    return CallByName(encoder.Get(), "EncodeArr", DISPATCH_METHOD, {argument});
  };
  const Bstr base64("TWFu");
  const LateCall bytes = CallByName(encoder.Get(), "DecodeArr", DISPATCH_METHOD, {Borrowed(base64.Get())});
  ASSERT_EQ(V_VT(&bytes.value.Get()), VT_ARRAY | VT_UI1) << bytes.description;
  EXPECT_EQ(TextOfValue(encode(bytes.value.Get())), "TWFu");

  SAFEARRAYBOUND bound = {3, 1};
  Variant numbers;
  *numbers.Out() = Borrowed(SafeArrayCreate(VT_VARIANT, 1, &bound), VT_VARIANT);
  const auto put = [&](LONG index, VARIANT value) { SafeArrayPutElement(V_ARRAY(&numbers.Get()), &index, &value); };
  put(1, Number('M'));
  put(2, Number('a'));
  put(3, Number('n'));
  EXPECT_EQ(TextOfValue(encode(numbers.Get())), "TWFu");
  EXPECT_EQ(TextOfValue(encode(Reference(&numbers.Get()))), "TWFu");
  put(2, Number(256));
  const LateCall tooLarge = encode(numbers.Get());
  EXPECT_EQ(tooLarge.number, kTypeMismatch);
  EXPECT_THAT(tooLarge.description, HasSubstr("element 2"));
  EXPECT_EQ(encode(Number(1)).number, kTypeMismatch);
}

TEST(LateBoundEncoder, AFailedCallIsAnExceptionWithNumberSourceAndDescription) {
  const auto encoder = Create<IDispatch>("Parvex.cBinEncoder");
  const Bstr base64("TWFu");
  const Bstr taken("C:\\Korvane\\TQ5-VX\\Bin\\UIKeys.txt");
  const LateCall call =
      CallByName(encoder.Get(), "DecodeToFile", DISPATCH_METHOD, {Borrowed(base64.Get()), Borrowed(taken.Get())});
  EXPECT_EQ(call.result, DISP_E_EXCEPTION);
  EXPECT_EQ(call.number, static_cast<HRESULT>(0x800403E8));
  EXPECT_EQ(call.source, "Base64.DecodeToFile");
  EXPECT_EQ(call.description, "File already exists.");
}

}  // namespace
}  // namespace parvex::test
