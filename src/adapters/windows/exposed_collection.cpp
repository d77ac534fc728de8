#include "adapters/windows/exposed_collection.h"

#include <ocidl.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "adapters/windows/com_object.h"
#include "adapters/windows/failures.h"
#include "adapters/windows/item_enumerator.h"
#include "adapters/windows/kept_variant.h"
#include "adapters/windows/this_module.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/text.h"
#include "keyed_collection.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::Value;

constexpr auto kKeyTaken = 0x800A0000u + 457u;

// Not kept: the system keeps a library while somebody uses it, and modules come and go.
ComPointer<ITypeInfo> TypeInformation(REFGUID id) {
  ComPointer<ITypeLib> library;
  ComPointer<ITypeInfo> info;
  HRESULT result = LoadTypeLibEx((ThisModulePath() + L"\\2").c_str(), REGKIND_NONE, library.Out());
  if (SUCCEEDED(result)) {
    result = library->GetTypeInfoOfGuid(id, info.Out());
  }
  if (FAILED(result)) {
    throw AutomationError(static_cast<std::uint32_t>(result), kErrorSource,
                          "this module has no type library of collections");
  }
  return info;
}

AutomationError NoSuchItem(const std::string& which) {
  return MakeRuntimeError(RuntimeError::SubscriptOutOfRange, "the collection has no item " + which);
}

// What a caller gave for a parameter, references read through. Null pointers and missing arguments give a variant of
// type VT_ERROR.
Variant Given(const VARIANT* value) {
  Variant read;
  V_VT(&read.Get()) = VT_ERROR;
  V_ERROR(&read.Get()) = DISP_E_PARAMNOTFOUND;
  if (value != nullptr && FAILED(VariantCopyInd(read.Out(), const_cast<VARIANT*>(value)))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "an argument for a collection that cannot be read");
  }
  return read;
}

bool IsMissing(const Variant& given) {
  return V_VT(&given.Get()) == VT_ERROR && V_ERROR(&given.Get()) == DISP_E_PARAMNOTFOUND;
}

void NeedAnswer(const void* answer) {
  if (answer == nullptr) {
    throw AutomationError(static_cast<std::uint32_t>(E_POINTER), kErrorSource, "no place for a collection's answer");
  }
}

// The items of a collection as its callers name them.
class Items {
 public:
  explicit Items(CollectionRef items) : items_(std::move(items)) {}

  std::size_t Count() const { return items_->size(); }

  const Value& At(const VARIANT* index) const { return (*items_)[PlaceOf(Given(index))].second.value; }

  void Add(const VARIANT* item, const VARIANT* key, const VARIANT* before, const VARIANT* after) {
    if (item == nullptr) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "no item was given");
    }
    Value value = KeepVariant(*item, "item");
    std::string name = NewKey(Given(key));
    const std::size_t place = NewPlace(Given(before), Given(after));
    items_->emplace(items_->begin() + static_cast<std::ptrdiff_t>(place), std::move(name),
                    Argument{std::move(value), false});
  }

  void Remove(const VARIANT* index) {
    const auto found = items_->begin() + static_cast<std::ptrdiff_t>(PlaceOf(Given(index)));
    // It lives until it is out of the list: an object may call the collection when it is let go.
    const Value removed = std::move(found->second.value);
    items_->erase(found);
  }

  std::vector<Variant> Copied() const {
    std::vector<Variant> copy;
    copy.reserve(items_->size());
    for (const auto& item : *items_) {
      copy.push_back(ToVariant(item.second.value));
    }
    return copy;
  }

 private:
  // Letter case is ignored. An item without a key has the empty one, which finds none.
  std::size_t FindKey(const std::string& key) const {
    std::size_t place = 0;
    while (place < items_->size() && (key.empty() || !EqualIgnoringCase((*items_)[place].first, key))) {
      ++place;
    }
    return place;
  }

  // By a text, the key, or by a number of any type, from 1.
  std::size_t PlaceOf(const Variant& index) const {
    switch (V_VT(&index.Get())) {
      case VT_BSTR: {
        const std::string key = TextOf(V_BSTR(&index.Get()));
        const std::size_t place = FindKey(key);
        if (place == items_->size()) {
          throw MakeRuntimeError(RuntimeError::InvalidCall, "the collection has no key " + Quoted(key));
        }
        return place;
      }
      case VT_EMPTY:
      case VT_NULL:
      case VT_ERROR:
      case VT_DISPATCH:
      case VT_UNKNOWN:
        throw MakeRuntimeError(RuntimeError::TypeMismatch, "a collection's item is named by its key or number");
      default:
        return PlaceOfNumber(index);
    }
  }

  std::size_t PlaceOfNumber(const Variant& index) const {
    Variant number;
    const HRESULT result = VariantChangeType(number.Out(), const_cast<VARIANT*>(&index.Get()), 0, VT_I4);
    if (result == DISP_E_OVERFLOW) {
      throw NoSuchItem("of that number");
    }
    if (FAILED(result)) {
      throw MakeRuntimeError(RuntimeError::TypeMismatch, "a collection's item is named by its key or number");
    }
    const LONG place = V_I4(&number.Get());
    if (place < 1 || static_cast<std::size_t>(place) > items_->size()) {
      throw NoSuchItem(std::to_string(place));
    }
    return static_cast<std::size_t>(place) - 1;
  }

  std::string NewKey(const Variant& key) const {
    if (IsMissing(key)) {
      return {};
    }
    if (V_VT(&key.Get()) != VT_BSTR) {
      throw MakeRuntimeError(RuntimeError::TypeMismatch, "a collection's key is a text");
    }
    std::string name = TextOf(V_BSTR(&key.Get()));
    if (FindKey(name) != items_->size()) {
      throw AutomationError(kKeyTaken, kErrorSource, "the collection has the key " + Quoted(name) + " already");
    }
    return name;
  }

  std::size_t NewPlace(const Variant& before, const Variant& after) const {
    if (!IsMissing(before) && !IsMissing(after)) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "an item is added before or after another, not both");
    }
    if (!IsMissing(before)) {
      return PlaceOf(before);
    }
    return IsMissing(after) ? items_->size() : PlaceOf(after) + 1;
  }

  const CollectionRef items_;
};

