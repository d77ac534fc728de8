#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "adapters/windows/wide_text.h"
#include "com/parvex_classes.h"
#include "com_server/registration.h"
#include "com_server/registry_changes.h"
#include "com_server/type_library.h"
#include "parvex_idl.h"
#include "seams/automation_error.h"
#include "tests/com/com_session.h"
#include "tests/com/registry_snapshot.h"

// Registering that fails on the way: the first failure is reported, and what was written is undone.

namespace parvex::test {
namespace {

using com::ComClass;
using testing::HasSubstr;

// Classes that nobody else registers.
constexpr CLSID kFirst = {0x8d0f2f44, 0x6a0e, 0x4a53, {0x9c, 0x11, 0x5d, 0x6f, 0x0e, 0x3b, 0x61, 0x01}};
constexpr CLSID kSecond = {0x8d0f2f44, 0x6a0e, 0x4a53, {0x9c, 0x11, 0x5d, 0x6f, 0x0e, 0x3b, 0x61, 0x02}};

ComClass Class(const CLSID& id, const std::wstring& programmaticId) {
  return {id, programmaticId, L"Part of a test", nullptr};
}

// No registry takes a key's name of more than 255 characters.
std::wstring NameThatIsRefused() { return L"ParvexTest." + std::wstring(300, L'x'); }

std::string FailureOfRegistering(const std::vector<ComClass>& classes, const std::wstring& path, const GUID* library) {
  try {
    com::RegisterModule(classes, path, library);
  } catch (const AutomationError& error) {
    EXPECT_LT(static_cast<std::int32_t>(error.Number()), 0);
    EXPECT_EQ(error.Source(), kErrorSource);
    return error.Description();
  }
  return "no failure";
}

/// A key of the machine's classes, there while this lives: keys that last cannot be made below one that does not.
class KeyThatTakesNoneBelow {
 public:
  explicit KeyThatTakesNoneBelow(const std::wstring& key) : path_(L"Software\\Classes\\" + key) {
    HKEY made = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path_.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &made, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(made);
  }
  ~KeyThatTakesNoneBelow() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, path_.c_str()); }
  KeyThatTakesNoneBelow(const KeyThatTakesNoneBelow&) = delete;
  KeyThatTakesNoneBelow& operator=(const KeyThatTakesNoneBelow&) = delete;

 private:
  const std::wstring path_;
};

class RegistrationFaults : public testing::Test {
 protected:
  void TearDown() override { com::UnregisterModule(good, L"", nullptr); }
  const std::vector<ComClass> good = {Class(kFirst, L"ParvexTest.First"), Class(kSecond, L"ParvexTest.Second")};
  const std::vector<ComClass> bad = {Class(kFirst, L"ParvexTest.First"), Class(kSecond, NameThatIsRefused())};
};

