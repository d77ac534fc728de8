#include "legacy_env/install_paths.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "legacy_env/thread_state.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/legacy_env/fake_registry.h"

namespace parvex {
namespace {

class InstallPaths : public testing::Test {
 protected:
  void SetBinPath(std::optional<std::string> value) {
    registry_.value = std::move(value);
    ForgetThisThread();
  }

  std::uint16_t NumberOfErrorFrom(std::string (*operation)(const Platform&)) {
    try {
      operation(platform_);
    } catch (const AutomationError& error) {
      EXPECT_NE(error.Description().find(registry_.value.value_or("")), std::string::npos) << error.Description();
      return error.RuntimeNumber();
    }
    return 0;
  }

  test::FakeRegistry registry_;
  test::FakeMachine machine_;
  const Platform platform_ = [this] {
    Platform platform = machine_.platform;
    platform.registry = &registry_;
    return platform;
  }();
};

using Asked = std::vector<std::pair<std::string, std::string>>;
constexpr const char* kKey = "SOFTWARE\\Korvane\\KDQ47\\";

TEST_F(InstallPaths, AreReadFromTheMachinesRegistry) {
  EXPECT_EQ(GetBinPath(machine_.platform), "C:\\Korvane\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetDataRoot(machine_.platform), "C:\\Korvane\\TQ5-VX");
  EXPECT_EQ(GetDesignRoot(machine_.platform), "C:\\Korvane");
  EXPECT_EQ(GetDesignTempFolder(machine_.platform), "C:\\Korvane\\TQ5-VX\\Temp\\");
}

TEST_F(InstallPaths, OfABinPathWithoutFinalBackslash) {
  SetBinPath("C:\\K\\TQ5-VX\\Bin");
  EXPECT_EQ(GetBinPath(platform_), "C:\\K\\TQ5-VX\\Bin");
  EXPECT_EQ(GetDataRoot(platform_), "C:\\K");
  EXPECT_EQ(GetDesignRoot(platform_), "C:\\K");
  EXPECT_EQ(GetDesignTempFolder(platform_), "C:\\K\\TQ5-VX\\Temp\\");
}

TEST_F(InstallPaths, BinPathIsReadOnceAThread) {
  SetBinPath("C:\\A\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetBinPath(platform_), "C:\\A\\TQ5-VX\\Bin\\");
  registry_.value = "C:\\B\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetBinPath(platform_), "C:\\A\\TQ5-VX\\Bin\\");
  EXPECT_EQ((Asked{{kKey, "binPath"}}), registry_.asked);
}

TEST_F(InstallPaths, BinPathStaysErrorOnceItCouldNotBeRead) {
  SetBinPath(std::nullopt);
  EXPECT_EQ(GetBinPath(platform_), "error");
  registry_.value = "C:\\A\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetBinPath(platform_), "error");
  EXPECT_EQ(registry_.asked.size(), 1u);
}

TEST_F(InstallPaths, BinPathThatIsEmptyIsReadAgain) {
  SetBinPath("");
  EXPECT_EQ(GetBinPath(platform_), "");
  registry_.value = "C:\\A\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetBinPath(platform_), "C:\\A\\TQ5-VX\\Bin\\");
}

TEST_F(InstallPaths, DataRootIsEmptyAfterAFailedReadAndReadAgain) {
  SetBinPath(std::nullopt);
  EXPECT_EQ(GetDataRoot(platform_), "");
  registry_.value = "C:\\A\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetDataRoot(platform_), "C:\\A\\TQ5-VX");
  registry_.value = "C:\\B\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetDataRoot(platform_), "C:\\A\\TQ5-VX");
  EXPECT_EQ((Asked{{kKey, "binPath"}, {kKey, "binPath"}}), registry_.asked);
}

TEST_F(InstallPaths, DataRootDoesNotUseTheKeptBinPath) {
  SetBinPath(std::nullopt);
  EXPECT_EQ(GetBinPath(platform_), "error");
  registry_.value = "C:\\A\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetDataRoot(platform_), "C:\\A\\TQ5-VX");
}

TEST_F(InstallPaths, DataRootOfABinPathWithFewerThanTwoBackslashesIsAnError) {
  for (const char* binPath : {"", "Bin", "Bin\\", "C:\\Bin", "error\\"}) {
    SetBinPath(binPath);
    EXPECT_EQ(NumberOfErrorFrom(GetDataRoot), 5) << binPath;
  }
}

TEST_F(InstallPaths, DataRootCutsOneComponentForEachBackslash) {
  SetBinPath("\\\\");
  EXPECT_EQ(GetDataRoot(platform_), "");
  SetBinPath("C:\\Bin\\");
  EXPECT_EQ(GetDataRoot(platform_), "C:");
}

TEST_F(InstallPaths, ThreadsKeepPathsOfTheirOwn) {
  SetBinPath("C:\\A\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetBinPath(platform_), "C:\\A\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetDataRoot(platform_), "C:\\A\\TQ5-VX");
  registry_.value = "C:\\B\\TQ5-VX\\Bin\\";
  std::string binPathThere;
  std::string dataRootThere;
  std::thread([&] {
    binPathThere = GetBinPath(platform_);
    dataRootThere = GetDataRoot(platform_);
  }).join();
  EXPECT_EQ(binPathThere, "C:\\B\\TQ5-VX\\Bin\\");
  EXPECT_EQ(dataRootThere, "C:\\B\\TQ5-VX");
  EXPECT_EQ(GetBinPath(platform_), "C:\\A\\TQ5-VX\\Bin\\");
}

TEST_F(InstallPaths, AFailedReadIsKeptByItsOwnThreadOnly) {
  SetBinPath(std::nullopt);
  EXPECT_EQ(GetBinPath(platform_), "error");
  registry_.value = "C:\\B\\TQ5-VX\\Bin\\";
  std::string there;
  std::thread([&] { there = GetBinPath(platform_); }).join();
  EXPECT_EQ(there, "C:\\B\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetBinPath(platform_), "error");
}

TEST_F(InstallPaths, ReadBinPathReadsAfreshEachTime) {
  std::string binPath = "left over";
  SetBinPath("C:\\A\\");
  EXPECT_TRUE(ReadBinPath(platform_, binPath));
  EXPECT_EQ(binPath, "C:\\A\\");
  registry_.value = std::nullopt;
  EXPECT_FALSE(ReadBinPath(platform_, binPath));
  EXPECT_EQ(binPath, "");
  registry_.value = "";
  EXPECT_FALSE(ReadBinPath(platform_, binPath));
  EXPECT_EQ((Asked{{kKey, "BinPath"}, {kKey, "BinPath"}, {kKey, "BinPath"}}), registry_.asked);
}

TEST_F(InstallPaths, DesignRootReadsTheKeyWithoutFinalBackslashAfreshEachTime) {
  SetBinPath("C:\\A\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetDesignRoot(platform_), "C:\\A");
  registry_.value = "C:\\B\\TQ5-VX\\Bin\\";
  EXPECT_EQ(GetDesignRoot(platform_), "C:\\B");
  EXPECT_EQ((std::pair<std::string, std::string>{"SOFTWARE\\Korvane\\KDQ47", "BinPath"}), registry_.asked.front());
}

TEST_F(InstallPaths, DesignRootIsEmptyForABinPathOfEightCharactersOrFewer) {
  for (const char* binPath : {"", "C:\\", "C:\\12345", "\\TQ5-VX\\", "C:\\éüöäß"}) {
    SetBinPath(binPath);
    EXPECT_EQ(GetDesignRoot(platform_), "") << binPath;
    EXPECT_EQ(GetDesignTempFolder(platform_), "\\TQ5-VX\\Temp\\") << binPath;
  }
  SetBinPath(std::nullopt);
  EXPECT_EQ(GetDesignRoot(platform_), "");
}

TEST_F(InstallPaths, DesignRootOfALongerBinPathWithoutTheDesignFolderIsAnError) {
  for (const char* binPath : {"C:\\123456", "C:\\K\\tq5-vx\\Bin", "TQ5-VX\\Bin\\"}) {
    SetBinPath(binPath);
    EXPECT_EQ(NumberOfErrorFrom(GetDesignRoot), 5) << binPath;
    EXPECT_EQ(NumberOfErrorFrom(GetDesignTempFolder), 5) << binPath;
  }
}

TEST_F(InstallPaths, DesignRootEndsOneCharacterBeforeTheFirstDesignFolder) {
  SetBinPath("C:\\TQ5-VX\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetDesignRoot(platform_), "C:");
  SetBinPath("C:\\Küche\\TQ5-VX\\Bin\\");
  EXPECT_EQ(GetDesignRoot(platform_), "C:\\Küche");
  // Whatever the character before it is.
  SetBinPath("C:\\KüTQ5-VX\\Bin\\");
  EXPECT_EQ(GetDesignRoot(platform_), "C:\\K");
}

}  // namespace
}  // namespace parvex
