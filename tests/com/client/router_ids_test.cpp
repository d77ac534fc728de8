#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parvex_idl.h"
#include "tests/com/com_session.h"

// The identifiers by which the component finds the message router, as the registry holds them at run time.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const wchar_t* kKey = L"SOFTWARE\\Parvex\\Router";
constexpr const wchar_t* kSubstituteInterface = L"{E3B59D45-E9F2-4852-95E0-C034FE2B0A22}";
constexpr const wchar_t* kNobody = L"{11111111-2222-3333-4444-555555555555}";

class RouterIdsAtRunTime : public testing::Test {
 protected:
  RouterIdsAtRunTime() { Clear(); }
  ~RouterIdsAtRunTime() override { Clear(); }

  static void Clear() {
    for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      RegDeleteKeyW(hive, kKey);
    }
  }
  static void Set(HKEY hive, const std::wstring& classId, const std::wstring& interfaceId) {
    for (const auto& [name, text] : {std::pair(L"ClassId", classId), std::pair(L"InterfaceId", interfaceId)}) {
      ASSERT_EQ(RegSetKeyValueW(hive, kKey, name, REG_SZ, text.c_str(),
                                static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
                0);
    }
  }
  /// Creating the command interface: "" when it can be created, else the number of the failure and its text.
  static std::string Failure() {
    ComPointer<IUnknown> pull;
    const HRESULT result = CoCreateInstance(__uuidof(LegacyORLAPull), nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                            reinterpret_cast<void**>(pull.Out()));
    if (SUCCEEDED(result)) {
      return "";
    }
    EXPECT_EQ(result, static_cast<HRESULT>(0x800A01AD));
    return TakeErrorInfo().description;
  }

  const std::wstring substitute_ = windows::Widen(PARVEX_ROUTER_CLSID);
};

TEST_F(RouterIdsAtRunTime, TheMachinesAreTriedInsteadOfTheBuilds) {
  EXPECT_EQ(Failure(), "") << "the build's are the substitute's";
  Set(HKEY_LOCAL_MACHINE, kNobody, kSubstituteInterface);
  EXPECT_THAT(Failure(),
              AllOf(HasSubstr(windows::Narrow(kNobody)), HasSubstr("HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router")));
}

TEST_F(RouterIdsAtRunTime, TheUsersAreTriedInsteadOfTheMachines) {
  Set(HKEY_LOCAL_MACHINE, kNobody, kNobody);
  Set(HKEY_CURRENT_USER, substitute_, kSubstituteInterface);
  EXPECT_EQ(Failure(), "");
  Set(HKEY_LOCAL_MACHINE, substitute_, kSubstituteInterface);
  Set(HKEY_CURRENT_USER, kNobody, kSubstituteInterface);
  EXPECT_THAT(Failure(), HasSubstr("HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router"));
}

TEST_F(RouterIdsAtRunTime, AnInterfaceThatTheRouterLacksIsNamed) {
  Set(HKEY_CURRENT_USER, substitute_, kNobody);
  EXPECT_THAT(Failure(), AllOf(HasSubstr("no interface " + windows::Narrow(kNobody)), HasSubstr("HKEY_CURRENT_USER")));
}

TEST_F(RouterIdsAtRunTime, AValueThatIsNoIdentifierIsNamedWithItsPlace) {
  Set(HKEY_LOCAL_MACHINE, L"KorvaneSubstitute.MessageRouter", kSubstituteInterface);
  EXPECT_THAT(Failure(), AllOf(HasSubstr("ClassId of HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router"),
                               HasSubstr("\"KorvaneSubstitute.MessageRouter\"")));
  Set(HKEY_CURRENT_USER, substitute_, L"");
  EXPECT_THAT(Failure(), HasSubstr("InterfaceId of HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router"));
}

TEST_F(RouterIdsAtRunTime, HalfAPairIsNotCompletedFromElsewhere) {
  Set(HKEY_LOCAL_MACHINE, substitute_, kSubstituteInterface);
  ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"ClassId", REG_SZ, substitute_.c_str(),
                            static_cast<DWORD>((substitute_.size() + 1) * sizeof(wchar_t))),
            0);
  EXPECT_THAT(Failure(), HasSubstr("InterfaceId of HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router is missing"));
}

}  // namespace
}  // namespace parvex::test
