#include "adapters/windows/item_enumerator.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "adapters/windows/com_object.h"
#include "adapters/windows/failures.h"

namespace parvex::windows {
namespace {

using EnumeratedItems = std::shared_ptr<const std::vector<Variant>>;

class ItemEnumerator : public ComObject<IEnumVARIANT> {
 public:
  ItemEnumerator(EnumeratedItems items, std::size_t next) : items_(std::move(items)), next_(next) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* items, ULONG* fetched) override {
    if (fetched != nullptr) {
      *fetched = 0;
    }
    if (items == nullptr && wanted != 0) {
      return E_POINTER;
    }
    if (fetched == nullptr && wanted > 1) {
      return E_INVALIDARG;  // the caller could not know how many it got
    }
    ULONG count = 0;
    HRESULT copied = S_OK;
    for (; SUCCEEDED(copied) && count < wanted && next_ + count < items_->size(); ++count) {
      copied = CopyVariant(&items[count], (*items_)[next_ + count].Get());
    }
    if (FAILED(copied)) {
      for (ULONG i = 0; i < count; ++i) {
        VariantClear(&items[i]);
      }
      return copied;
    }
    next_ += count;
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
    if (copy == nullptr) {
      return E_POINTER;
    }
    *copy = nullptr;
    return Guarded(IID_IEnumVARIANT, [&] { *copy = MakeCom<ItemEnumerator>(items_, next_).Detach(); });
  }

 private:
  const EnumeratedItems items_;
  std::size_t next_;
};

}  // namespace

ComPointer<IUnknown> EnumerateItems(std::vector<Variant> items) {
  return MakeCom<ItemEnumerator>(std::make_shared<const std::vector<Variant>>(std::move(items)), 0u)
      .As<IUnknown>(IID_IUnknown);
}

}  // namespace parvex::windows
