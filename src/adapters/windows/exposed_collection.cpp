#include "adapters/windows/exposed_collection.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "adapters/windows/outgoing_dispatch.h"
#include "adapters/windows/variant_values.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/text.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::CollectionRef;
using automation::KeyedItems;
using automation::Value;

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

}  // namespace

ComPointer<IDispatch> ExposeCollection(CollectionRef items) {
  return MakeCom<ExposedCollection>(std::move(items)).As<IDispatch>(IID_IDispatch);
}

}  // namespace parvex::windows
