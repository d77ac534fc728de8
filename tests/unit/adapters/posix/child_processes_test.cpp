#include "adapters/posix/child_processes.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using testing::HasSubstr;

class ChildProcessesTest : public testing::Test {
 protected:
  ChildProcessesTest() { std::filesystem::create_directories(folder.Path() / "drive_c"); }

  std::filesystem::path Host(const std::string& name) const { return folder.Path() / "drive_c" / name; }

  void Install(const std::string& name, const std::string& content) {
    test::WriteHostFile(Host(name), content);
    std::filesystem::permissions(Host(name), std::filesystem::perms::owner_all);
  }

  std::uint32_t Wait(Process& process) {
    for (int polls = 0; polls < 10'000; ++polls) {
      if (const std::uint32_t exitCode = process.ExitCode(); exitCode != kStillActive) {
        return exitCode;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return kStillActive;
  }
  std::uint32_t RunScript(const std::string& script) {
    Install("script.exe", "#!/bin/sh\n" + script);
    return Wait(*processes.Start("C:\\script.exe", 1));
  }
  // What the script writes to $OUT.
  std::string OutputOf(const std::string& script) {
    const std::string out = (folder.Path() / "out").string();
    RunScript("exec >'" + out + "'\n" + script);
    return test::ReadHostFile(out);
  }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
  ChildProcesses processes{machine};
};

TEST_F(ChildProcessesTest, ARefusalThatDoesNotLieInTheFileHasTheSystemsNumber) {
  Install("script.exe", "#!/bin/sh\n");
  const std::string line = "C:\\script.exe " + std::string(3'000'000, 'x');  // longer than the system takes
  const std::string said = test::DescriptionOfErrorIn([&] { processes.Start(line, 1); });
  ASSERT_GT(said.size(), line.size());
  EXPECT_THAT(said.substr(line.size()), HasSubstr("xx\": the system refuses to, with error 7"));
}

TEST_F(ChildProcessesTest, ANativeProgramRuns) {
  std::filesystem::copy_file("/bin/false", Host("native.exe"));
  EXPECT_EQ(Wait(*processes.Start("C:\\native.exe", 1)), 1u);
}

TEST_F(ChildProcessesTest, TheChildFindsItsMachineInTheEnvironment) {
  setenv("PARVEX_MACHINE", "another machine", 1);
  setenv("PARVEX_MACHINES", "kept", 1);
  EXPECT_EQ(OutputOf("env | grep ^PARVEX_MACHINE | sort"),
            "PARVEX_MACHINE=" + folder.Path().string() + "\nPARVEX_MACHINES=kept\n");
  unsetenv("PARVEX_MACHINE");
  unsetenv("PARVEX_MACHINES");
}

TEST_F(ChildProcessesTest, TheChildsStandardOutputGoesToStandardError) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  RunScript("echo out; echo err >&2");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  const std::string seen = testing::internal::GetCapturedStderr();
  EXPECT_THAT(seen, HasSubstr("out"));
  EXPECT_THAT(seen, HasSubstr("err"));
}

TEST_F(ChildProcessesTest, TheChildsStandardInputIsEmptyAlsoWhenOursIsNot) {
  test::WriteHostFile(folder.Path() / "in", "for the parent");
  const int before = dup(STDIN_FILENO);
  const int in = open((folder.Path() / "in").c_str(), O_RDONLY);
  dup2(in, STDIN_FILENO);
  EXPECT_EQ(OutputOf("cat"), "");
  dup2(before, STDIN_FILENO);
  close(in);
  close(before);
}

TEST_F(ChildProcessesTest, NoOpenFileOfOursIsHandedOn) {
  const int open = ::open("/dev/null", O_RDONLY);
  const int high = fcntl(open, F_DUPFD, 200);
  ASSERT_GE(high, 200);
  EXPECT_EQ(OutputOf("[ -e /proc/self/fd/" + std::to_string(high) + " ] && echo leaked; [ -e /proc/self/fd/" +
                     std::to_string(open) + " ] && ls -l /proc/self/fd; true"),
            "");
  close(high);
  close(open);
}

TEST_F(ChildProcessesTest, TheWorkingFolderIsInherited) {
  EXPECT_EQ(OutputOf("pwd -P"), std::filesystem::canonical(std::filesystem::current_path()).string() + "\n");
}

TEST_F(ChildProcessesTest, ASignalGivesACodeOfItsOwn) {
  EXPECT_EQ(RunScript("kill -9 $$"), 0xC0000009u);
  EXPECT_EQ(RunScript("kill -15 $$"), 0xC000000Fu);
}

TEST_F(ChildProcessesTest, AFileWithoutTheRightToRunCannotBeStarted) {
  test::WriteHostFile(Host("script.exe"), "#!/bin/sh\n");
  EXPECT_EQ(test::RaisedBy([&] { processes.Start("C:\\script.exe", 1); }), 5);
}

TEST_F(ChildProcessesTest, AFileThatThisSystemCannotRunCannotBeStartedAndSaysWhy) {
  Install("windows.exe", std::string("MZ\x90\0\3\0\0\0", 8));
  Install("empty.exe", "");
  Install("orphan.exe", "#!/no/such/interpreter\n");
  for (const char* line : {"C:\\windows.exe", "C:\\empty.exe", "C:\\orphan.exe"}) {
    EXPECT_EQ(test::RaisedBy([&] { processes.Start(line, 1); }), 5) << line;
    try {
      processes.Start(line, 1);
    } catch (const AutomationError& error) {
      EXPECT_THAT(error.Description(), HasSubstr(line));
    }
  }
}

TEST_F(ChildProcessesTest, ACommandLineEndsAtAZeroByte) {
  Install("script.exe", "#!/bin/sh\nexit $#\n");
  EXPECT_EQ(Wait(*processes.Start(std::string_view("C:\\script.exe a\0 b", 19), 1)), 1u);
}

TEST_F(ChildProcessesTest, ManyArgumentsAndLongOnesAreHandedOver) {
  Install("script.exe", "#!/bin/sh\nexit $(($# == 1001 && ${#1} == 100000))\n");
  std::string line = "C:\\script.exe " + std::string(100'000, 'x');
  for (int i = 0; i < 1000; ++i) {
    line += " argument";
  }
  EXPECT_EQ(Wait(*processes.Start(line, 1)), 1u);
}

TEST_F(ChildProcessesTest, NoZombieIsLeftByAProcessThatIsDropped) {
  Install("script.exe", "#!/bin/sh\n");
  for (int i = 0; i < 20; ++i) {
    processes.Start("C:\\script.exe", 1);
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  Wait(*processes.Start("C:\\script.exe", 1));
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(ChildProcessesTest, ALostExitCodeIsAnErrorAndNoEndlessWait) {
  Install("script.exe", "#!/bin/sh\n");
  signal(SIGCHLD, SIG_IGN);
  const std::unique_ptr<Process> process = processes.Start("C:\\script.exe", 1);
  EXPECT_EQ(test::RaisedBy([&] { Wait(*process); }), 5);
  signal(SIGCHLD, SIG_DFL);
}

}  // namespace
}  // namespace parvex::posix
