#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"

// The data classes, early bound: conversions, LoadAnInstance, arrays of references.

namespace parvex::test {
namespace {

using testing::HasSubstr;

template <typename Interface>
std::string Read(const ComPointer<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
  Bstr text;
  EXPECT_HRESULT_SUCCEEDED((object.Get()->*get)(text.Out()));
  return text.Text();
}

template <typename Interface>
void Write(const ComPointer<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*put)(BSTR),
           std::string_view text) {
  EXPECT_HRESULT_SUCCEEDED((object.Get()->*put)(Bstr(text).Get()));
}

ComPointer<IAccessoryCls> NewAccessory(std::string_view part = "") {
  auto accessory = Make<AccessoryCls, IAccessoryCls>();
  Write(accessory, &IAccessoryCls::put_PartNumber, part);
  return accessory;
}

TEST(DataObjects, AccessoriesAndWarrantiesTakeYAndNAsOneAndZeroAndBaseUnitsDoNot) {
  const auto accessory = NewAccessory();
  const auto warranty = Make<WarrantyCls, IWarrantyCls>();
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  for (const auto& [given, kept] : {std::pair("Y", "1"), {"N", "0"}, {"y", "y"}, {"n", "n"}, {"1", "1"}, {"", ""}}) {
    Write(accessory, &IAccessoryCls::put_preorderreq, given);
    Write(warranty, &IWarrantyCls::put_preorderreq, given);
    Write(unit, &IBaseUnitCls::put_preorderreq, given);
    EXPECT_EQ(Read(accessory, &IAccessoryCls::get_preorderreq), kept);
    EXPECT_EQ(Read(warranty, &IWarrantyCls::get_preorderreq), kept);
    EXPECT_EQ(Read(unit, &IBaseUnitCls::get_preorderreq), given) << "a base unit keeps it as it stands";
  }
}

TEST(DataObjects, TextsKeepWhatNoCodePageHas) {
  const auto tag = Make<TagCls, ITagCls>();
  for (const std::wstring& text : {std::wstring(L"Gr\u00f6\u00dfe \u4e2d \U0001F600"), std::wstring(L"a\0b", 3),
                                   std::wstring(L"\xD800 alone \xDC00"), std::wstring(L"\xDC00\xD800")}) {
    const BSTR given = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    ASSERT_EQ(tag->put_MarkFor(given), S_OK);
    SysFreeString(given);
    Bstr read;
    ASSERT_EQ(tag->get_MarkFor(read.Out()), S_OK);
    EXPECT_EQ(std::wstring(read.Get(), SysStringLen(read.Get())), text);
  }
  EXPECT_EQ(tag->put_MarkFor(nullptr), S_OK);
  EXPECT_EQ(Read(tag, &ITagCls::get_MarkFor), "") << "a null text is the empty one";
}

TEST(DataObjects, AResultWithoutAPlaceIsAnError) {
  const auto tag = Make<TagCls, ITagCls>();
  EXPECT_EQ(tag->get_PDSG(nullptr), static_cast<HRESULT>(0x800A0005));
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("result"));
}

TEST(DataObjects, LoadAnInstanceOfAnAccessoryHasItsOwnOrderAndLeavesTheRest) {
  const auto accessory = NewAccessory();
  Write(accessory, &IAccessoryCls::put_preorderreq, "Y");
  Write(accessory, &IAccessoryCls::put_FileName, "kept.blb");
  const Bstr t[17] = {Bstr("part"), Bstr("desc"), Bstr("price"), Bstr("quant"), Bstr("tos"), Bstr("m1"),
                      Bstr("m2"),   Bstr("m3"),   Bstr("m4"),    Bstr("supp"),  Bstr("a1"),  Bstr("a2"),
                      Bstr("a3"),   Bstr("a4"),   Bstr("a5"),    Bstr("bu1"),   Bstr("bu2")};
  ASSERT_EQ(accessory->LoadAnInstance(t[0].Get(), t[1].Get(), t[2].Get(), t[3].Get(), t[4].Get(), t[5].Get(),
                                      t[6].Get(), t[7].Get(), t[8].Get(), t[9].Get(), t[10].Get(), t[11].Get(),
                                      t[12].Get(), t[13].Get(), t[14].Get(), t[15].Get(), t[16].Get()),
            S_OK);
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_PartNumber), "part");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_Description), "desc");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_MasterPrice), "price");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_Quantity), "quant");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_TypeOfSale), "tos");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_MarkFor), "m1");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_MarkFor4), "m4");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_Supplier), "supp");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_Attribute1), "a1");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_Attribute5), "a5");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_BaseUnit1), "bu1");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_BaseUnit2), "bu2");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_preorderreq), "1");
  EXPECT_EQ(Read(accessory, &IAccessoryCls::get_FileName), "kept.blb");
}

