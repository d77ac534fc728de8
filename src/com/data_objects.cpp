#include "com/data_objects.h"

namespace parvex::com {
namespace {

constexpr DISPID kAccessories = 26;
constexpr DISPID kWarranties = 27;

constexpr WORD kPut = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

}  // namespace

void BaseUnitClsObject::GiveReferences(SAFEARRAY** value, const ReferenceArray& references, REFIID elementId) {
  RequirePointer(value, "the result");
  *value = MakeReferences(references, elementId);
}

std::optional<HRESULT> BaseUnitClsObject::Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) {
  if (member != kAccessories && member != kWarranties) {
    return std::nullopt;
  }
  const bool isAccessories = member == kAccessories;
  ReferenceArray& references = isAccessories ? accessories_ : warranties_;
  if ((kind & kPut) != 0) {
    if (parameters.cArgs != 1) {
      return DISP_E_BADPARAMCOUNT;
    }
    references = isAccessories ? ReferencesArgument(parameters.rgvarg[0], __uuidof(IAccessoryCls), "Accessories")
                               : ReferencesArgument(parameters.rgvarg[0], __uuidof(IWarrantyCls), "Warranties");
    return S_OK;
  }
  // A script's unit.Accessories(1) asks for an element of the array.
  if (parameters.cArgs > 1) {
    return DISP_E_BADPARAMCOUNT;
  }
  if (result == nullptr) {
    return S_OK;
  }
  windows::Variant array;
  V_ARRAY(&array.Get()) = MakeVariants(references);
  V_VT(&array.Get()) = VT_ARRAY | VT_VARIANT;
  if (parameters.cArgs == 0) {
    return windows::CopyVariant(result, array.Get());
  }
  const LONG index = IndexArgument(parameters.rgvarg[0], "index");
  VariantInit(result);
  return SafeArrayGetElement(V_ARRAY(&array.Get()), const_cast<LONG*>(&index), result);
}

}  // namespace parvex::com
