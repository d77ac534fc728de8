#include "com/script_arrays.h"

#include <string>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/system_error.h"
#include "com/values.h"
#include "com_server/dual_object.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::Hex;
using windows::Variant;

/// Leaves the value empty when there is no such member.
HRESULT ReadMember(IDispatch* object, const std::wstring& name, Variant& value) {
  OLECHAR* names = const_cast<OLECHAR*>(name.c_str());
  DISPID member = DISPID_UNKNOWN;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member))) {
    return S_FALSE;
  }
  DISPPARAMS none = {};
  return object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, value.Out(), nullptr,
                        nullptr);
}

LONG LengthOf(IDispatch* array, const char* parameter) {
  Variant length;
  if (ReadMember(array, L"length", length) != S_OK) {
    throw Mismatch(parameter, "no array was given, but an object without a length");
  }
  const Variant read = ReadThrough(length.Get());
  const VARTYPE type = V_VT(&read.Get());
  Variant number;
  if (type == VT_EMPTY || type == VT_NULL || type == VT_BSTR || type == VT_BOOL ||
      FAILED(VariantChangeType(number.Out(), const_cast<VARIANT*>(&read.Get()), 0, VT_R8))) {
    throw Mismatch(parameter, "the length of the array is no number");
  }
  const double count = V_R8(&number.Get());
  if (!(count >= 0 && count <= kMostScriptElements)) {
    throw Mismatch(parameter, "the length of the array is not between 0 and " + std::to_string(kMostScriptElements));
  }
  return static_cast<LONG>(count);
}

}  // namespace

IDispatch* ScriptArrayIn(const VARIANT& value) { return V_VT(&value) == VT_DISPATCH ? V_DISPATCH(&value) : nullptr; }

void ForEachScriptElement(IDispatch* array, const char* parameter,
                          const std::function<void(LONG index, const VARIANT& element)>& take) {
  const LONG length = LengthOf(array, parameter);
  for (LONG i = 0; i < length; ++i) {
    Variant element;
    const HRESULT result = ReadMember(array, std::to_wstring(i), element);
    if (FAILED(result)) {
      throw Mismatch(parameter, "element " + std::to_string(i) + " cannot be read (" +
                                    Hex(static_cast<std::uint32_t>(result)) + ")");
    }
    take(i, element.Get());
  }
}

}  // namespace parvex::com
