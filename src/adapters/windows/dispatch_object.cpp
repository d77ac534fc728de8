#include "adapters/windows/dispatch_object.h"

#include <span>
#include <utility>
#include <vector>

#include "adapters/windows/system_error.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

// An automation object from outside.
class DispatchObject : public Object {
 public:
  DispatchObject(ComPointer<IDispatch> dispatch, std::string name)
      : dispatch_(std::move(dispatch)), name_(std::move(name)) {}

  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override { return Invoke(member, DISPATCH_PROPERTYGET, {}); }
  void Put(std::string_view member, const Value& value) override {
    Argument argument{value, false};
    const bool isObject = std::holds_alternative<ObjectRef>(value);
    Invoke(member, static_cast<WORD>(isObject ? DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT),
           {&argument, 1});
  }
  Value Call(std::string_view member, std::span<Argument> arguments) override {
    // With arguments it may also be a property that takes them, as collections have.
    const WORD kind = arguments.empty() ? DISPATCH_METHOD : DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    return Invoke(member, kind, arguments);
  }

  const ComPointer<IDispatch>& Dispatch() const { return dispatch_; }

 private:
  std::string Described(std::string_view member) const { return name_ + "." + std::string(member); }

  DISPID IdOf(std::string_view member) {
    std::wstring wide = Widen(member);
    LPOLESTR names = wide.data();
    DISPID id = 0;
    const HRESULT result = dispatch_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(result)) {
      throw AutomationError(
          static_cast<std::uint32_t>(result), kErrorSource,
          Described(member) + ": the object has no such member (" + Hex(static_cast<std::uint32_t>(result)) + ")");
    }
    return id;
  }

  Value Invoke(std::string_view member, WORD kind, std::span<Argument> arguments) {
    const DISPID id = IdOf(member);
    std::vector<Variant> values(arguments.size());
    std::vector<VARIANTARG> passed(arguments.size());
    PassArguments(arguments, values, passed);
    DISPID putName = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {passed.data(), nullptr, static_cast<UINT>(passed.size()), 0};
    if ((kind & DISPATCH_PROPERTYPUT) != 0) {
      parameters.rgdispidNamedArgs = &putName;
      parameters.cNamedArgs = 1;
    }
    Variant answer;
    EXCEPINFO exception = {};
    UINT refused = 0;
    const HRESULT result =
        dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                          (kind & DISPATCH_PROPERTYPUT) != 0 ? nullptr : answer.Out(), &exception, &refused);
    if (FAILED(result)) {
      ThrowFailure(member, result, exception, refused, arguments.size());
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (arguments[i].byReference) {
        arguments[i].value = FromVariant(values[i].Get(), Described(member));
      }
    }
    return FromVariant(answer.Get(), Described(member));
  }

  // The protocol takes arguments last first; one by reference is a variant that refers to our own.
  static void PassArguments(std::span<Argument> arguments, std::vector<Variant>& values,
                            std::vector<VARIANTARG>& passed) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      values[i] = ToVariant(arguments[i].value);
      VARIANTARG& slot = passed[arguments.size() - 1 - i];
      VariantInit(&slot);
      if (arguments[i].byReference) {
        V_VT(&slot) = VT_BYREF | VT_VARIANT;
        V_VARIANTREF(&slot) = &values[i].Get();
      } else {
        slot = values[i].Get();
      }
    }
  }

  [[noreturn]] void ThrowFailure(std::string_view member, HRESULT result, EXCEPINFO& exception, UINT refused,
                                 std::size_t count) const {
    if (result != DISP_E_EXCEPTION) {
      std::string text = Described(member) + " failed with " + Hex(static_cast<std::uint32_t>(result));
      if ((result == DISP_E_TYPEMISMATCH || result == DISP_E_PARAMNOTFOUND) && refused < count) {
        text += " at argument " + std::to_string(count - refused);
      }
      throw AutomationError(static_cast<std::uint32_t>(result), kErrorSource, text);
    }
    if (exception.pfnDeferredFillIn != nullptr) {
      exception.pfnDeferredFillIn(&exception);
    }
    const std::string source = TextOf(exception.bstrSource);
    const std::string description = TextOf(exception.bstrDescription);
    const std::uint32_t number =
        exception.scode != 0 ? static_cast<std::uint32_t>(exception.scode) : 0x800A0000u + exception.wCode;
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    // What the object says of its error stands as it is: replies repeat it.
    throw AutomationError(number, source.empty() ? kErrorSource : source,
                          description.empty() ? Described(member) + " failed with " + Hex(number) : description);
  }

  ComPointer<IDispatch> dispatch_;
  std::string name_;
};

}  // namespace

ObjectRef WrapDispatch(ComPointer<IDispatch> dispatch, std::string name) {
  return std::make_shared<DispatchObject>(std::move(dispatch), std::move(name));
}

ComPointer<IDispatch> WrappedDispatch(const Object& object) {
  const auto* outside = dynamic_cast<const DispatchObject*>(&object);
  return outside == nullptr ? ComPointer<IDispatch>() : outside->Dispatch();
}

}  // namespace parvex::windows