TEST(DataObjects, LoadAnInstanceOfAWarrantyHasItsOwnOrder) {
  const auto warranty = Make<WarrantyCls, IWarrantyCls>();
  const Bstr t[7] = {Bstr("name"), Bstr("quant"), Bstr("desc"), Bstr("price"), Bstr("m"), Bstr("bu1"), Bstr("bu2")};
  ASSERT_EQ(
      warranty->LoadAnInstance(t[0].Get(), t[1].Get(), t[2].Get(), t[3].Get(), t[4].Get(), t[5].Get(), t[6].Get()),
      S_OK);
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_Name), "name");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_Quantity), "quant");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_Description), "desc");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_MasterPrice), "price");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_MarkFor), "m");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_BaseUnit1), "bu1");
  EXPECT_EQ(Read(warranty, &IWarrantyCls::get_BaseUnit2), "bu2");
}

TEST(DataObjects, LoadAnInstanceOfABaseUnitHasItsOwnOrderAndItsFileNameReadsEmpty) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  Write(unit, &IBaseUnitCls::put_Attribute1, "kept");
  const Bstr t[20] = {Bstr("pdsg"), Bstr("desc"), Bstr("part"), Bstr("price"),   Bstr("quant"),
                      Bstr("m1"),   Bstr("m2"),   Bstr("m3"),   Bstr("m4"),      Bstr("bu1"),
                      Bstr("bu2"),  Bstr("supp"), Bstr("tos"),  Bstr("ton"),     Bstr("cfm"),
                      Bstr("file"), Bstr("Y"),    Bstr("eto"),  Bstr("etodesc"), Bstr("sap")};
  ASSERT_EQ(unit->LoadAnInstance(t[0].Get(), t[1].Get(), t[2].Get(), t[3].Get(), t[4].Get(), t[5].Get(), t[6].Get(),
                                 t[7].Get(), t[8].Get(), t[9].Get(), t[10].Get(), t[11].Get(), t[12].Get(), t[13].Get(),
                                 t[14].Get(), t[15].Get(), t[16].Get(), t[17].Get(), t[18].Get(), t[19].Get()),
            S_OK);
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_PDSG), "pdsg");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_Description), "desc");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_PartNumber), "part");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_MarkFor4), "m4");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_BaseUnit1), "bu1");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_Supplier), "supp");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_CFM), "cfm");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_FileName), "");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_preorderreq), "Y");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_ETODescription), "etodesc");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_SAPXml), "sap");
  EXPECT_EQ(Read(unit, &IBaseUnitCls::get_Attribute1), "kept");
}

/// An array of references that is destroyed with its elements.
class References {
 public:
  References(REFIID elementId, LONG lower, ULONG count) {
    SAFEARRAYBOUND bound = {count, lower};
    array_ = SafeArrayCreateEx(VT_DISPATCH, 1, &bound, const_cast<IID*>(&elementId));
  }
  explicit References(SAFEARRAY* array) : array_(array) {}
  ~References() { SafeArrayDestroy(array_); }
  References(const References&) = delete;
  References& operator=(const References&) = delete;

