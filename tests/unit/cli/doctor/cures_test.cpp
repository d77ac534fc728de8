#include "cli/doctor/cures.h"

#include <gtest/gtest.h>

namespace parvex::cli {
namespace {

/// A Windows with this program in both bitnesses.
class WindowsLook : public MachineLook {
 public:
  Application WhoAnswers() override { return Application::Installed; }
  std::optional<Server> ServerOf(std::string_view, Programs) override { return std::nullopt; }
  Engine XmlParser() override { return {}; }
  Engine DatabaseEngine() override { return {}; }
  std::string WhyNotStarted(std::string_view) override { return {}; }
  std::string OtherProgram() override { return "C:\\Program Files\\Parvex\\parvex32.exe"; }
  std::string OwnPath(std::string_view path) override { return std::string(path); }
  std::string MachineFolder() override { return {}; }
  bool IsSampleMachine() override { return false; }
  std::string SubstituteWorkflow() override { return {}; }
  std::vector<PrivateFolder> PrivateFolders() override { return {}; }
};

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
