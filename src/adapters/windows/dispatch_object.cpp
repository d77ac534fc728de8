#include "adapters/windows/dispatch_object.h"

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "adapters/windows/system_error.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"
#include "seams/member_errors.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::Object;
using automation::ObjectRef;
using automation::Value;

constexpr UINT kNotTold = ~0u;  // an object need not say which argument it refuses

// The arguments of one call as the protocol takes them: last first, what goes by reference as a reference of its own
// type. A text is never a reference to a variant, which a member with a text by reference refuses.
class PassedArguments {
 public:
  explicit PassedArguments(std::span<Argument> arguments)
      : arguments_(arguments), values_(arguments.size()), slots_(arguments.size()) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      values_[i] = ToVariant(arguments[i].value);
      const VARIANT& value = values_[i].Get();
      objects_.push_back(V_VT(&value) == VT_DISPATCH ? V_DISPATCH(&value) : nullptr);
      slots_[arguments.size() - 1 - i] = arguments[i].byReference ? ReferenceTo(values_[i].Get()) : value;
    }
  }

  VARIANTARG* Slots() { return slots_.data(); }

  // What the member left in the references. An object that is still the same stays the one that was passed.
  void TakeBack(const std::string& name) {
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
      if (arguments_[i].byReference && !IsSameObject(i)) {
        arguments_[i].value = FromVariant(values_[i].Get(), name);
      }
    }
  }

 private:
  bool IsSameObject(std::size_t i) const {
    const VARIANT& now = values_[i].Get();
    return V_VT(&now) == VT_DISPATCH && V_DISPATCH(&now) == objects_.at(i);
  }

  std::span<Argument> arguments_;
  std::vector<Variant> values_;      // what references refer to
  std::vector<IDispatch*> objects_;  // that were passed, null for everything else
  std::vector<VARIANTARG> slots_;
};

// An automation object from outside.
class DispatchObject : public Object {
 public:
  DispatchObject(ComPointer<IDispatch> dispatch, std::string name)
      : dispatch_(std::move(dispatch)), name_(std::move(name)) {}

  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override {
    // A value that its server offers as a method is read all the same, as scripts read it.
    return Invoke(member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
  }
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
      ThrowRefusal(member, result, std::nullopt, 0);
    }
    return id;
  }

  Value Invoke(std::string_view member, WORD kind, std::span<Argument> arguments) {
    const DISPID id = IdOf(member);
    PassedArguments passed(arguments);
    DISPID putName = DISPID_PROPERTYPUT;
    const bool isPut = (kind & DISPATCH_PROPERTYPUT) != 0;
    DISPPARAMS parameters = {passed.Slots(), isPut ? &putName : nullptr, static_cast<UINT>(arguments.size()),
                             isPut ? 1u : 0u};
    Variant answer;
    EXCEPINFO exception = {};
    UINT refused = kNotTold;
    const HRESULT result = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                             isPut ? nullptr : answer.Out(), &exception, &refused);
    if (result == DISP_E_EXCEPTION) {
      ThrowException(member, exception);
    }
    if (FAILED(result)) {
      const bool told = refused < arguments.size();
      ThrowRefusal(member, result, told ? std::optional(arguments.size() - refused) : std::nullopt, arguments.size());
    }
    passed.TakeBack(Described(member));
    return FromVariant(answer.Get(), Described(member));
  }

  // The call did not reach the member. `refused` is the number of the argument that the object blames.
  [[noreturn]] void ThrowRefusal(std::string_view member, HRESULT result, std::optional<std::size_t> refused,
                                 std::size_t given) const {
    switch (result) {
      case DISP_E_UNKNOWNNAME:
      case DISP_E_MEMBERNOTFOUND:
        throw automation::NoSuchMember(name_, member);
      case DISP_E_BADPARAMCOUNT:
      case DISP_E_PARAMNOTOPTIONAL:
        throw automation::WrongArgumentCount(name_, member, given);
      case DISP_E_TYPEMISMATCH:
        throw automation::WrongArgumentType(name_, member, refused);
      default: {
        const auto number = static_cast<std::uint32_t>(result);
        throw AutomationError(number, kErrorSource, Described(member) + " failed with " + Hex(number));
      }
    }
  }

  // What the member itself raised.
  [[noreturn]] void ThrowException(std::string_view member, EXCEPINFO& exception) const {
    if (exception.pfnDeferredFillIn != nullptr) {
      exception.pfnDeferredFillIn(&exception);
    }
    Bstr source;
    Bstr description;
    Bstr helpFile;
    *source.Out() = exception.bstrSource;
    *description.Out() = exception.bstrDescription;
    *helpFile.Out() = exception.bstrHelpFile;
    const std::uint32_t number =
        exception.scode != 0 ? static_cast<std::uint32_t>(exception.scode) : 0x800A0000u + exception.wCode;
    // What the object says of its error stands as it is: replies repeat it.
    throw AutomationError(
        number, source.Text().empty() ? kErrorSource : source.Text(),
        description.Text().empty() ? Described(member) + " failed with " + Hex(number) : description.Text());
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