  SAFEARRAY* Get() const { return array_; }
  /// As an argument by reference.
  SAFEARRAY** Given() { return &array_; }
  void Put(LONG index, IDispatch* object) { EXPECT_EQ(SafeArrayPutElement(array_, &index, object), S_OK); }
  ComPointer<IDispatch> At(LONG index) const {
    ComPointer<IDispatch> object;
    EXPECT_EQ(SafeArrayGetElement(array_, &index, object.Out()), S_OK);
    return object;
  }
  LONG Lower() const {
    LONG bound = -99;
    SafeArrayGetLBound(array_, 1, &bound);
    return bound;
  }
  LONG Upper() const {
    LONG bound = -99;
    SafeArrayGetUBound(array_, 1, &bound);
    return bound;
  }

 private:
  SAFEARRAY* array_;
};

SAFEARRAY* AccessoriesOf(const ComPointer<IBaseUnitCls>& unit) {
  SAFEARRAY* array = nullptr;
  EXPECT_EQ(unit->get_Accessories(&array), S_OK);
  return array;
}

TEST(ReferenceArrays, AreEmptyAtFirst) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  const References accessories(AccessoriesOf(unit));
  ASSERT_NE(accessories.Get(), nullptr);
  EXPECT_EQ(accessories.Upper() - accessories.Lower() + 1, 0);
  SAFEARRAY* warranties = nullptr;
  ASSERT_EQ(unit->get_Warranties(&warranties), S_OK);
  const References owned(warranties);
  EXPECT_EQ(owned.Upper() - owned.Lower() + 1, 0);
}

TEST(ReferenceArrays, KeepBoundsAndNullElementsAndTheObjectsThemselves) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  const auto first = NewAccessory("first");
  for (const LONG lower : {0, 1, -3}) {
    References given(__uuidof(IAccessoryCls), lower, 2);
    given.Put(lower, first.Get());
    ASSERT_EQ(unit->put_Accessories(given.Given()), S_OK);
    const References read(AccessoriesOf(unit));
    EXPECT_EQ(read.Lower(), lower);
    EXPECT_EQ(read.Upper(), lower + 1);
    EXPECT_EQ(read.At(lower).Get(), static_cast<IDispatch*>(first.Get()));
    EXPECT_FALSE(read.At(lower + 1));
    IID element = IID_NULL;
    EXPECT_EQ(SafeArrayGetIID(read.Get(), &element), S_OK);
    EXPECT_EQ(element, __uuidof(IAccessoryCls));
  }
}

TEST(ReferenceArrays, AreCopiedInAndOutWhileTheirObjectsAreShared) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  const auto first = NewAccessory("first");
  const auto second = NewAccessory("second");
  References given(__uuidof(IAccessoryCls), 1, 1);
  given.Put(1, first.Get());
  ASSERT_EQ(unit->put_Accessories(given.Given()), S_OK);
  given.Put(1, second.Get());
  References read(AccessoriesOf(unit));
  EXPECT_EQ(read.At(1).Get(), static_cast<IDispatch*>(first.Get())) << "the caller's change is his own";
  read.Put(1, second.Get());
  EXPECT_EQ(References(AccessoriesOf(unit)).At(1).Get(), static_cast<IDispatch*>(first.Get()));
  Write(first, &IAccessoryCls::put_PartNumber, "changed");
  const auto seen = References(AccessoriesOf(unit)).At(1).As<IAccessoryCls>(__uuidof(IAccessoryCls));
  EXPECT_EQ(Read(seen, &IAccessoryCls::get_PartNumber), "changed");
}

