#pragma once

#include <oaidl.h>
#include <oleauto.h>
#include <windows.h>

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {

/// One counted reference to a COM object.
template <typename T>
class ComPointer {
 public:
  ComPointer() = default;
  ComPointer(const ComPointer& other) : object_(other.object_) { AddRef(); }
  ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPointer& operator=(ComPointer other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPointer() { Release(); }

  /// Takes over a reference that the caller holds.
  static ComPointer Attach(T* object) {
    ComPointer pointer;
    pointer.object_ = object;
    return pointer;
  }
  /// Adds a reference of its own.
  static ComPointer Share(T* object) {
    ComPointer pointer;
    pointer.object_ = object;
    pointer.AddRef();
    return pointer;
  }

  T* Get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// For out parameters; what was held is let go.
  T** Out() {
    Release();
    object_ = nullptr;
    return &object_;
  }
  T* Detach() { return std::exchange(object_, nullptr); }

  /// The object's interface `id`; null when it has none.
  template <typename U>
  ComPointer<U> As(REFIID id) const {
    ComPointer<U> other;
    if (object_ != nullptr) {
      object_->QueryInterface(id, reinterpret_cast<void**>(other.Out()));
    }
    return other;
  }

 private:
  void AddRef() {
    if (object_ != nullptr) {
      object_->AddRef();
    }
  }
  void Release() {
    if (object_ != nullptr) {
      object_->Release();
    }
  }

  T* object_ = nullptr;
};

/// An owned BSTR. Made from a text it is never null; std::bad_alloc when there is no memory for it.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::string_view text) {
    const std::wstring wide = Widen(text);
    text_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (text_ == nullptr) {
      throw std::bad_alloc();
    }
  }
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR Get() const { return text_; }
  BSTR* Out() {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  BSTR Detach() { return std::exchange(text_, nullptr); }
  std::string Text() const { return text_ == nullptr ? std::string() : Narrow({text_, SysStringLen(text_)}); }

 private:
  BSTR text_ = nullptr;
};

/// UTF-8 text of a BSTR that somebody else owns; null is the empty text.
inline std::string TextOf(BSTR text) { return text == nullptr ? std::string() : Narrow({text, SysStringLen(text)}); }

/// Copies a VARIANT over one that holds nothing. (The system's function takes its source as if it might change it.)
inline HRESULT CopyVariant(VARIANT* to, const VARIANT& from) {
  VariantInit(to);
  return VariantCopy(to, const_cast<VARIANT*>(&from));
}

/// An owned VARIANT.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  ~Variant() { VariantClear(&value_); }
  Variant(const Variant& other) { CopyVariant(&value_, other.value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }

  VARIANT& Get() { return value_; }
  const VARIANT& Get() const { return value_; }
  VARIANT* Out() {
    VariantClear(&value_);
    return &value_;
  }

 private:
  VARIANT value_;
};

}  // namespace parvex::windows