class ExposedCollection : public ComObject<_Collection, ISupportErrorInfo, IProvideClassInfo> {
 public:
  explicit ExposedCollection(CollectionRef items) : items_(std::move(items)) {}

  HRESULT STDMETHODCALLTYPE Item(VARIANT* index, VARIANT* item) override {
    return Guard([&] {
      NeedAnswer(item);
      VariantInit(item);
      std::swap(*item, ToVariant(items_.At(index)).Get());
    });
  }
  HRESULT STDMETHODCALLTYPE Add(VARIANT* item, VARIANT* key, VARIANT* before, VARIANT* after) override {
    return Guard([&] { items_.Add(item, key, before, after); });
  }
  HRESULT STDMETHODCALLTYPE Count(LONG* count) override {
    return Guard([&] {
      NeedAnswer(count);
      *count = static_cast<LONG>(items_.Count());
    });
  }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT* index) override {
    return Guard([&] { items_.Remove(index); });
  }
  HRESULT STDMETHODCALLTYPE _NewEnum(IUnknown** enumerator) override {
    return Guard([&] {
      NeedAnswer(enumerator);
      *enumerator = nullptr;
      *enumerator = EnumerateItems(items_.Copied()).Detach();
    });
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
    return Guard([&] { *info = TypeInformation(__uuidof(_Collection)).Detach(); });
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (id != IID_NULL) {
      return DISP_E_UNKNOWNINTERFACE;
    }
    return Guard([&] { return OwnTypeInfo()->GetIDsOfNames(names, count, ids); });
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT* refusedArgument) override {
    if (id != IID_NULL) {
      return DISP_E_UNKNOWNINTERFACE;
    }
    // Its members are methods; callers by name read Count, Item and the enumerator like properties.
    if ((kind & DISPATCH_PROPERTYGET) != 0) {
      kind = DISPATCH_METHOD;
    }
    try {
      return OwnTypeInfo()->Invoke(static_cast<_Collection*>(this), member, kind, parameters, result, exception,
                                   refusedArgument);
    } catch (...) {
      return FillException(CurrentFailure(), exception);
    }
  }

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == __uuidof(_Collection) ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) {
      return E_POINTER;
    }
    *info = nullptr;
    return Guard([&] { *info = TypeInformation(__uuidof(Collection)).Detach(); });
  }

 private:
  template <typename Body>
  static HRESULT Guard(Body body) noexcept {
    return Guarded(__uuidof(_Collection), body);
  }

  const ComPointer<ITypeInfo>& OwnTypeInfo() {
    if (!typeInfo_) {
      typeInfo_ = TypeInformation(__uuidof(_Collection));
    }
    return typeInfo_;
  }

  Items items_;
  ComPointer<ITypeInfo> typeInfo_;
};

}  // namespace

ComPointer<IDispatch> ExposeCollection(CollectionRef items) {
  return MakeCom<ExposedCollection>(std::move(items)).As<IDispatch>(IID_IDispatch);
}

}  // namespace parvex::windows
