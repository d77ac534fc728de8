#include "adapters/windows/variant_values.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <variant>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/exposed_collection.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/kept_variant.h"
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
    if (value == nullptr) {
      return DispatchVariant({});
    }
    if (const VARIANT* kept = KeptVariant(*value)) {
      Variant variant;
      CheckCopied(CopyVariant(variant.Out(), *kept));
      return variant;
    }
    return DispatchVariant(ExposeObject(value));
  }
  Variant operator()(const CollectionRef& value) const {
    return DispatchVariant(value == nullptr ? ComPointer<IDispatch>() : ExposeCollection(value));
  }

  static void CheckCopied(HRESULT result) {
    if (FAILED(result)) {
      throw std::bad_alloc();
    }
  }
};

// Bytes of a type that is copied as it stands; 0 for one that owns something or is none of those.
std::size_t PlainSize(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 0;
  }
}

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

VARIANT ReferenceTo(VARIANT& value) {
  VARIANT reference;
  VariantInit(&reference);
  if (V_VT(&value) == VT_EMPTY) {
    V_VT(&reference) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&reference) = &value;
  } else {
    V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | V_VT(&value));
    V_BYREF(&reference) = &V_BYREF(&value);  // all values of a variant begin at the same place
  }
  return reference;
}

void WriteThrough(VARIANT& reference, const Value& value, const std::string& name) {
  const auto type = static_cast<VARTYPE>(V_VT(&reference) & ~VT_BYREF);
  Variant given = ToVariant(value);
  if (type == VT_VARIANT) {
    std::swap(*V_VARIANTREF(&reference), given.Get());
    return;
  }
  const bool isObject = type == VT_DISPATCH || type == VT_UNKNOWN;
  if (!isObject && type != VT_BSTR && PlainSize(type) == 0) {
    return;
  }
  if (FAILED(VariantChangeType(&given.Get(), &given.Get(), 0, type))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch,
                           name + ": an answer by reference has another type than is wanted");
  }
  if (isObject) {
    std::swap(*V_UNKNOWNREF(&reference), V_UNKNOWN(&given.Get()));
  } else if (type == VT_BSTR) {
    std::swap(*V_BSTRREF(&reference), V_BSTR(&given.Get()));
  } else {
    std::memcpy(V_BYREF(&reference), &V_BYREF(&given.Get()), PlainSize(type));
  }
}

}  // namespace parvex::windows
