#include "com_server/failures.h"

#include <exception>
#include <new>

#include "adapters/windows/com_pointer.h"
#include "seams/automation_error.h"

namespace parvex::com {

using windows::Bstr;
using windows::ComPointer;

Failure CurrentFailure() {
  try {
    throw;
  } catch (const AutomationError& error) {
    const auto number = static_cast<HRESULT>(error.Number());
    return {FAILED(number) ? number : E_FAIL, error.Source(), error.Description()};
  } catch (const std::bad_alloc&) {
    return {E_OUTOFMEMORY, kErrorSource, "not enough memory"};
  } catch (const std::exception& error) {
    return {E_FAIL, kErrorSource, error.what()};
  } catch (...) {
    return {E_FAIL, kErrorSource, "an unknown failure"};
  }
}

HRESULT RaiseErrorInfo(const Failure& failure, REFIID interfaceId) {
  ComPointer<ICreateErrorInfo> details;
  if (SUCCEEDED(CreateErrorInfo(details.Out()))) {
    details->SetGUID(interfaceId);
    details->SetSource(Bstr(failure.source).Get());
    details->SetDescription(Bstr(failure.description).Get());
    SetErrorInfo(0, details.As<IErrorInfo>(IID_IErrorInfo).Get());
  }
  return failure.result;
}

HRESULT FillException(const Failure& failure, EXCEPINFO* exception) {
  if (exception == nullptr) {
    return failure.result;
  }
  *exception = EXCEPINFO{};
  exception->scode = failure.result;
  exception->bstrSource = Bstr(failure.source).Detach();
  exception->bstrDescription = Bstr(failure.description).Detach();
  return DISP_E_EXCEPTION;
}

}  // namespace parvex::com
