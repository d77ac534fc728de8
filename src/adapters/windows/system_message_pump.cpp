#include "adapters/windows/system_message_pump.h"

#include <windows.h>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {

void SystemMessagePump::RunPending() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // Not ours to swallow: whoever runs the thread's own loop has to see it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void SystemMessagePump::Sleep(std::chrono::milliseconds duration) { ::Sleep(static_cast<DWORD>(duration.count())); }

void SystemMessageBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  const UINT style = MB_OK | MB_TASKMODAL | (icon == Icon::Stop ? MB_ICONSTOP : 0u);
  MessageBoxW(nullptr, Widen(text).c_str(), Widen(caption).c_str(), style);
}

}  // namespace parvex::windows
