#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "adapters/windows/machine.h"
#include "adapters/windows/wide_text.h"
#include "legacy_env/ini_target.h"
#include "legacy_env/thread_state.h"
#include "tests/com/com_session.h"
#include "tests/support/own_boxes_windows.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

TEST(IniTargetOnThreads, OneThreadsTargetIsNoneOfAnother) {
  windows::Machine machine;
  const Platform platform = machine.AsPlatform();
  SetIniTarget(platform, "Section", "C:\\Korvane\\TQ5-VX\\Temp\\none.ini");
  EXPECT_EQ(ReadIniString(platform, "Key", "fallback"), "fallback");
  std::wstring seen;
  std::thread user([&] { seen = CloseBox(L"IniFile Logic Error"); });
  std::string read = "not read";
  std::thread other([&] { read = ReadIniString(platform, "Key", "fallback"); });
  other.join();
  user.join();
  EXPECT_EQ(read, "");
  EXPECT_THAT(windows::Narrow(seen), HasSubstr("Not Registered"));
  ForgetThisThread();
}

}  // namespace
}  // namespace parvex::test
