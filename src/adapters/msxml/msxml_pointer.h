#pragma once

#include "adapters/windows/com_pointer.h"

namespace parvex::xml {

// A reference to an object of MSXML. With PARVEX_COUNT_MSXML_CALLS, which a test builds the adapter with a second time,
// each call of a member and each question for an interface is counted; the counting of references is not.

#ifdef PARVEX_COUNT_MSXML_CALLS

/// Of all threads, since the program began.
inline unsigned long long msxmlCalls = 0;

template <typename T>
class CountingPointer : public windows::ComPointer<T> {
 public:
  CountingPointer() = default;
  CountingPointer(windows::ComPointer<T> pointer) : windows::ComPointer<T>(std::move(pointer)) {}  // NOLINT: the same

  static CountingPointer Share(T* object) { return windows::ComPointer<T>::Share(object); }

  T* operator->() const {
    ++msxmlCalls;
    return this->Get();
  }
  template <typename U>
  CountingPointer<U> As(REFIID id) const {
    ++msxmlCalls;
    return windows::ComPointer<T>::template As<U>(id);
  }
};

template <typename T>
using MsxmlPointer = CountingPointer<T>;

#else

template <typename T>
using MsxmlPointer = windows::ComPointer<T>;

#endif

}  // namespace parvex::xml
