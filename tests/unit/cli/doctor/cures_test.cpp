#include "cli/doctor/cures.h"

#include <gtest/gtest.h>

#include "tests/unit/cli/doctor/windows_look.h"

namespace parvex::cli {
namespace {

TEST(CuresOnWindows, AreCommandsOfTheCommandPrompt) {
  WindowsLook look;
  const Cures cures(look, true, "C:\\Program Files\\Parvex\\parvex.exe");
  EXPECT_EQ(cures.MakeFolder("C:\\K\\Temp", "x").command, "mkdir C:\\K\\Temp");
  EXPECT_EQ(cures.MakeFolder("C:\\K X\\Temp", "x").command, "mkdir \"C:\\K X\\Temp\"");
  EXPECT_EQ(cures.AllowWriting("C:\\K\\Bin").command, "icacls C:\\K\\Bin /grant \"%USERNAME%:(OI)(CI)M\"");
  EXPECT_EQ(cures.RemoveFolder("C:\\K\\x.tmp").command, "rmdir C:\\K\\x.tmp");
  EXPECT_EQ(cures.EndProcess(12).command, "taskkill /F /PID 12");
  EXPECT_EQ(cures.EndProcess(0).command, "");
  EXPECT_EQ(cures.SaveRouterIds("C:\\K\\R.dll").command,
            "\"C:\\Program Files\\Parvex\\parvex.exe\" router-ids C:\\K\\R.dll --save");
  EXPECT_EQ(cures.SaveRouterIds("").command, "");
  EXPECT_EQ(cures.AskTheOther("x").command, "\"C:\\Program Files\\Parvex\\parvex32.exe\" doctor");
  EXPECT_EQ(cures.Reinstall().command, "");
  EXPECT_EQ(cures.ReplaceWorkflow("C:\\K\\Bin\\kdwfm470.exe").command, "");
}

}  // namespace
}  // namespace parvex::cli
