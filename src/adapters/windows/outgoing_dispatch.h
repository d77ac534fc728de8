#pragma once

#include <oaidl.h>

#include "adapters/windows/com_object.h"

namespace parvex::windows {

/// Base of the small objects that go out to late binding only, without type information.
class OutgoingDispatch : public ComObject<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) {
      return E_POINTER;
    }
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info == nullptr) {
      return E_POINTER;
    }
    *info = nullptr;
    return DISP_E_BADINDEX;
  }
};

}  // namespace parvex::windows