TEST_F(RegistrationFaults, AKeyThatIsRefusedIsNamedAndWhatWasWrittenIsUndone) {
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(bad, L"C:\\first.dll", nullptr), HasSubstr("ParvexTest.xxx"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_F(RegistrationFaults, WhatStoodThereBeforeStandsThereAgain) {
  com::RegisterModule(good, L"C:\\earlier.dll", nullptr);
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(bad, L"C:\\later.dll", nullptr), HasSubstr("ParvexTest.xxx"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_F(RegistrationFaults, AModuleWithoutATypeLibraryIsNamedAndUndone) {
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(good, L"C:\\no such\\module.dll", &LIBID_Parvex), HasSubstr("module.dll"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_F(RegistrationFaults, AKeyThatTakesNoneBelowItIsAFailureAndUndone) {
  const KeyThatTakesNoneBelow second(L"ParvexTest.Second");
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(good, L"C:\\first.dll", nullptr), HasSubstr("ParvexTest.Second"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_F(RegistrationFaults, AHalfRegisteredTypeLibraryIsUndone) {
  const std::wstring path = ComponentFolder() + L"Parvex.dll";
  const Unregistered parvex(L"Parvex.dll");
  const KeyThatTakesNoneBelow one(L"Interface\\" + com::KeyName(__uuidof(IcBinEncoder)));
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(good, path, &LIBID_Parvex), HasSubstr("Interface"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
}

TEST_F(RegistrationFaults, UnregisteringGoesOnBehindAFailureAndReportsIt) {
  com::RegisterModule(good, L"C:\\first.dll", nullptr);
  EXPECT_THROW(com::UnregisterModule(good, L"C:\\no such\\module.dll", &LIBID_Parvex), AutomationError);
  CLSID id;
  EXPECT_HRESULT_FAILED(CLSIDFromProgID(L"ParvexTest.First", &id));
  EXPECT_HRESULT_FAILED(CLSIDFromProgID(L"ParvexTest.Second", &id));
}

// The module of the other bitness, as far as it stands in the registry.
class SideBySide : public RegistrationFaults {
 protected:
  void SetUp() override { com::RegisterModule(good, path, &LIBID_Parvex, surrogate); }
  void TearDown() override { classes.Remove(OtherClass(), com::kOtherView); }

  static bool HasTwoBitnesses() {
    BOOL emulated = FALSE;
    return sizeof(void*) == 8 || (IsWow64Process(GetCurrentProcess(), &emulated) && emulated);
  }

  static std::wstring OtherClass() { return L"CLSID\\" + com::KeyName(kFirst); }

  static constexpr GUID kApplication = {0x8d0f2f44, 0x6a0e, 0x4a53, {0x9c, 0x11, 0x5d, 0x6f, 0x0e, 0x3b, 0x61, 0x03}};
  const std::wstring path = ComponentFolder() + L"Parvex.dll";
  const Unregistered parvex{L"Parvex.dll"};
  const com::ClassesKey classes{HKEY_LOCAL_MACHINE};
  const com::RegistrationKind surrogate = {.surrogate = &kApplication};
  const std::wstring library = L"TypeLib\\" + com::KeyName(LIBID_Parvex);
  const std::wstring application = L"AppID\\" + com::KeyName(kApplication);
  const std::wstring interfaceKey = L"Interface\\" + com::KeyName(__uuidof(IcBinEncoder));
};

TEST_F(SideBySide, WithoutTheOtherBitnessEverythingGoes) {
  EXPECT_TRUE(classes.Exists(L"ParvexTest.First"));
  EXPECT_TRUE(classes.Exists(library));
  EXPECT_TRUE(classes.Exists(application));
  EXPECT_TRUE(classes.Exists(interfaceKey, com::kOtherView)) << "callers of the other bitness";
  com::UnregisterModule(good, path, &LIBID_Parvex, surrogate);
  for (const std::wstring& key : {std::wstring(L"ParvexTest.First"), library, application, interfaceKey}) {
    EXPECT_FALSE(classes.Exists(key)) << windows::Narrow(key);
    EXPECT_FALSE(classes.Exists(key, com::kOtherView)) << windows::Narrow(key);
  }
}

TEST_F(SideBySide, WhatTheOtherBitnessNeedsStays) {
  if (!HasTwoBitnesses()) {
    GTEST_SKIP() << "a 32-bit system has one side only";
  }
  {
    com::RegistryChanges other(classes);
    other.Set(OtherClass() + L"\\InprocServer32", L"", L"C:\\other.dll", com::kOtherView);
    other.Set(OtherClass(), L"AppID", com::KeyName(kApplication), com::kOtherView);
    other.Set(library + L"\\1.0\\0\\" + (sizeof(void*) == 8 ? L"win32" : L"win64"), L"", L"C:\\other.dll");
    other.Keep();
  }
  com::UnregisterModule(good, path, &LIBID_Parvex, surrogate);
  EXPECT_TRUE(classes.Exists(L"ParvexTest.First"));
  EXPECT_TRUE(classes.Exists(L"ParvexTest.First.1"));
  EXPECT_FALSE(classes.Exists(L"ParvexTest.Second")) << "of which the other bitness has no class";
  EXPECT_TRUE(classes.Exists(OtherClass(), com::kOtherView));
  EXPECT_FALSE(classes.Exists(OtherClass())) << "this bitness's own";
  EXPECT_TRUE(classes.Exists(application));
  EXPECT_TRUE(classes.Exists(library + L"\\1.0\\FLAGS"));
  EXPECT_FALSE(classes.Exists(library + L"\\1.0\\0\\" + (sizeof(void*) == 8 ? L"win64" : L"win32")));
  EXPECT_TRUE(classes.Exists(interfaceKey));
  EXPECT_TRUE(classes.Exists(interfaceKey, com::kOtherView));

  // It goes in its turn.
  classes.Remove(OtherClass(), com::kOtherView);
  classes.Remove(library + L"\\1.0\\0");
  com::UnregisterModule(good, path, &LIBID_Parvex, surrogate);
  EXPECT_FALSE(classes.Exists(L"ParvexTest.First"));
  EXPECT_FALSE(classes.Exists(library));
  EXPECT_FALSE(classes.Exists(application));
}

TEST(RegistrationWords, AreReadInAnyCaseAndOrder) {
  constexpr GUID kSome = {1, 2, 3, {}};
  const auto read = [&](const wchar_t* words) { return com::ReadRegistrationKind(words, &kSome); };
  EXPECT_FALSE(read(L"").forUser);
  EXPECT_EQ(read(L" ,").surrogate, nullptr);
  EXPECT_TRUE(read(L"USER").forUser);
  EXPECT_EQ(read(L"user").surrogate, nullptr);
  EXPECT_FALSE(read(L"Surrogate").forUser);
  EXPECT_EQ(read(L" surrogate,user ").surrogate, &kSome);
  EXPECT_TRUE(read(L"surrogate user").forUser);
  EXPECT_THROW(read(L"users"), AutomationError);
  EXPECT_THROW(com::ReadRegistrationKind(L"surrogate", nullptr), AutomationError) << "a server without one";
}

}  // namespace
}  // namespace parvex::test
