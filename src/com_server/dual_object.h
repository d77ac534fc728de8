#pragma once

#include <oaidl.h>
#include <windows.h>

#include <optional>

#include "adapters/windows/com_object.h"
#include "adapters/windows/com_pointer.h"
#include "com_server/failures.h"
#include "com_server/type_library.h"

namespace parvex::com {

/// A value as its owner holds it: what a by-reference variant refers to, copied.
windows::Variant ReadThrough(const VARIANT& value);

/// Base of an object with one dual interface of this module's type library. Late-bound calls go through the type
/// information to the interface's own methods, but for members that a class serves itself.
template <typename Interface>
class DualObject : public windows::ComObject<Interface, ISupportErrorInfo> {
 public:
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == __uuidof(Interface) ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) {
      return E_POINTER;
    }
    *count = 1;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) {
      return E_POINTER;
    }
    *info = nullptr;
    if (index != 0) {
      return DISP_E_BADINDEX;
    }
    return Guarded(__uuidof(Interface), [&] { *info = TypeInfoOf(__uuidof(Interface)).Detach(); });
  }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (id != IID_NULL) {
      return DISP_E_UNKNOWNINTERFACE;
    }
    return Guarded(__uuidof(Interface),
                   [&] { return TypeInfoOf(__uuidof(Interface))->GetIDsOfNames(names, count, ids); });
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT* refusedArgument) override {
    if (id != IID_NULL) {
      return DISP_E_UNKNOWNINTERFACE;
    }
    if (parameters == nullptr) {
      return E_POINTER;
    }
    try {
      if (const std::optional<HRESULT> served = Serve(member, kind, *parameters, result)) {
        return *served;
      }
      return TypeInfoOf(__uuidof(Interface))
          ->Invoke(static_cast<Interface*>(this), member, kind, parameters, result, exception, refusedArgument);
    } catch (...) {
      return FillException(CurrentFailure(), exception);
    }
  }

 protected:
  /// A late-bound member that the type information cannot serve: its answer, or nothing for every other member. What it
  /// throws becomes the exception of the call.
  virtual std::optional<HRESULT> Serve(DISPID, WORD, DISPPARAMS&, VARIANT*) { return std::nullopt; }

  template <typename Body>
  static HRESULT Guard(Body body) noexcept {
    return Guarded(__uuidof(Interface), body);
  }
};

}  // namespace parvex::com
