#include <gtest/gtest.h>
#include <windows.h>

#include "seams/message_pump.h"
#include "tests/contract/contract_fixture.h"

// What the pump does with the messages of a thread.

namespace parvex::test {
namespace {

constexpr UINT kAsked = WM_APP + 1;

LRESULT CALLBACK Count(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == kAsked) {
    ++*reinterpret_cast<int*>(second);
    return 0;
  }
  return DefWindowProcW(window, message, first, second);
}

HWND NewWindow() {
  WNDCLASSW description = {};
  description.lpfnWndProc = Count;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = L"ParvexPumpTest";
  RegisterClassW(&description);
  return CreateWindowW(description.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance,
                       nullptr);
}

TEST(MessagePump, ServesWhatIsPending) {
  ContractMachine machine;
  const HWND window = NewWindow();
  ASSERT_NE(window, nullptr);
  int asked = 0;
  for (int i = 0; i < 3; ++i) {
    PostMessageW(window, kAsked, 0, reinterpret_cast<LPARAM>(&asked));
  }
  EXPECT_EQ(asked, 0);
  machine.messagePump.RunPending();
  EXPECT_EQ(asked, 3);
  DestroyWindow(window);
}

TEST(MessagePump, LeavesTheRequestToQuitForTheThreadsOwnLoop) {
  ContractMachine machine;
  PostQuitMessage(42);
  machine.messagePump.RunPending();
  MSG message = {};
  EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
  EXPECT_EQ(message.wParam, 42u);
}

INT_PTR CALLBACK ServeDialog(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

/// Two fields with a tab stop each.
HWND NewDialog() {
  struct alignas(4) Item {
    DLGITEMTEMPLATE item;
    WORD classMark, classAtom, title, extra;
  };
  struct alignas(4) Template {
    DLGTEMPLATE dialog;
    WORD menu, windowClass, title;
    Item first, second;
  };
  constexpr WORD kEdit = 0x0081;
  const auto field = [](short x, WORD id) {
    return Item{{WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, x, 0, 20, 10, id}, 0xFFFF, kEdit, 0, 0};
  };
  static const Template shape = {{WS_POPUP | WS_VISIBLE, 0, 2, 0, 0, 60, 20}, 0, 0, 0, field(0, 1001), field(30, 1002)};
  return CreateDialogIndirectParamW(GetModuleHandleW(nullptr), &shape.dialog, nullptr, ServeDialog, 0);
}

TEST(MessagePump, ADialogOfTheHostGetsItsKeys) {
  ContractMachine machine;
  const HWND dialog = NewDialog();
  ASSERT_NE(dialog, nullptr);
  const HWND first = GetDlgItem(dialog, 1001);
  ASSERT_NE(first, nullptr);
  SetFocus(first);
  ASSERT_EQ(GetFocus(), first);
  PostMessageW(first, WM_KEYDOWN, VK_TAB, 1);
  machine.messagePump.RunPending();
  EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1002)) << "the tabulator goes to the next field";
  DestroyWindow(dialog);
}

int takenByHook = 0;

LRESULT CALLBACK TakeKeys(int code, WPARAM first, LPARAM second) {
  const auto* message = reinterpret_cast<const MSG*>(second);
  if (code >= 0 && message->message == WM_KEYDOWN && message->wParam == VK_F5) {
    ++takenByHook;
    return 1;
  }
  return CallNextHookEx(nullptr, code, first, second);
}

// A host translates its accelerators in such a hook, where it does not run the loop itself.
TEST(MessagePump, AMessageHookOfTheHostSeesMessagesFirst) {
  ContractMachine machine;
  const HWND window = NewWindow();
  const HHOOK hook = SetWindowsHookExW(WH_MSGFILTER, TakeKeys, nullptr, GetCurrentThreadId());
  ASSERT_NE(hook, nullptr);
  takenByHook = 0;
  int asked = 0;
  PostMessageW(window, WM_KEYDOWN, VK_F5, 1);
  PostMessageW(window, kAsked, 0, reinterpret_cast<LPARAM>(&asked));
  machine.messagePump.RunPending();
  EXPECT_EQ(takenByHook, 1);
  EXPECT_EQ(asked, 1) << "what the hook leaves goes its way";
  UnhookWindowsHookEx(hook);
  DestroyWindow(window);
}

}  // namespace
}  // namespace parvex::test
