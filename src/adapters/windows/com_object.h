#pragma once

#include <oaidl.h>
#include <windows.h>

#include <atomic>
#include <type_traits>
#include <utility>

#include "adapters/windows/com_pointer.h"

namespace parvex::windows {

/// Why the module (the program or DLL that this is linked into) has to stay loaded: its living objects, and the locks
/// that callers of IClassFactory::LockServer hold.
class ModuleUse {
 public:
  ModuleUse() { ++count_; }
  ~ModuleUse() { --count_; }
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;

  /// The answer of DllCanUnloadNow is S_FALSE while this is not 0.
  static long Count() { return count_; }
  static void Lock() { ++count_; }
  static void Unlock() { --count_; }

 private:
  static inline std::atomic<long> count_{0};
};

/// Base of an object that goes out to COM: its references, its interfaces, its part in the use of the module. Each of
/// `Interfaces` is offered under its own id; IUnknown is the first of them, IDispatch the first that is derived from
/// it. Members are safe to be called from any thread. An object is born with no reference: make it with MakeCom.
template <typename First, typename... Others>
class ComObject : public First, public Others... {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
  virtual ~ComObject() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (id == IID_IUnknown) {
      *object = static_cast<First*>(this);
    } else {
      static_cast<void>((Offer<First>(id, object) || ... || Offer<Others>(id, object)));
    }
    if (*object == nullptr) {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

 private:
  template <typename Interface>
  bool Offer(REFIID id, void** object) {
    if (id == __uuidof(Interface) || (std::is_base_of_v<IDispatch, Interface> && id == IID_IDispatch)) {
      *object = static_cast<Interface*>(this);
      return true;
    }
    return false;
  }

  std::atomic<ULONG> references_{0};
  ModuleUse use_;
};

/// A new object with the one reference that is returned.
template <typename T, typename... Arguments>
ComPointer<T> MakeCom(Arguments&&... arguments) {
  return ComPointer<T>::Share(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace parvex::windows
