#include "adapters/windows/system_message_boxes.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "adapters/windows/wide_text.h"
#include "formats/text/text.h"

namespace parvex::windows {
namespace {

constexpr const wchar_t* kVariable = L"PARVEX_HEADLESS";
constexpr const wchar_t* kKey = L"SOFTWARE\\Parvex";
constexpr const wchar_t* kValue = L"Headless";

bool HasVisibleWindowStation() {
  USEROBJECTFLAGS flags = {};
  DWORD needed = 0;
  const HWINSTA station = GetProcessWindowStation();
  if (station == nullptr || !GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &needed)) {
    return false;
  }
  return (flags.dwFlags & WSF_VISIBLE) != 0;
}

std::optional<bool> AskedByEnvironment() {
  wchar_t value[8];
  const DWORD length = GetEnvironmentVariableW(kVariable, value, std::size(value));
  if (length == 0) {
    return std::nullopt;
  }
  return std::wstring_view(value, length < std::size(value) ? length : 0) == L"1";
}

std::optional<bool> AskedByRegistry(HKEY root) {
  DWORD type = 0;
  wchar_t value[8] = {};
  DWORD size = sizeof value;
  const LONG read = RegGetValueW(root, kKey, kValue, RRF_RT_REG_DWORD | RRF_RT_REG_SZ, &type, value, &size);
  if (read == ERROR_MORE_DATA) {
    return false;
  }
  if (read != ERROR_SUCCESS) {
    return std::nullopt;
  }
  if (type == REG_SZ) {
    return std::wstring_view(value) == L"1";
  }
  DWORD number = 0;
  std::memcpy(&number, value, sizeof number);
  return number == 1;
}

// A box that nobody owns may come up behind the host's windows, which wait for it.
HWND OwnerOfBoxes() {
  const HWND active = GetActiveWindow();
  return active != nullptr && IsWindowVisible(active) ? GetLastActivePopup(active) : nullptr;
}

// A box ends its text at a NUL, and grows beyond every screen with a text that is too long for one.
std::wstring BoxText(std::string_view text) {
  constexpr std::size_t kMostUnits = 10'000;
  const std::string_view first = FirstUnits(text, kMostUnits);
  std::wstring shown = Widen(first);
  std::ranges::replace(shown, L'\0', L'\xFFFD');
  return first.size() < text.size() ? shown + L"..." : shown;
}

}  // namespace

bool IsHeadless() {
  if (!HasVisibleWindowStation()) {
    return true;
  }
  if (const std::optional<bool> asked = AskedByEnvironment()) {
    return *asked;
  }
  if (const std::optional<bool> asked = AskedByRegistry(HKEY_CURRENT_USER)) {
    return *asked;
  }
  return AskedByRegistry(HKEY_LOCAL_MACHINE).value_or(false);
}

void SystemMessageBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  if (IsHeadless()) {
    OutputDebugStringW(Widen(std::string(caption) + ": " + std::string(text) + "\n").c_str());
    return;
  }
  const UINT style = MB_OK | MB_TASKMODAL | MB_SETFOREGROUND | (icon == Icon::Stop ? MB_ICONSTOP : 0u);
  MessageBoxW(OwnerOfBoxes(), BoxText(text).c_str(), BoxText(caption).c_str(), style);
}

}  // namespace parvex::windows
