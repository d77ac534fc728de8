#pragma once

#include <oaidl.h>
#include <windows.h>

#include <cstdint>
#include <string>

namespace parvex::com {

/// What the caller of a COM method is told of an exception.
struct Failure {
  HRESULT result = E_FAIL;
  std::string source;
  std::string description;
};

/// The exception that is being handled. Call it in a catch clause. A number that is no failing HRESULT becomes one.
Failure CurrentFailure();

/// Makes the failure the thread's error information, and gives back its HRESULT. `interfaceId` is the interface whose
/// method failed.
HRESULT RaiseErrorInfo(const Failure& failure, REFIID interfaceId);

/// The failure as an exception of a late-bound call (DISP_E_EXCEPTION, or its HRESULT when nobody asks for more).
HRESULT FillException(const Failure& failure, EXCEPINFO* exception);

/// Runs the body of a method; no exception leaves it.
template <typename Body>
HRESULT Guarded(REFIID interfaceId, Body body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return RaiseErrorInfo(CurrentFailure(), interfaceId);
  }
}

}  // namespace parvex::com
