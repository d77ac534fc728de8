#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>

#include "adapters/windows/system_message_boxes.h"
#include "adapters/windows/wide_text.h"
#include "tests/support/own_boxes_windows.h"

// Whose box it is, and when none is shown.

namespace parvex::test {
namespace {

/// While it lives, the environment asks for that.
class HeadlessVariable {
 public:
  explicit HeadlessVariable(const wchar_t* value) { SetEnvironmentVariableW(L"PARVEX_HEADLESS", value); }
  ~HeadlessVariable() { SetEnvironmentVariableW(L"PARVEX_HEADLESS", nullptr); }
  HeadlessVariable(const HeadlessVariable&) = delete;
  HeadlessVariable& operator=(const HeadlessVariable&) = delete;
};

/// While it lives, this process sees other users' and machine's keys than other tests do.
class OwnRoots {
 public:
  OwnRoots() {
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, name_.c_str(), &scratch_), ERROR_SUCCESS);
    Override(HKEY_CURRENT_USER, L"user");
    Override(HKEY_LOCAL_MACHINE, L"machine");
  }
  ~OwnRoots() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(scratch_);
    RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
  }
  OwnRoots(const OwnRoots&) = delete;
  OwnRoots& operator=(const OwnRoots&) = delete;

 private:
  void Override(HKEY root, const wchar_t* name) {
    HKEY replacement = nullptr;
    ASSERT_EQ(RegCreateKeyW(scratch_, name, &replacement), ERROR_SUCCESS);
    ASSERT_EQ(RegOverridePredefKey(root, replacement), ERROR_SUCCESS);
    RegCloseKey(replacement);
  }

  const std::wstring name_ = L"ParvexHeadlessTest-" + std::to_wstring(GetCurrentProcessId());
  HKEY scratch_ = nullptr;
};

/// While it lives, the registry asks for that.
class HeadlessValue {
 public:
  HeadlessValue(HKEY root, DWORD number) : root_(root) { Set(REG_DWORD, &number, sizeof number); }
  HeadlessValue(HKEY root, const std::wstring& text) : root_(root) {
    Set(REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
  ~HeadlessValue() { RegDeleteKeyValueW(root_, L"SOFTWARE\\Parvex", L"Headless"); }
  HeadlessValue(const HeadlessValue&) = delete;
  HeadlessValue& operator=(const HeadlessValue&) = delete;

 private:
  void Set(DWORD type, const void* value, DWORD size) {
    EXPECT_EQ(RegSetKeyValueW(root_, L"SOFTWARE\\Parvex", L"Headless", type, value, size), ERROR_SUCCESS);
  }
  HKEY root_;
};

TEST(Headless, AsItStandsABoxIsShown) { EXPECT_FALSE(windows::IsHeadless()); }

TEST(Headless, TheEnvironmentAsksBeforeTheUserAndTheUserBeforeTheMachine) {
  const OwnRoots roots;
  EXPECT_FALSE(windows::IsHeadless());
  const HeadlessValue machine(HKEY_LOCAL_MACHINE, 1);
  EXPECT_TRUE(windows::IsHeadless());
  {
    const HeadlessValue user(HKEY_CURRENT_USER, 0);
    EXPECT_FALSE(windows::IsHeadless());
    const HeadlessVariable variable(L"1");
    EXPECT_TRUE(windows::IsHeadless());
  }
  EXPECT_TRUE(windows::IsHeadless());
  const HeadlessVariable variable(L"0");
  EXPECT_FALSE(windows::IsHeadless());
}

TEST(Headless, TheValueIsANumberOrATextAndOnlyOneAsks) {
  const OwnRoots roots;
  {
    const HeadlessValue value(HKEY_CURRENT_USER, std::wstring(L"1"));
    EXPECT_TRUE(windows::IsHeadless());
  }
  for (const wchar_t* text : {L"0", L"", L"11", L"yes", L"a text that is longer than any answer"}) {
    const HeadlessValue value(HKEY_CURRENT_USER, std::wstring(text));
    EXPECT_FALSE(windows::IsHeadless()) << windows::Narrow(text);
  }
  for (const DWORD number : {2u, 0x10001u}) {
    const HeadlessValue value(HKEY_CURRENT_USER, number);
    EXPECT_FALSE(windows::IsHeadless()) << number;
  }
  for (const wchar_t* text : {L"true", L"100000000000"}) {
    const HeadlessVariable variable(text);
    EXPECT_FALSE(windows::IsHeadless()) << windows::Narrow(text);
  }
}

TEST(Headless, ABoxThatIsNotShownLetsTheCallGoOn) {
  const HeadlessVariable variable(L"1");
  windows::SystemMessageBoxes().Show("nobody is there to read this", "Parvex headless", MessageBoxes::Icon::Stop);
  EXPECT_EQ(OwnBox(L"Parvex headless"), nullptr);
}

TEST(Headless, AProcessWithoutAVisibleWindowStationShowsNone) {
  const HWINSTA usual = GetProcessWindowStation();
  const HWINSTA hidden = CreateWindowStationW(L"ParvexHidden", 0, WINSTA_ALL_ACCESS, nullptr);
  ASSERT_NE(hidden, nullptr);
  ASSERT_TRUE(SetProcessWindowStation(hidden));
  EXPECT_TRUE(windows::IsHeadless());
  const HeadlessVariable variable(L"0");
  EXPECT_TRUE(windows::IsHeadless()) << "a box there would wait for ever, whatever is asked";
  ASSERT_TRUE(SetProcessWindowStation(usual));
  CloseWindowStation(hidden);
}

TEST(BoxesOfTheHost, ShowAllOfATextButNulsAndWhatNobodyCouldRead) {
  std::wstring seen;
  std::thread user([&] { seen = CloseBox(L"Parvex long"); });
  windows::SystemMessageBoxes().Show(std::string("a\0b\x1B\r\n", 6) + std::string(1'000'000, 'x'), "Parvex long",
                                     MessageBoxes::Icon::None);
  user.join();
  EXPECT_EQ(seen.substr(0, 18),
            L"Parvex long\na\xFFFD"
            L"b\x1B\r\n");
  EXPECT_TRUE(seen.ends_with(L"x..."));
  EXPECT_EQ(seen.size(), 12 + 10'000 + 3u);
}

TEST(BoxesOfTheHost, BelongToItsActiveWindow) {
  const HWND host = CreateWindowW(L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
  ASSERT_NE(host, nullptr);
  SetActiveWindow(host);
  ASSERT_EQ(GetActiveWindow(), host);
  HWND owner = nullptr;
  bool isHostEnabled = true;
  std::thread user([&] {
    for (int attempt = 0; attempt < 1000 && OwnBox(L"Parvex owned") == nullptr; ++attempt) {
      Sleep(10);
    }
    owner = GetWindow(OwnBox(L"Parvex owned"), GW_OWNER);
    isHostEnabled = IsWindowEnabled(host) != FALSE;
    CloseBox(L"Parvex owned");
  });
  windows::SystemMessageBoxes().Show("text", "Parvex owned", MessageBoxes::Icon::None);
  user.join();
  EXPECT_EQ(owner, host);
  EXPECT_FALSE(isHostEnabled) << "the host's window waits for the box";
  DestroyWindow(host);
}

}  // namespace
}  // namespace parvex::test
