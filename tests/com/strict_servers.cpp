#include "tests/com/strict_servers.h"

namespace parvex::test {
namespace {

using windows::Bstr;
using windows::ComPointer;
using windows::Variant;

std::string DescribeValue(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_BSTR:
      return windows::TextOf(V_BSTR(&value));
    case VT_DISPATCH:
      return V_DISPATCH(&value) == nullptr ? "Nothing" : "object";
    default:
      return "type " + std::to_string(V_VT(&value));
  }
}

int CountByEnumerator(_Collection* items) {
  ComPointer<IUnknown> enumerator;
  items->_NewEnum(enumerator.Out());
  const auto walk = enumerator.As<IEnumVARIANT>(IID_IEnumVARIANT);
  int count = 0;
  for (Variant item; walk && walk->Next(1, item.Out(), nullptr) == S_OK; ++count) {
  }
  return count;
}

}  // namespace

std::string DescribeItems(_Collection* items, std::initializer_list<const char*> keys) {
  if (items == nullptr) {
    return "(no collection)";
  }
  LONG count = 0;
  items->Count(&count);
  std::string text = std::to_string(count) + "/" + std::to_string(CountByEnumerator(items));
  for (const char* key : keys) {
    const Bstr name(key);
    VARIANT index;
    V_VT(&index) = VT_BSTR;
    V_BSTR(&index) = name.Get();
    Variant item;
    const HRESULT found = items->Item(&index, item.Out());
    text += std::string(" ") + key + "=" + (SUCCEEDED(found) ? DescribeValue(item.Get()) : "(none)");
  }
  return text;
}

}  // namespace parvex::test
