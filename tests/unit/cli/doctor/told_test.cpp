#include "cli/doctor/told.h"

#include <gtest/gtest.h>

namespace parvex::cli {
namespace {

const std::vector<MachineLook::PrivateFolder> kOnWindows = {{"C:\\Users\\ann\\AppData\\Local\\Temp", "%TEMP%"},
                                                            {"C:\\Users\\ann", "%USERPROFILE%"}};

TEST(SharedPaths, CallPrivateFoldersByTheirVariables) {
  EXPECT_EQ(SharedPath("C:\\Users\\ann\\AppData\\Local\\Parvex\\Recordings", kOnWindows),
            "%USERPROFILE%\\AppData\\Local\\Parvex\\Recordings");
  EXPECT_EQ(SharedPath("c:\\users\\Ann\\appdata\\local\\temp\\x", kOnWindows), "%TEMP%\\...");
  EXPECT_EQ(SharedPath("C:\\Users\\ann", kOnWindows), "%USERPROFILE%");
  EXPECT_EQ(SharedPath("C:\\Users\\annabel\\Temp", kOnWindows), "C:\\Users\\...\\Temp");
  EXPECT_EQ(SharedPath("/home/ann/x", {{"/home/ann", "~"}}), "~/...");
}

TEST(SharedPaths, LeaveOutNamesThatNotEveryInstallationHas) {
  EXPECT_EQ(SharedPath("C:\\Korvane\\TQ5-VX\\Projects\\Riverside\\project.mdb", {}),
            "C:\\Korvane\\TQ5-VX\\Projects\\...\\project.mdb");
  EXPECT_EQ(SharedPath("\\\\server\\share name\\Bin\\", {}), "\\\\...\\...\\Bin\\");
  EXPECT_EQ(SharedPath("C:\\Program Files (x86)\\Acme\\Router.dll", {}), "C:\\Program Files (x86)\\...\\Router.dll");
  EXPECT_EQ(SharedPath("C:\\Acme.dll\\x", {}), "C:\\...\\...");
  EXPECT_EQ(SharedPath("", {}), "");
}

TEST(Told, KeepsToItselfWhatOthersHaveWritten) {
  const Told told = Told("reads ") + Told::Path("C:\\Acme\\Bin") + Told::Words(", 2") + Told::Foreign(": Ann's", "");
  EXPECT_EQ(told.Full(), "reads C:\\Acme\\Bin, 2: Ann's");
  EXPECT_EQ(told.Shared({}), "reads C:\\...\\Bin, 2");
}

TEST(Told, TellsOthersTheNumberOfAnError) {
  const Told told = ToldOf(MakeRuntimeError(RuntimeError::FileNotFound, "cannot read \"C:\\Acme\""));
  EXPECT_EQ(told.Full(), "cannot read \"C:\\Acme\"");
  EXPECT_EQ(told.Shared({}), "error 53");
  EXPECT_EQ(ToldOf(AutomationError(0x80040200u, "x", "y")).Shared({}), "error 0x80040200");
}

}  // namespace
}  // namespace parvex::cli
