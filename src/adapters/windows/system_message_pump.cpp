#include "adapters/windows/system_message_pump.h"

#include <windows.h>

namespace parvex::windows {
namespace {

bool IsDialog(HWND window) { return GetClassLongW(window, GCW_ATOM) == 32770u; }

// Whether the message was a key for a dialog that the host shows, which its own loop would have asked.
bool TakenByADialog(MSG& message) {
  const HWND top = message.hwnd == nullptr ? nullptr : GetAncestor(message.hwnd, GA_ROOT);
  return top != nullptr && IsDialog(top) && IsDialogMessageW(top, &message);
}

}  // namespace

void SystemMessagePump::RunPending() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // Not ours to swallow: whoever runs the thread's own loop has to see it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    if (!CallMsgFilterW(&message, MSGF_USER) && !TakenByADialog(message)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

void SystemMessagePump::Sleep(std::chrono::milliseconds duration) { ::Sleep(static_cast<DWORD>(duration.count())); }

}  // namespace parvex::windows
