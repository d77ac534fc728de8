#include "adapters/windows/outgoing_dispatch.h"

#include "adapters/windows/com_pointer.h"

namespace parvex::windows {

HRESULT ReportError(const AutomationError& error, EXCEPINFO* exception) {
  if (exception == nullptr) {
    return static_cast<HRESULT>(error.Number());
  }
  *exception = EXCEPINFO{};
  exception->scode = static_cast<SCODE>(error.Number());
  exception->bstrSource = Bstr(error.Source()).Detach();
  exception->bstrDescription = Bstr(error.Description()).Detach();
  return DISP_E_EXCEPTION;
}

}  // namespace parvex::windows
