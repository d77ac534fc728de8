#pragma once

#include <windows.h>

#include <string>

namespace parvex::test {

inline std::wstring TextOfWindow(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

/// The message box of this process with that caption; tests of others may show theirs at the same time.
inline HWND OwnBox(const std::wstring& caption) {
  HWND box = nullptr;
  DWORD owner = 0;
  while ((box = FindWindowExW(nullptr, box, L"#32770", caption.c_str())) != nullptr) {
    GetWindowThreadProcessId(box, &owner);
    if (owner == GetCurrentProcessId() && IsWindowVisible(box)) {
      return box;
    }
  }
  return nullptr;
}

/// Waits up to 10 s for the box, reads what it shows (caption, line feed, text), presses its button.
inline std::wstring CloseBox(const std::wstring& caption) {
  for (int attempt = 0; attempt < 1000; ++attempt, Sleep(10)) {
    if (const HWND box = OwnBox(caption); box != nullptr) {
      constexpr int kTextControl = 0xFFFF;
      const std::wstring seen = TextOfWindow(box) + L"\n" + TextOfWindow(GetDlgItem(box, kTextControl));
      PostMessageW(box, WM_COMMAND, IDOK, 0);
      return seen;
    }
  }
  return L"no box was shown";
}

}  // namespace parvex::test