TEST(ReferenceArrays, LetTheirObjectsGoWithTheUnitOrTheNextArray) {
  auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  const auto accessory = NewAccessory();
  {
    References given(__uuidof(IAccessoryCls), 1, 1);
    given.Put(1, accessory.Get());
    ASSERT_EQ(unit->put_Accessories(given.Given()), S_OK);
    const References read(AccessoriesOf(unit));
    EXPECT_EQ(ReferenceCount(accessory), 4u) << "ours, the given array's, the unit's, the read array's";
  }
  EXPECT_EQ(ReferenceCount(accessory), 2u);
  SAFEARRAY* none = nullptr;
  ASSERT_EQ(unit->put_Accessories(&none), S_OK);
  EXPECT_EQ(unit->put_Accessories(nullptr), static_cast<HRESULT>(0x800A0005));
  EXPECT_EQ(ReferenceCount(accessory), 1u);
  References given(__uuidof(IAccessoryCls), 1, 1);
  given.Put(1, accessory.Get());
  ASSERT_EQ(unit->put_Accessories(given.Given()), S_OK);
  EXPECT_EQ(ReferenceCount(accessory), 3u);
  EXPECT_EQ(unit.Detach()->Release(), 0u);
  EXPECT_EQ(ReferenceCount(accessory), 2u);
}

TEST(ReferenceArrays, AnElementOfAnotherClassIsRefusedAndTheStoredArrayStays) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  const auto accessory = NewAccessory("stays");
  const auto warranty = Make<WarrantyCls, IWarrantyCls>();
  References good(__uuidof(IAccessoryCls), 1, 1);
  good.Put(1, accessory.Get());
  ASSERT_EQ(unit->put_Accessories(good.Given()), S_OK);
  References bad(IID_IDispatch, 4, 2);
  bad.Put(4, accessory.Get());
  bad.Put(5, warranty.Get());
  EXPECT_EQ(unit->put_Accessories(bad.Given()), kTypeMismatch);
  const RaisedError raised = TakeErrorInfo();
  EXPECT_EQ(raised.source, "Parvex");
  EXPECT_EQ(raised.interfaceId, __uuidof(IBaseUnitCls));
  EXPECT_THAT(raised.description, HasSubstr("Accessories"));
  EXPECT_THAT(raised.description, HasSubstr("5"));
  EXPECT_EQ(unit->put_Warranties(good.Given()), kTypeMismatch);
  const References read(AccessoriesOf(unit));
  EXPECT_EQ(read.Upper(), 1);
  EXPECT_EQ(read.At(1).Get(), static_cast<IDispatch*>(accessory.Get()));
}

TEST(ReferenceArrays, AnArrayOfSomethingElseIsRefused) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
  References texts(SafeArrayCreate(VT_BSTR, 1, bounds));
  EXPECT_EQ(unit->put_Accessories(texts.Given()), kTypeMismatch);
  References plane(SafeArrayCreate(VT_DISPATCH, 2, bounds));
  EXPECT_EQ(unit->put_Accessories(plane.Given()), kTypeMismatch);
  EXPECT_EQ(unit->get_Accessories(nullptr), static_cast<HRESULT>(0x800A0005));
}

TEST(ReferenceArrays, AnArrayWithMoreElementsThanIndexesIsRefused) {
  const auto unit = Make<BaseUnitCls, IBaseUnitCls>();
  References given(__uuidof(IAccessoryCls), 1, 2);
  const SAFEARRAYBOUND own = given.Get()->rgsabound[0];
  // The array's own memory holds two elements.
  for (const SAFEARRAYBOUND bound : {SAFEARRAYBOUND{0x80000000, 0}, {2, 0x7FFFFFFF}, {0xFFFFFFFF, -2}}) {
    given.Get()->rgsabound[0] = bound;
    EXPECT_EQ(unit->put_Accessories(given.Given()), kTypeMismatch) << bound.cElements;
  }
  given.Get()->rgsabound[0] = {2, 0x7FFFFFFE};
  EXPECT_EQ(unit->put_Accessories(given.Given()), S_OK);
  const References read(AccessoriesOf(unit));
  EXPECT_EQ(read.Lower(), 0x7FFFFFFE);
  EXPECT_EQ(read.Upper(), 0x7FFFFFFF);
  given.Get()->rgsabound[0] = own;
}

}  // namespace
}  // namespace parvex::test
