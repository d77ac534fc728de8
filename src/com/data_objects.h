#pragma once

#include <optional>
#include <string>

#include "com/class_data.h"
#include "com/values.h"
#include "com_server/dual_object.h"
#include "parvex_idl.h"

namespace parvex::com {

// The public data classes, over what they hold (com/class_data.h). Properties stand in the order of their slots.

/// Both accessors of a text property over the member of that name of `data_`.
#define PARVEX_TEXT_PROPERTY(name)                                      \
  HRESULT STDMETHODCALLTYPE get_##name(BSTR* value) override {          \
    return Guard([&] { GiveText(value, TextOfProperty(data_.name)); }); \
  }                                                                     \
  HRESULT STDMETHODCALLTYPE put_##name(BSTR value) override {           \
    return Guard([&] { data_.name = windows::TextOf(value); });         \
  }

/// Parvex.TagCls
class TagClsObject : public DualObject<ITagCls> {
 public:
  PARVEX_TEXT_PROPERTY(PartNumber)
  PARVEX_TEXT_PROPERTY(PDSG)
  PARVEX_TEXT_PROPERTY(MarkFor)
  PARVEX_TEXT_PROPERTY(BuildVersion)
  PARVEX_TEXT_PROPERTY(LegacyTagId)
  PARVEX_TEXT_PROPERTY(BlobFileName)
  PARVEX_TEXT_PROPERTY(TagVersion)

 private:
  TagData data_;
};

/// Parvex.AccessoryCls
class AccessoryClsObject : public DualObject<IAccessoryCls> {
 public:
  PARVEX_TEXT_PROPERTY(preorderreq)
  PARVEX_TEXT_PROPERTY(PartNumber)
  PARVEX_TEXT_PROPERTY(Description)
  PARVEX_TEXT_PROPERTY(MasterPrice)
  PARVEX_TEXT_PROPERTY(Quantity)
  PARVEX_TEXT_PROPERTY(TypeOfSale)
  PARVEX_TEXT_PROPERTY(MarkFor)
  PARVEX_TEXT_PROPERTY(MarkFor2)
  PARVEX_TEXT_PROPERTY(MarkFor3)
  PARVEX_TEXT_PROPERTY(MarkFor4)
  PARVEX_TEXT_PROPERTY(Supplier)
  PARVEX_TEXT_PROPERTY(Attribute1)
  PARVEX_TEXT_PROPERTY(Attribute2)
  PARVEX_TEXT_PROPERTY(Attribute3)
  PARVEX_TEXT_PROPERTY(Attribute4)
  PARVEX_TEXT_PROPERTY(Attribute5)
  PARVEX_TEXT_PROPERTY(BaseUnit1)
  PARVEX_TEXT_PROPERTY(BaseUnit2)
  PARVEX_TEXT_PROPERTY(FileName)
  HRESULT STDMETHODCALLTYPE LoadAnInstance(BSTR part, BSTR desc, BSTR price, BSTR quant, BSTR tos, BSTR mrkfor1,
                                           BSTR mrkfor2, BSTR mrkfor3, BSTR mrkfor4, BSTR supp, BSTR attrib1,
                                           BSTR attrib2, BSTR attrib3, BSTR attrib4, BSTR attrib5, BSTR bu1,
                                           BSTR bu2) override {
    return Guard([&] {
      data_.LoadAnInstance(windows::TextOf(part), windows::TextOf(desc), windows::TextOf(price), windows::TextOf(quant),
                           windows::TextOf(tos), windows::TextOf(mrkfor1), windows::TextOf(mrkfor2),
                           windows::TextOf(mrkfor3), windows::TextOf(mrkfor4), windows::TextOf(supp),
                           windows::TextOf(attrib1), windows::TextOf(attrib2), windows::TextOf(attrib3),
                           windows::TextOf(attrib4), windows::TextOf(attrib5), windows::TextOf(bu1),
                           windows::TextOf(bu2));
    });
  }

 private:
  AccessoryData data_;
};

/// Parvex.WarrantyCls
class WarrantyClsObject : public DualObject<IWarrantyCls> {
 public:
  PARVEX_TEXT_PROPERTY(preorderreq)
  PARVEX_TEXT_PROPERTY(Name)
  PARVEX_TEXT_PROPERTY(Quantity)
  PARVEX_TEXT_PROPERTY(Description)
  PARVEX_TEXT_PROPERTY(MasterPrice)
  PARVEX_TEXT_PROPERTY(MarkFor)
  PARVEX_TEXT_PROPERTY(BaseUnit1)
  PARVEX_TEXT_PROPERTY(BaseUnit2)
  HRESULT STDMETHODCALLTYPE LoadAnInstance(BSTR nameStr, BSTR quant, BSTR desc, BSTR price, BSTR mrkfor, BSTR bu1,
                                           BSTR bu2) override {
    return Guard([&] {
      data_.LoadAnInstance(windows::TextOf(nameStr), windows::TextOf(quant), windows::TextOf(desc),
                           windows::TextOf(price), windows::TextOf(mrkfor), windows::TextOf(bu1), windows::TextOf(bu2));
    });
  }

