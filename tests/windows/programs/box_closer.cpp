#include <windows.h>

// Presses the button of every message box on the desktop, until it is ended: a host without a user would wait for ever.
int main() {
  for (;;) {
    for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr;) {
      if (IsWindowVisible(box)) {
        PostMessageW(box, WM_COMMAND, IDOK, 0);
      }
    }
    Sleep(50);
  }
}
