#include "com/values.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "adapters/windows/system_error.h"
#include "com/script_arrays.h"
#include "com_server/dual_object.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::Bstr;
using windows::ComPointer;
using windows::Hex;
using windows::Variant;

void Require(HRESULT result, const char* name) {
  if (result == E_OUTOFMEMORY) {
    throw std::bad_alloc();
  }
  if (FAILED(result)) {
    throw Mismatch(name, "an array that cannot be read (" + Hex(static_cast<std::uint32_t>(result)) + ")");
  }
}

bool FitsIndexes(LONG lower, std::uint64_t count) {
  constexpr std::int64_t kLast = std::numeric_limits<LONG>::max();
  return count <= static_cast<std::uint64_t>(kLast) &&
         std::int64_t{lower} + static_cast<std::int64_t>(count) - 1 <= kLast;
}

struct Bounds {
  LONG lower = 0;
  LONG count = 0;
};

// An array's last index has to be a LONG, and so has the number of its elements: what lies beyond no caller can index.
// The bounds are read from the array itself, for the last index that the runtime tells may have gone round.
Bounds BoundsOf(SAFEARRAY* array, const char* name) {
  if (SafeArrayGetDim(array) != 1) {
    throw Mismatch(name, "an array of " + std::to_string(SafeArrayGetDim(array)) + " dimensions");
  }
  const SAFEARRAYBOUND& bound = array->rgsabound[0];
  if (!FitsIndexes(bound.lLbound, bound.cElements) ||
      bound.cElements > std::numeric_limits<std::size_t>::max() / std::max<ULONG>(array->cbElements, 1)) {
    throw Mismatch(name, "an array of " + std::to_string(bound.cElements) + " elements from " +
                             std::to_string(bound.lLbound) + " on");
  }
  return {bound.lLbound, static_cast<LONG>(bound.cElements)};
}

VARTYPE ElementTypeOf(SAFEARRAY* array) {
  VARTYPE type = VT_EMPTY;
  return SUCCEEDED(SafeArrayGetVartype(array, &type)) ? type : static_cast<VARTYPE>(VT_EMPTY);
}

// The elements of an array in memory, for as long as this lives.
template <typename T>
class Elements {
 public:
  Elements(SAFEARRAY* array, const char* name) : array_(array) {
    Require(SafeArrayAccessData(array, reinterpret_cast<void**>(&data_)), name);
  }
  ~Elements() { SafeArrayUnaccessData(array_); }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;
  T& operator[](LONG index) const { return data_[index]; }

 private:
  SAFEARRAY* array_;
  T* data_ = nullptr;
};

SAFEARRAY* MakeArray(VARTYPE type, LONG lowerBound, std::size_t count, const IID* elementId = nullptr) {
  if (!FitsIndexes(lowerBound, count)) {
    throw std::bad_alloc();
  }
  SAFEARRAYBOUND bound = {static_cast<ULONG>(count), lowerBound};
  SAFEARRAY* array = SafeArrayCreateEx(type, 1, &bound, const_cast<IID*>(elementId));
  if (array == nullptr) {
    throw std::bad_alloc();
  }
  return array;
}

// The array of an argument that holds one; what the caller owns stays his.
SAFEARRAY* ArrayOf(const Variant& value, const char* name) {
  if ((V_VT(&value.Get()) & VT_ARRAY) == 0) {
    throw Mismatch(name, "no array was given (variant type " + std::to_string(V_VT(&value.Get())) + ")");
  }
  return V_ARRAY(&value.Get());
}

unsigned char ByteOf(const VARIANT& element, const char* name, LONG index) {
  Variant number;
  if (V_VT(&element) == VT_EMPTY ||
      FAILED(VariantChangeType(number.Out(), const_cast<VARIANT*>(&element), 0, VT_UI1))) {
    throw Mismatch(name, "element " + std::to_string(index) + " is no byte");
  }
  return V_UI1(&number.Get());
}

std::string BytesOfScriptArray(IDispatch* array, const char* name) {
  std::string bytes;
  ForEachScriptElement(array, name, [&](LONG index, const VARIANT& element) {
    bytes.push_back(static_cast<char>(ByteOf(ReadThrough(element).Get(), name, index)));
  });
  return bytes;
}

ComPointer<IDispatch> ReferenceOf(IUnknown* element, REFIID elementId, const char* name, LONG index) {
  const auto object = ComPointer<IUnknown>::Share(element);
  ComPointer<IDispatch> reference = object.As<IDispatch>(elementId);
  if (object && !reference) {
    throw Mismatch(name, "element " + std::to_string(index) + " is an object of another class");
  }
  return reference;
}

ComPointer<IDispatch> ReferenceIn(const VARIANT& element, REFIID elementId, const char* name, LONG index) {
  const Variant value = ReadThrough(element);
  switch (V_VT(&value.Get())) {
    case VT_EMPTY:
    case VT_NULL:
      return {};
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return ReferenceOf(V_UNKNOWN(&value.Get()), elementId, name, index);
    default:
      throw Mismatch(name, "element " + std::to_string(index) + " is no object");
  }
}

}  // namespace

AutomationError Mismatch(const char* name, const std::string& why) {
  return MakeRuntimeError(RuntimeError::TypeMismatch, std::string(name) + ": " + why);
}

