#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "adapters/windows/wide_text.h"
#include "com/parvex_classes.h"
#include "com_server/registration.h"
#include "com_server/type_library.h"
#include "parvex_idl.h"
#include "seams/automation_error.h"
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

TEST_F(RegistrationFaults, ALinkThatLeadsNowhereIsAFailureAndUndone) {
  HKEY link = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\ParvexTest.Second", 0, nullptr,
                            REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &link, nullptr),
            0);
  constexpr wchar_t kTarget[] = L"\\Registry\\Machine\\Software\\ParvexNowhere\\Nothing";
  RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(kTarget),
                 sizeof kTarget - sizeof(wchar_t));
  const RegistrySnapshot before = SnapshotOfClasses();
  EXPECT_THAT(FailureOfRegistering(good, L"C:\\first.dll", nullptr), HasSubstr("ParvexTest.Second"));
  EXPECT_EQ(Difference(before, SnapshotOfClasses()), "");
  RegCloseKey(link);
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\ParvexTest.Second", REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS,
                &link);
  RegDeleteKeyW(link, L"");
  RegCloseKey(link);
}

TEST_F(RegistrationFaults, UnregisteringGoesOnBehindAFailureAndReportsIt) {
  com::RegisterModule(good, L"C:\\first.dll", nullptr);
  EXPECT_THROW(com::UnregisterModule(good, L"C:\\no such\\module.dll", &LIBID_Parvex), AutomationError);
  CLSID id;
  EXPECT_HRESULT_FAILED(CLSIDFromProgID(L"ParvexTest.First", &id));
  EXPECT_HRESULT_FAILED(CLSIDFromProgID(L"ParvexTest.Second", &id));
}

}  // namespace
}  // namespace parvex::test
