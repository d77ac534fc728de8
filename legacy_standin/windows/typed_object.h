#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/windows/com_pointer.h"
#include "com_server/dual_object.h"
#include "seams/automation.h"
#include "seams/automation_error.h"

namespace parvex::standin {

/// A class of the substitute behind its interface in the type library. Callers by name are held to the types that stand
/// there, as the platform does it, and more strictly in one point: a text by reference has to be given as one, where
/// the platform would make one of a value.
template <typename Interface>
class TypedObject : public com::DualObject<Interface> {
 public:
  explicit TypedObject(automation::ObjectRef object) : object_(std::move(object)) {}

  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* refusedArgument) override {
    UINT refused = 0;
    bool fits = true;
    const HRESULT looked = windows::Guarded(
        __uuidof(Interface), [&] { fits = parameters == nullptr || TextReferencesFit(member, *parameters, refused); });
    if (FAILED(looked)) {
      return looked;
    }
    if (!fits) {
      if (refusedArgument != nullptr) {
        *refusedArgument = refused;
      }
      return DISP_E_TYPEMISMATCH;
    }
    return com::DualObject<Interface>::Invoke(member, id, locale, kind, parameters, result, exception, refusedArgument);
  }

 protected:
  template <typename Body>
  static HRESULT Guard(Body body) noexcept {
    return com::DualObject<Interface>::Guard(body);
  }

  HRESULT GetText(std::string_view member, BSTR* text) {
    return Guard([&] {
      Need(text);
      *text = windows::Bstr(std::get<std::string>(object_->Get(member))).Detach();
    });
  }
  HRESULT PutText(std::string_view member, BSTR text) {
    return Guard([&] { object_->Put(member, windows::TextOf(text)); });
  }
  /// Calls a member with texts by reference, and gives back what it leaves in them.
  automation::Value CallWithTexts(std::string_view member, std::initializer_list<BSTR*> texts) {
    std::vector<automation::Argument> arguments;
    for (BSTR* text : texts) {
      Need(text);
      arguments.push_back({windows::TextOf(*text), true});
    }
    const automation::Value answer = object_->Call(member, arguments);
    auto argument = arguments.begin();
    for (BSTR* text : texts) {
      windows::Bstr now(std::get<std::string>((argument++)->value));
      SysFreeString(std::exchange(*text, now.Detach()));
    }
    return answer;
  }
  template <typename T>
  static void Need(T* pointer) {
    if (pointer == nullptr) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "a null pointer was given");
    }
  }

  const automation::ObjectRef object_;

 private:
  // Arguments come last first, parameters first first.
  bool TextReferencesFit(DISPID member, const DISPPARAMS& given, UINT& refused) {
    const windows::ComPointer<ITypeInfo> info = com::TypeInfoOf(__uuidof(Interface));
    TYPEATTR* attributes = nullptr;
    if (FAILED(info->GetTypeAttr(&attributes))) {
      return true;
    }
    bool fit = true;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      if (FAILED(info->GetFuncDesc(i, &function))) {
        continue;
      }
      for (UINT at = 0; function->memid == member && fit && at < given.cArgs && at < UINT(function->cParams); ++at) {
        const TYPEDESC& type = function->lprgelemdescParam[at].tdesc;
        const UINT slot = given.cArgs - 1 - at;
        if (type.vt == VT_PTR && type.lptdesc->vt == VT_BSTR && function->invkind == INVOKE_FUNC &&
            V_VT(&given.rgvarg[slot]) != (VT_BYREF | VT_BSTR)) {
          fit = false;
          refused = slot;
        }
      }
      info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);
    return fit;
  }
};

}  // namespace parvex::standin
