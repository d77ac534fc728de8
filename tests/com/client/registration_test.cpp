#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "adapters/windows/apartment.h"
#include "parvex_idl.h"
#include "tests/com/com_session.h"
#include "tests/com/public_classes.h"
#include "tests/com/registry_snapshot.h"
#include "tests/support/active_manifest_windows.h"

// What registering and unregistering do to the registry, and the way without any registration.

namespace parvex::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class Registration : public testing::TestWithParam<const wchar_t*> {
 protected:
  void SetUp() override { module_ = LoadLibraryW((ComponentFolder() + GetParam()).c_str()); }
  void TearDown() override {
    Register();
    FreeLibrary(module_);
  }
  HMODULE Module() const { return module_; }
  void Register() { EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllRegisterServer")); }
  void Unregister() { EXPECT_HRESULT_SUCCEEDED(CallExport(module_, "DllUnregisterServer")); }

 private:
  HMODULE module_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Dlls, Registration,
                         testing::Values(L"Parvex.dll", L"KorvaneSubstitute.dll", L"SubstituteEngine.dll"),
                         [](const auto& info) {
                           const std::string name = windows::Narrow(info.param);
                           return name.substr(0, name.find('.'));
                         });

TEST_P(Registration, UnregisteringLeavesTheRegistryAsItWasBeforeRegistering) {
  Unregister();
  const RegistrySnapshot before = SnapshotOfClasses();
  Register();
  const RegistrySnapshot registered = SnapshotOfClasses();
  EXPECT_THAT(Difference(before, registered), HasSubstr("new: "));
  Unregister();
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_P(Registration, RegisteringTwiceIsRegisteringOnce) {
  const RegistrySnapshot once = SnapshotOfClasses();
  Register();
  EXPECT_EQ(Difference(once, SnapshotOfClasses()), "");
}

TEST_P(Registration, UnregisteringWhatIsNotRegisteredChangesNothing) {
  Unregister();
  const RegistrySnapshot before = SnapshotOfClasses();
  Unregister();
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

/// The keys that the user's components share; whoever registers the first one makes them, and they stay.
void MakeSharedKeysOfTheUser() {
  for (const wchar_t* name : {L"CLSID", L"Interface", L"TypeLib", L"AppID"}) {
    HKEY made = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, (std::wstring(L"Software\\Classes\\") + name).c_str(), &made),
              ERROR_SUCCESS);
    RegCloseKey(made);
  }
}

TEST_P(Registration, OfTheUserAloneTouchesNothingOfTheMachine) {
  Unregister();
  MakeSharedKeysOfTheUser();
  const RegistrySnapshot before = SnapshotOfClasses();
  ASSERT_HRESULT_SUCCEEDED(CallInstall(Module(), true, L"User"));
  const std::string made = Difference(before, SnapshotOfClasses());
  EXPECT_THAT(made, HasSubstr("new: HKCU\\CLSID\\{"));
  EXPECT_THAT(made, Not(HasSubstr(": HKLM")));
  EXPECT_THAT(made, Not(HasSubstr("changed")));
  ASSERT_HRESULT_SUCCEEDED(CallInstall(Module(), false, L"user"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST(RegistrationByWords, OfNoneIsTheMachines) {
  const std::wstring folder = ComponentFolder();
  const Unregistered parvex(L"Parvex.dll");
  const HMODULE module = LoadLibraryW((folder + L"Parvex.dll").c_str());
  for (const wchar_t* words : {static_cast<const wchar_t*>(nullptr), L"", L" , "}) {
    ASSERT_HRESULT_SUCCEEDED(CallInstall(module, true, words));
    EXPECT_TRUE(Create<ILegacyORLAPull>("Parvex.LegacyORLAPull"));
    ASSERT_HRESULT_SUCCEEDED(CallInstall(module, false, words));
    EXPECT_FALSE(Create<ILegacyORLAPull>("Parvex.LegacyORLAPull"));
  }
  FreeLibrary(module);
}

TEST(RegistrationByWords, OfAnUnknownOneIsRefused) {
  const std::wstring folder = ComponentFolder();
  const Unregistered parvex(L"Parvex.dll");
  const HMODULE module = LoadLibraryW((folder + L"Parvex.dll").c_str());
  EXPECT_EQ(CallInstall(module, true, L"user, everyone"), E_INVALIDARG);
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr("\"everyone\""));
  EXPECT_FALSE(Create<ILegacyORLAPull>("Parvex.LegacyORLAPull"));
  FreeLibrary(module);
}

TEST(ProgrammaticIds, OneThatNamesAnotherClassMeanwhileStays) {
  constexpr const wchar_t* kKey = L"Parvex.TagCls\\CLSID";
  constexpr const wchar_t kOther[] = L"{11111111-2222-3333-4444-555555555555}";
  {
    ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, kKey, nullptr, REG_SZ, kOther, sizeof kOther), 0);
    const Unregistered parvex(L"Parvex.dll");
    wchar_t id[64] = {};
    DWORD size = sizeof id;
    EXPECT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, kKey, nullptr, RRF_RT_REG_SZ, nullptr, id, &size), 0);
    EXPECT_STREQ(id, kOther);
    CLSID versioned;
    EXPECT_HRESULT_FAILED(CLSIDFromProgID(L"Parvex.TagCls.1", &versioned)) << "its other one goes";
  }
  EXPECT_TRUE(Create<ITagCls>("Parvex.TagCls")) << "registering takes it back";
}

