#include "adapters/windows/system_automation.h"

#include <charconv>
#include <map>
#include <vector>

#include "adapters/windows/com_object.h"
#include "adapters/windows/system_error.h"
#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
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

// Base of the small objects that go out to late binding only, without type information.
class OutgoingDispatch : public ComObject<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
};

HRESULT ReportError(const AutomationError& error, EXCEPINFO* exception) {
  if (exception == nullptr) {
    return static_cast<HRESULT>(error.Number());
  }
  *exception = EXCEPINFO{};
  exception->scode = static_cast<SCODE>(error.Number());
  exception->bstrSource = Bstr(error.Source()).Detach();
  exception->bstrDescription = Bstr(error.Description()).Detach();
  return DISP_E_EXCEPTION;
}

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

// The enumerator of a keyed collection: its items in order.
class ItemEnumerator : public ComObject<IEnumVARIANT> {
 public:
  ItemEnumerator(CollectionRef items, std::size_t next) : items_(std::move(items)), next_(next) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* items, ULONG* fetched) override {
    ULONG count = 0;
    for (; count < wanted && next_ < items_->size(); ++count, ++next_) {
      CopyVariant(&items[count], ToVariant((*items_)[next_].second.value).Get());
    }
    if (fetched != nullptr) {
      *fetched = count;
    }
    return count == wanted ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const std::size_t left = items_->size() - next_;
    next_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override {
    *copy = MakeCom<ItemEnumerator>(items_, next_).Detach();
    return S_OK;
  }

 private:
  CollectionRef items_;
  std::size_t next_;
};

// A keyed collection, with the members of the runtime's own collection object.
class ExposedCollection : public OutgoingDispatch {
 public:
  explicit ExposedCollection(CollectionRef items) : items_(std::move(items)) {}

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    static const std::map<std::string, DISPID> kMembers = {
        {"ITEM", DISPID_VALUE}, {"ADD", 1}, {"COUNT", 2}, {"REMOVE", 3}, {"_NEWENUM", DISPID_NEWENUM}};
    HRESULT result = S_OK;
    for (UINT i = 0; i < count; ++i) {
      const auto found = kMembers.find(ToUpper(Narrow(names[i])));
      ids[i] = found == kMembers.end() ? DISPID_UNKNOWN : found->second;
      result = found == kMembers.end() ? DISP_E_UNKNOWNNAME : result;
    }
    return result;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    try {
      switch (id) {
        case DISPID_VALUE:
          return Answer(Find(*parameters)->second.value, result);
        case 1:
          return Add(*parameters);
        case 2:
          return Answer(static_cast<std::int32_t>(items_->size()), result);
        case 3:
          items_->erase(Find(*parameters));
          return S_OK;
        case DISPID_NEWENUM:
          return Enumerate(result);
        default:
          return DISP_E_MEMBERNOTFOUND;
      }
    } catch (const AutomationError& error) {
      return ReportError(error, exception);
    } catch (const std::exception&) {
      return E_FAIL;
    }
  }

 private:
  static HRESULT Answer(const Value& value, VARIANT* result) {
    if (result != nullptr) {
      return CopyVariant(result, ToVariant(value).Get());
    }
    return S_OK;
  }

  HRESULT Enumerate(VARIANT* result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    VariantInit(result);
    V_VT(result) = VT_UNKNOWN;
    V_UNKNOWN(result) = MakeCom<ItemEnumerator>(items_, 0u).Detach();
    return S_OK;
  }

  // By key (letter case ignored) or by number from 1.
  KeyedItems::iterator Find(DISPPARAMS& parameters) {
    if (parameters.cArgs != 1) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "a collection's item is named by one key or number");
    }
    const Value key = FromVariant(parameters.rgvarg[0], "key");
    if (const auto* text = std::get_if<std::string>(&key)) {
      for (auto item = items_->begin(); item != items_->end(); ++item) {
        if (EqualIgnoringCase(item->first, *text)) {
          return item;
        }
      }
      throw MakeRuntimeError(RuntimeError::InvalidCall, "the collection has no key \"" + *text + "\"");
    }
    const auto* number = std::get_if<std::int32_t>(&key);
    if (number == nullptr || *number < 1 || static_cast<std::size_t>(*number) > items_->size()) {
      throw MakeRuntimeError(RuntimeError::SubscriptOutOfRange, "the collection has no such item");
    }
    return items_->begin() + (*number - 1);
  }

  HRESULT Add(DISPPARAMS& parameters) {
    if (parameters.cArgs < 1 || parameters.cArgs > 2) {
      return DISP_E_BADPARAMCOUNT;
    }
    const Value item = FromVariant(parameters.rgvarg[parameters.cArgs - 1], "item");
    const Value key = parameters.cArgs == 2 ? FromVariant(parameters.rgvarg[0], "key") : Value(std::string());
    items_->emplace_back(std::holds_alternative<std::string>(key) ? std::get<std::string>(key) : std::string(),
                         Argument{item, false});
    return S_OK;
  }

  CollectionRef items_;
};