void RequirePointer(const void* pointer, const char* name) {
  if (pointer == nullptr) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, std::string("no place was given for ") + name);
  }
}

void GiveText(BSTR* result, std::string_view text) {
  RequirePointer(result, "the result");
  *result = Bstr(text).Detach();
  if (*result == nullptr) {
    throw std::bad_alloc();
  }
}

std::string TextArgument(const VARIANT& value, const char* name) {
  Variant read = ReadThrough(value);
  Variant text;
  if (V_VT(&read.Get()) == VT_ERROR || FAILED(VariantChangeType(text.Out(), &read.Get(), 0, VT_BSTR))) {
    throw Mismatch(name, "no text was given (variant type " + std::to_string(V_VT(&read.Get())) + ")");
  }
  return windows::TextOf(V_BSTR(&text.Get()));
}

LONG IndexArgument(const VARIANT& value, const char* name) {
  Variant number;
  Variant read = ReadThrough(value);
  if (FAILED(VariantChangeType(number.Out(), &read.Get(), 0, VT_I4))) {
    throw Mismatch(name, "no number was given (variant type " + std::to_string(V_VT(&read.Get())) + ")");
  }
  return V_I4(&number.Get());
}

std::string BytesOf(SAFEARRAY* array, const char* name) {
  if (array == nullptr) {
    return {};
  }
  const Bounds bounds = BoundsOf(array, name);
  if (SafeArrayGetElemsize(array) != 1) {
    throw Mismatch(name, "no array of bytes");
  }
  const Elements<char> bytes(array, name);
  return bounds.count == 0 ? std::string() : std::string(&bytes[0], static_cast<std::size_t>(bounds.count));
}

std::string BytesArgument(const VARIANT& value, const char* name) {
  const Variant read = ReadThrough(value);
  if (IDispatch* const object = ScriptArrayIn(read.Get())) {
    return BytesOfScriptArray(object, name);
  }
  SAFEARRAY* array = ArrayOf(read, name);
  if (array == nullptr || ElementTypeOf(array) != VT_VARIANT) {
    return BytesOf(array, name);
  }
  const Bounds bounds = BoundsOf(array, name);
  const Elements<VARIANT> elements(array, name);
  std::string bytes;
  for (LONG i = 0; i < bounds.count; ++i) {
    bytes.push_back(static_cast<char>(ByteOf(elements[i], name, bounds.lower + i)));
  }
  return bytes;
}

SAFEARRAY* MakeByteArray(std::string_view bytes) {
  SAFEARRAY* array = MakeArray(VT_UI1, 0, bytes.size());
  const Elements<char> elements(array, "bytes");
  if (!bytes.empty()) {
    std::memcpy(&elements[0], bytes.data(), bytes.size());
  }
  return array;
}

ReferenceArray ReadReferences(SAFEARRAY* array, REFIID elementId, const char* name) {
  ReferenceArray references;
  if (array == nullptr) {
    return references;
  }
  const Bounds bounds = BoundsOf(array, name);
  references.lowerBound = bounds.lower;
  const VARTYPE type = ElementTypeOf(array);
  if (type == VT_VARIANT) {
    const Elements<VARIANT> elements(array, name);
    for (LONG i = 0; i < bounds.count; ++i) {
      references.elements.push_back(ReferenceIn(elements[i], elementId, name, bounds.lower + i));
    }
  } else if (type == VT_DISPATCH || type == VT_UNKNOWN) {
    const Elements<IUnknown*> elements(array, name);
    for (LONG i = 0; i < bounds.count; ++i) {
      references.elements.push_back(ReferenceOf(elements[i], elementId, name, bounds.lower + i));
    }
  } else {
    throw Mismatch(name, "no array of objects");
  }
  return references;
}

ReferenceArray ReferencesArgument(const VARIANT& value, REFIID elementId, const char* name) {
  const Variant read = ReadThrough(value);
  if (IDispatch* const object = ScriptArrayIn(read.Get())) {
    ReferenceArray references;
    ForEachScriptElement(object, name, [&](LONG index, const VARIANT& element) {
      references.elements.push_back(ReferenceIn(element, elementId, name, index));
    });
    return references;
  }
  return ReadReferences(ArrayOf(read, name), elementId, name);
}

SAFEARRAY* MakeReferences(const ReferenceArray& references, REFIID elementId) {
  SAFEARRAY* array = MakeArray(VT_DISPATCH, references.lowerBound, references.elements.size(), &elementId);
  const Elements<IDispatch*> elements(array, "references");
  for (std::size_t i = 0; i < references.elements.size(); ++i) {
    elements[static_cast<LONG>(i)] = ComPointer<IDispatch>(references.elements[i]).Detach();
  }
  return array;
}

SAFEARRAY* MakeVariants(const ReferenceArray& references) {
  SAFEARRAY* array = MakeArray(VT_VARIANT, references.lowerBound, references.elements.size());
  const Elements<VARIANT> elements(array, "references");
  for (std::size_t i = 0; i < references.elements.size(); ++i) {
    VARIANT& element = elements[static_cast<LONG>(i)];
    VariantInit(&element);
    V_VT(&element) = VT_DISPATCH;
    V_DISPATCH(&element) = ComPointer<IDispatch>(references.elements[i]).Detach();
  }
  return array;
}

}  // namespace parvex::com
