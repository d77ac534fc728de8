#include "adapters/windows/exposed_object.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/failures.h"
#include "adapters/windows/outgoing_dispatch.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/text.h"
#include "seams/member_errors.h"

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
    if (names == nullptr || ids == nullptr) {
      return E_POINTER;
    }
    return Guarded(IID_IDispatch, [&] {
      for (UINT i = 0; i < count; ++i) {
        ids[i] = IdOf(names[i]);
      }
    });
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    if (parameters == nullptr) {
      return E_POINTER;
    }
    if (id < 1 || static_cast<std::size_t>(id) > names_.size()) {
      return DISP_E_MEMBERNOTFOUND;
    }
    try {
      const std::string member = names_[static_cast<std::size_t>(id) - 1];  // the list may grow during the call
      return Dispatched(member, kind, *parameters, result);
    } catch (...) {
      return FillException(CurrentFailure(), exception);
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
      const Value none;
      object_->Put(member, arguments.empty() ? none : arguments.back().value);
      return S_OK;
    }
    const Value value = arguments.empty() && (kind & DISPATCH_PROPERTYGET) != 0
                            ? Read(member, (kind & DISPATCH_METHOD) != 0)
                            : object_->Call(member, arguments);
    ReturnReferences(member, arguments, parameters);
    return result == nullptr ? S_OK : CopyVariant(result, ToVariant(value).Get());
  }

  // A script cannot say whether it means a property or a method without arguments; a property is tried first then.
  Value Read(const std::string& member, bool maybeMethod) {
    try {
      return object_->Get(member);
    } catch (const AutomationError& error) {
      if (!maybeMethod || error.Number() != automation::kNoSuchMember) {
        throw;
      }
    }
    return object_->Call(member, {});
  }

  // Only what the object has changed: a caller's variable keeps its type where it was but read.
  void ReturnReferences(const std::string& member, const std::vector<Argument>& arguments, DISPPARAMS& parameters) {
    const std::string name = object_->Name() + "." + member;
    for (UINT i = 0; i < parameters.cArgs; ++i) {
      VARIANTARG& passed = parameters.rgvarg[parameters.cArgs - 1 - i];
      if (arguments[i].byReference && FromVariant(passed, name) != arguments[i].value) {
        WriteThrough(passed, arguments[i].value, name);
      }
    }
  }

  DISPID IdOf(const wchar_t* wide) {
    const std::string name = Narrow(wide);
    const std::string key = ToUpper(name);
    if (const auto known = ids_.find(key); known != ids_.end()) {
      return known->second;
    }
    names_.push_back(name);
    const auto id = static_cast<DISPID>(names_.size());
    ids_.emplace(key, id);
    return id;
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
