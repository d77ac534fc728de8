#include "adapters/windows/variant_values.h"

#include <charconv>
#include <cstdint>
#include <utility>
#include <variant>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/exposed_collection.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

using automation::CollectionRef;
using automation::ObjectRef;
using automation::Value;

Variant DispatchVariant(ComPointer<IDispatch> object) {
  Variant variant;
  V_VT(&variant.Get()) = VT_DISPATCH;
  V_DISPATCH(&variant.Get()) = object.Detach();
  return variant;
}

struct IntoVariant {
  Variant operator()(std::monostate) const { return Variant(); }
  Variant operator()(bool value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_BOOL;
    V_BOOL(&variant.Get()) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
  }
  Variant operator()(std::int32_t value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_I4;
    V_I4(&variant.Get()) = value;
    return variant;
  }
  Variant operator()(double value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_R8;
    V_R8(&variant.Get()) = value;
    return variant;
  }
  Variant operator()(const std::string& value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_BSTR;
    V_BSTR(&variant.Get()) = Bstr(value).Detach();
    return variant;
  }
  Variant operator()(const ObjectRef& value) const {
    return DispatchVariant(value == nullptr ? ComPointer<IDispatch>() : ExposeObject(value));
  }
  Variant operator()(const CollectionRef& value) const { return DispatchVariant(ExposeCollection(value)); }
};

}  // namespace

Variant ToVariant(const Value& value) { return std::visit(IntoVariant{}, value); }

Value FromVariant(const VARIANT& value, const std::string& name) {
  Variant direct;  // by-reference variants read through
  if (FAILED(VariantCopyInd(direct.Out(), const_cast<VARIANT*>(&value)))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": a value that cannot be read");
  }
  const VARIANT& read = direct.Get();
  switch (V_VT(&read)) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR:
      return Value();
    case VT_BOOL:
      return V_BOOL(&read) != VARIANT_FALSE;
    case VT_R4: {
      // The number that reads the same: widened as it stands, it would show digits that it never had.
      char digits[32];
      const auto end = std::to_chars(digits, digits + sizeof digits, V_R4(&read)).ptr;
      double number = 0;
      std::from_chars(digits, end, number);
      return number;
    }
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
    case VT_DATE: {
      Variant number;
      if (FAILED(VariantChangeType(number.Out(), const_cast<VARIANT*>(&read), 0, VT_R8))) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": a number that cannot be read");
      }
      return V_R8(&number.Get());
    }
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      const auto unknown = ComPointer<IUnknown>::Share(V_UNKNOWN(&read));
      ComPointer<IDispatch> dispatch = unknown.As<IDispatch>(IID_IDispatch);
      if (!unknown) {
        return ObjectRef();
      }
      if (!dispatch) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": an object without automation interface");
      }
      return WrapDispatch(std::move(dispatch), name);
    }
    default: {
      Variant converted;
      if (V_VT(&read) != VT_BSTR &&
          SUCCEEDED(VariantChangeType(converted.Out(), const_cast<VARIANT*>(&read), 0, VT_I4))) {
        return static_cast<std::int32_t>(V_I4(&converted.Get()));
      }
      if (FAILED(VariantChangeType(converted.Out(), const_cast<VARIANT*>(&read), 0, VT_BSTR))) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch,
                               name + ": a value of variant type " + std::to_string(V_VT(&read)) + " cannot be read");
      }
      return TextOf(V_BSTR(&converted.Get()));
    }
  }
}

}  // namespace parvex::windows
