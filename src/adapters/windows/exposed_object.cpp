#include "adapters/windows/exposed_object.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/outgoing_dispatch.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/text.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;

// An object of this system, driven from outside.
class ExposedObject : public OutgoingDispatch {
 public:
  explicit ExposedObject(ObjectRef object) : object_(std::move(object)) {}

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) {
      const std::string name = Narrow(names[i]);
      const auto [entry, added] = ids_.try_emplace(ToUpper(name), static_cast<DISPID>(names_.size() + 1));
      if (added) {
        names_.push_back(name);
      }
      ids[i] = entry->second;
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    if (id < 1 || static_cast<std::size_t>(id) > names_.size()) {
      return DISP_E_MEMBERNOTFOUND;
    }
    try {
      return Dispatched(names_[static_cast<std::size_t>(id) - 1], kind, *parameters, result);
    } catch (const AutomationError& error) {
      return ReportError(error, exception);
    } catch (const std::exception&) {
      return E_FAIL;
    }
  }

 private:
  HRESULT Dispatched(const std::string& member, WORD kind, DISPPARAMS& parameters, VARIANT* result) {
    std::vector<Argument> arguments(parameters.cArgs);
    for (UINT i = 0; i < parameters.cArgs; ++i) {
      const VARIANTARG& passed = parameters.rgvarg[parameters.cArgs - 1 - i];
      arguments[i].byReference = (V_VT(&passed) & VT_BYREF) != 0;
      arguments[i].value = FromVariant(passed, object_->Name() + "." + member);
    }
    if ((kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
      object_->Put(member, arguments.empty() ? Value() : arguments.back().value);
      return S_OK;
    }
    // A script cannot say whether it means a property or a method without arguments; a property is tried first then.
    Value value;
    if ((kind & DISPATCH_PROPERTYGET) != 0 && arguments.empty()) {
      try {
        value = object_->Get(member);
      } catch (const AutomationError&) {
        if ((kind & DISPATCH_METHOD) == 0) {
          throw;
        }
        value = object_->Call(member, arguments);
      }
    } else {
      value = object_->Call(member, arguments);
    }
    ReturnReferences(arguments, parameters);
    if (result != nullptr) {
      return CopyVariant(result, ToVariant(value).Get());
    }
    return S_OK;
  }

  static void ReturnReferences(const std::vector<Argument>& arguments, DISPPARAMS& parameters) {
    for (UINT i = 0; i < parameters.cArgs; ++i) {
      VARIANTARG& passed = parameters.rgvarg[parameters.cArgs - 1 - i];
      if (V_VT(&passed) == (VT_BYREF | VT_VARIANT)) {
        VariantClear(V_VARIANTREF(&passed));
        CopyVariant(V_VARIANTREF(&passed), ToVariant(arguments[i].value).Get());
      } else if (V_VT(&passed) == (VT_BYREF | VT_BSTR) && std::holds_alternative<std::string>(arguments[i].value)) {
        SysFreeString(*V_BSTRREF(&passed));
        *V_BSTRREF(&passed) = Bstr(std::get<std::string>(arguments[i].value)).Detach();
      }
    }
  }

  ObjectRef object_;
  std::map<std::string, DISPID> ids_;
  std::vector<std::string> names_;
};

}  // namespace

ComPointer<IDispatch> ExposeObject(ObjectRef object) {
  if (ComPointer<IDispatch> wrapped = object == nullptr ? ComPointer<IDispatch>() : WrappedDispatch(*object)) {
    return wrapped;
  }
  return MakeCom<ExposedObject>(std::move(object)).As<IDispatch>(IID_IDispatch);
}

}  // namespace parvex::windows