 private:
  WarrantyData data_;
};

/// Parvex.BaseUnitCls. Its two arrays hold what hosts gave it, with their bounds; a new one's are empty.
class BaseUnitClsObject : public DualObject<IBaseUnitCls> {
 public:
  PARVEX_TEXT_PROPERTY(PDSG)
  PARVEX_TEXT_PROPERTY(Description)
  PARVEX_TEXT_PROPERTY(PartNumber)
  PARVEX_TEXT_PROPERTY(MasterPrice)
  PARVEX_TEXT_PROPERTY(Quantity)
  PARVEX_TEXT_PROPERTY(MarkFor)
  PARVEX_TEXT_PROPERTY(MarkFor2)
  PARVEX_TEXT_PROPERTY(MarkFor3)
  PARVEX_TEXT_PROPERTY(MarkFor4)
  PARVEX_TEXT_PROPERTY(BaseUnit1)
  PARVEX_TEXT_PROPERTY(BaseUnit2)
  PARVEX_TEXT_PROPERTY(Supplier)
  PARVEX_TEXT_PROPERTY(TypeOfSale)
  PARVEX_TEXT_PROPERTY(Ton)
  PARVEX_TEXT_PROPERTY(CFM)
  PARVEX_TEXT_PROPERTY(FileName)
  PARVEX_TEXT_PROPERTY(preorderreq)
  PARVEX_TEXT_PROPERTY(ETO)
  PARVEX_TEXT_PROPERTY(ETODescription)
  PARVEX_TEXT_PROPERTY(Attribute1)
  PARVEX_TEXT_PROPERTY(Attribute2)
  PARVEX_TEXT_PROPERTY(Attribute3)
  PARVEX_TEXT_PROPERTY(Attribute4)
  PARVEX_TEXT_PROPERTY(Attribute5)
  PARVEX_TEXT_PROPERTY(SAPXml)
  HRESULT STDMETHODCALLTYPE get_Accessories(SAFEARRAY** value) override {
    return Guard([&] { GiveReferences(value, accessories_, __uuidof(IAccessoryCls)); });
  }
  HRESULT STDMETHODCALLTYPE put_Accessories(SAFEARRAY** value) override {
    return Guard([&] {
      RequirePointer(value, "Accessories");
      accessories_ = ReadReferences(*value, __uuidof(IAccessoryCls), "Accessories");
    });
  }
  HRESULT STDMETHODCALLTYPE get_Warranties(SAFEARRAY** value) override {
    return Guard([&] { GiveReferences(value, warranties_, __uuidof(IWarrantyCls)); });
  }
  HRESULT STDMETHODCALLTYPE put_Warranties(SAFEARRAY** value) override {
    return Guard([&] {
      RequirePointer(value, "Warranties");
      warranties_ = ReadReferences(*value, __uuidof(IWarrantyCls), "Warranties");
    });
  }
  HRESULT STDMETHODCALLTYPE LoadAnInstance(BSTR pdsgVal, BSTR desc, BSTR part, BSTR price, BSTR quant, BSTR mrkfor1,
                                           BSTR mrkfor2, BSTR mrkfor3, BSTR mrkfor4, BSTR bu1, BSTR bu2, BSTR supp,
                                           BSTR tos, BSTR tonVal, BSTR cfmVal, BSTR fnVal, BSTR poreq, BSTR etoval,
                                           BSTR etoDescVal, BSTR sap) override {
    return Guard([&] {
      data_.LoadAnInstance(
          windows::TextOf(pdsgVal), windows::TextOf(desc), windows::TextOf(part), windows::TextOf(price),
          windows::TextOf(quant), windows::TextOf(mrkfor1), windows::TextOf(mrkfor2), windows::TextOf(mrkfor3),
          windows::TextOf(mrkfor4), windows::TextOf(bu1), windows::TextOf(bu2), windows::TextOf(supp),
          windows::TextOf(tos), windows::TextOf(tonVal), windows::TextOf(cfmVal), windows::TextOf(fnVal),
          windows::TextOf(poreq), windows::TextOf(etoval), windows::TextOf(etoDescVal), windows::TextOf(sap));
    });
  }

 protected:
  /// The arrays, as variants that hold the objects.
  std::optional<HRESULT> Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) override;

 private:
  static void GiveReferences(SAFEARRAY** value, const ReferenceArray& references, REFIID elementId);

  BaseUnitData data_;
  ReferenceArray accessories_;
  ReferenceArray warranties_;
};

#undef PARVEX_TEXT_PROPERTY

}  // namespace parvex::com
