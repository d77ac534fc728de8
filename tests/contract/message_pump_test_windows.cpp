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

}  // namespace
}  // namespace parvex::test
