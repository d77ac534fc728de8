#pragma once

#include <oaidl.h>

#include "adapters/windows/com_object.h"
#include "seams/automation_error.h"

namespace parvex::windows {

/// Base of the small objects that go out to late binding only, without type information.
class OutgoingDispatch : public ComObject<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
};

/// An error as the automation protocol tells it: in `exception` where the caller gave one, else by its number alone.
HRESULT ReportError(const AutomationError& error, EXCEPINFO* exception);

}  // namespace parvex::windows