TEST(Manifest, OffersEveryClassWithoutRegistration) {
  const std::wstring folder = ComponentFolder();
  const Unregistered parvex(L"Parvex.dll");
  for (const PublicClass& c : PublicClasses()) {
    EXPECT_FALSE(Create<IDispatch>(c.ProgrammaticId())) << "nothing is registered";
  }
  const ActiveManifest manifest(folder + L"Parvex.Component.manifest");
  for (const PublicClass& c : PublicClasses()) {
    ComPointer<IUnknown> object;
    EXPECT_HRESULT_SUCCEEDED(
        CoCreateInstance(c.id, nullptr, CLSCTX_INPROC_SERVER, c.interfaceId, reinterpret_cast<void**>(object.Out())))
        << c.name;
    for (const std::string& id : {c.ProgrammaticId(), c.ProgrammaticId() + ".1"}) {
      EXPECT_TRUE(Create<IDispatch>(id)) << id;
    }
  }
  const auto late = Create<IDispatch>("Parvex.LegacyORLAPull");
  const Bstr command(Command("noSuchCommand"));
  EXPECT_EQ(CallByName(late.Get(), "PullNGORLA", DISPATCH_METHOD, {Borrowed(command.Get())}).result, S_OK);
}

TEST(Manifest, CarriesCallsFromApartmentToApartmentToo) {
  const std::wstring folder = ComponentFolder();
  const Unregistered parvex(L"Parvex.dll");
  const ActiveManifest manifest(folder + L"Parvex.Component.manifest");
  const auto encoder = Make<cBinEncoder, IcBinEncoder>();
  IStream* stream = nullptr;
  ASSERT_HRESULT_SUCCEEDED(CoMarshalInterThreadInterfaceInStream(__uuidof(IcBinEncoder), encoder.Get(), &stream));
  std::string text;
  const DWORD caller = GetCurrentThreadId();
  std::thread other([&] {
    const windows::Apartment apartment;
    {
      const ActiveManifest there(folder + L"Parvex.Component.manifest");
      ComPointer<IcBinEncoder> proxy;
      EXPECT_HRESULT_SUCCEEDED(
          CoGetInterfaceAndReleaseStream(stream, __uuidof(IcBinEncoder), reinterpret_cast<void**>(proxy.Out())));
      Bstr base64;
      if (proxy) {
        EXPECT_EQ(proxy->Encode(Bstr("Man").Get(), base64.Out()), S_OK);
      }
      text = base64.Text();
    }
    PostThreadMessageW(caller, WM_QUIT, 0, 0);
  });
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0)) {
    DispatchMessageW(&message);
  }
  other.join();
  EXPECT_EQ(text, "TWFu");
}

}  // namespace
}  // namespace parvex::test
