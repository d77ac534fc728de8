#pragma once

#include <gtest/gtest.h>
#include <oaidl.h>
#include <windows.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/windows/com_object.h"
#include "adapters/windows/com_pointer.h"

namespace parvex::test {

/// A class that this process offers itself for as long as this lives, in the place of one that is registered under the
/// same identifier. It may be made anew in every test.
class OfferedClass {
 public:
  using Make = std::function<windows::ComPointer<IDispatch>()>;

  /// A class that is registered under that programmatic identifier; where none is, one is for as long as this lives.
  OfferedClass(std::string_view programmaticId, Make make) {
    const std::wstring wide = windows::Widen(programmaticId);
    CLSID id;
    if (FAILED(CLSIDFromProgID(wide.c_str(), &id))) {
      EXPECT_HRESULT_SUCCEEDED(CoCreateGuid(&id));
      ownKey_ = L"Software\\Classes\\" + wide;
      wchar_t text[40];
      StringFromGUID2(id, text, 40);
      EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, (ownKey_ + L"\\CLSID").c_str(), nullptr, REG_SZ, text,
                                static_cast<DWORD>((std::wstring_view(text).size() + 1) * sizeof(wchar_t))),
                0);
    }
    Offer(id, std::move(make));
  }
  OfferedClass(const CLSID& id, Make make) { Offer(id, std::move(make)); }
  ~OfferedClass() {
    CoRevokeClassObject(cookie_);
    if (!ownKey_.empty()) {
      RegDeleteTreeW(HKEY_LOCAL_MACHINE, ownKey_.c_str());
    }
  }
  OfferedClass(const OfferedClass&) = delete;
  OfferedClass& operator=(const OfferedClass&) = delete;

 private:
  class Factory : public windows::ComObject<IClassFactory> {
   public:
    explicit Factory(Make make) : make_(std::move(make)) {}
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
      return make_()->QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

   private:
    const Make make_;
  };

  void Offer(const CLSID& id, Make make) {
    const auto factory = windows::MakeCom<Factory>(std::move(make));
    EXPECT_HRESULT_SUCCEEDED(
        CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
  }

  DWORD cookie_ = 0;
  std::wstring ownKey_;
};

}  // namespace parvex::test
