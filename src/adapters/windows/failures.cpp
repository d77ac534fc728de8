#include "adapters/windows/failures.h"

#include <exception>
#include <new>

#include "adapters/windows/com_pointer.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

Failure Described() {
  try {
    throw;
  } catch (const AutomationError& error) {
    const auto number = static_cast<HRESULT>(error.Number());
    return {FAILED(number) ? number : E_FAIL, error.Source(), error.Description()};
  } catch (const std::bad_alloc&) {
    return {E_OUTOFMEMORY, {}, {}};
  } catch (const std::exception& error) {
    return {E_FAIL, kErrorSource, error.what()};
  } catch (...) {
    return {E_FAIL, kErrorSource, "an unknown failure"};
  }
}

}  // namespace

Failure CurrentFailure() noexcept {
  try {
    return Described();
  } catch (...) {
    return {E_OUTOFMEMORY, {}, {}};  // there was no memory to tell of it
  }
}

HRESULT RaiseErrorInfo(const Failure& failure, REFIID interfaceId) noexcept {
  SetErrorInfo(0, nullptr);
  if (failure.description.empty()) {
    return failure.result;
  }
  try {
    ComPointer<ICreateErrorInfo> details;
    if (SUCCEEDED(CreateErrorInfo(details.Out()))) {
      details->SetGUID(interfaceId);
      details->SetSource(Bstr(failure.source).Get());
      details->SetDescription(Bstr(failure.description).Get());
      SetErrorInfo(0, details.As<IErrorInfo>(IID_IErrorInfo).Get());
    }
  } catch (const std::exception&) {
    // The number is all that there is memory for.
  }
  return failure.result;
}

HRESULT FillException(const Failure& failure, EXCEPINFO* exception) noexcept {
  if (exception == nullptr) {
    return failure.result;
  }
  *exception = EXCEPINFO{};
  exception->scode = failure.result;
  try {
    exception->bstrSource = Bstr(failure.source).Detach();
    exception->bstrDescription = Bstr(failure.description).Detach();
  } catch (const std::exception&) {
    // As above.
  }
  return DISP_E_EXCEPTION;
}

}  // namespace parvex::windows
