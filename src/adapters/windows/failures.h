#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>
#include <type_traits>

namespace parvex::windows {

// No exception crosses into COM. What is here allocates nothing on the way of a failed allocation: that failure is its
// HRESULT alone, E_OUTOFMEMORY, without a text.

/// What the caller of a COM method is told of an exception.
struct Failure {
  HRESULT result = E_FAIL;
  std::string source;
  std::string description;
};

/// The exception that is being handled. Call it in a catch clause. A number that is no failing HRESULT becomes one.
Failure CurrentFailure() noexcept;

/// Makes the failure the thread's error information, and gives back its HRESULT. `interfaceId` is the interface whose
/// method failed. Without a text, the thread has no error information afterwards.
HRESULT RaiseErrorInfo(const Failure& failure, REFIID interfaceId) noexcept;

/// The failure as an exception of a late-bound call (DISP_E_EXCEPTION, or its HRESULT when nobody asks for more).
HRESULT FillException(const Failure& failure, EXCEPINFO* exception) noexcept;

/// Runs the body of a method; no exception leaves it. A body that returns an HRESULT has its own answer.
template <typename Body>
HRESULT Guarded(REFIID interfaceId, Body body) noexcept {
  try {
    if constexpr (std::is_same_v<decltype(body()), HRESULT>) {
      return body();
    } else {
      body();
      return S_OK;
    }
  } catch (...) {
    return RaiseErrorInfo(CurrentFailure(), interfaceId);
  }
}

}  // namespace parvex::windows