Variant DispatchVariant(ComPointer<IDispatch> object) {
  Variant variant;
  V_VT(&variant.Get()) = VT_DISPATCH;
  V_DISPATCH(&variant.Get()) = object.Detach();
  return variant;
}

struct IntoVariant {
  Variant operator()(std::monostate) const { return Variant(); }
  Variant operator()(bool value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_BOOL;
    V_BOOL(&variant.Get()) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
  }
  Variant operator()(std::int32_t value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_I4;
    V_I4(&variant.Get()) = value;
    return variant;
  }
  Variant operator()(double value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_R8;
    V_R8(&variant.Get()) = value;
    return variant;
  }
  Variant operator()(const std::string& value) const {
    Variant variant;
    V_VT(&variant.Get()) = VT_BSTR;
    V_BSTR(&variant.Get()) = Bstr(value).Detach();
    return variant;
  }
  Variant operator()(const ObjectRef& value) const {
    return DispatchVariant(value == nullptr ? ComPointer<IDispatch>() : ExposeObject(value));
  }
  Variant operator()(const CollectionRef& value) const {
    return DispatchVariant(MakeCom<ExposedCollection>(value).As<IDispatch>(IID_IDispatch));
  }
};

}  // namespace

ObjectRef SystemAutomation::Create(std::string_view programmaticId) {
  const auto refuse = [&](const char* doing, HRESULT result) {
    return MakeRuntimeError(RuntimeError::CannotCreateObject, std::string(doing) + " \"" + std::string(programmaticId) +
                                                                  "\": " + Hex(static_cast<std::uint32_t>(result)));
  };
  CLSID classId;
  HRESULT result = CLSIDFromProgID(Widen(programmaticId).c_str(), &classId);
  if (FAILED(result)) {
    throw refuse("no class is registered under", result);
  }
  ComPointer<IDispatch> dispatch;
  result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                            reinterpret_cast<void**>(dispatch.Out()));
  if (FAILED(result)) {
    throw refuse("cannot create", result);
  }
  return WrapDispatch(std::move(dispatch), std::string(programmaticId));
}

ObjectRef WrapDispatch(ComPointer<IDispatch> dispatch, std::string name) {
  return std::make_shared<DispatchObject>(std::move(dispatch), std::move(name));
}

ComPointer<IDispatch> ExposeObject(ObjectRef object) {
  if (const auto* outside = dynamic_cast<const DispatchObject*>(object.get())) {
    return outside->Dispatch();
  }
  return MakeCom<ExposedObject>(std::move(object)).As<IDispatch>(IID_IDispatch);
}

Variant ToVariant(const Value& value) { return std::visit(IntoVariant{}, value); }

Value FromVariant(const VARIANT& value, const std::string& name) {
  Variant direct;  // by-reference variants read through
  if (FAILED(VariantCopyInd(direct.Out(), const_cast<VARIANT*>(&value)))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": a value that cannot be read");
  }
  const VARIANT& read = direct.Get();
  switch (V_VT(&read)) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR:
      return Value();
    case VT_BOOL:
      return V_BOOL(&read) != VARIANT_FALSE;
    case VT_R4: {
      // The number that reads the same: widened as it stands, it would show digits that it never had.
      char digits[32];
      const auto end = std::to_chars(digits, digits + sizeof digits, V_R4(&read)).ptr;
      double number = 0;
      std::from_chars(digits, end, number);
      return number;
    }
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
    case VT_DATE: {
      Variant number;
      if (FAILED(VariantChangeType(number.Out(), const_cast<VARIANT*>(&read), 0, VT_R8))) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": a number that cannot be read");
      }
      return V_R8(&number.Get());
    }
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      const auto unknown = ComPointer<IUnknown>::Share(V_UNKNOWN(&read));
      ComPointer<IDispatch> dispatch = unknown.As<IDispatch>(IID_IDispatch);
      if (!unknown) {
        return ObjectRef();
      }
      if (!dispatch) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch, name + ": an object without automation interface");
      }
      return WrapDispatch(std::move(dispatch), name);
    }
    default: {
      Variant converted;
      if (V_VT(&read) != VT_BSTR &&
          SUCCEEDED(VariantChangeType(converted.Out(), const_cast<VARIANT*>(&read), 0, VT_I4))) {
        return static_cast<std::int32_t>(V_I4(&converted.Get()));
      }
      if (FAILED(VariantChangeType(converted.Out(), const_cast<VARIANT*>(&read), 0, VT_BSTR))) {
        throw MakeRuntimeError(RuntimeError::TypeMismatch,
                               name + ": a value of variant type " + std::to_string(V_VT(&read)) + " cannot be read");
      }
      return TextOf(V_BSTR(&converted.Get()));
    }
  }
}

}  // namespace parvex::windows
