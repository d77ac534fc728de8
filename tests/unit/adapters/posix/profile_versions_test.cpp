#include "adapters/posix/profile_versions.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "adapters/posix/file_version.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {
namespace {

class ProfileFilesTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  std::filesystem::path drive = [this] {
    std::filesystem::create_directories(folder.Path() / "drive_c" / "windows");
    return folder.Path() / "drive_c";
  }();
  posix::Machine machine{folder.Path()};
  PrivateProfile& profile = machine.GetPrivateProfile();

  std::string Read(std::string_view file, std::string_view key = "k") {
    return profile.Section("s", file)->ReadString(key, "-", 255);
  }
};

// As a program does that keeps its file open: no new file, no new size.
void Overwrite(const std::filesystem::path& path, off_t offset, std::string_view bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(pwrite(file, bytes.data(), bytes.size(), offset), static_cast<ssize_t>(bytes.size()));
  close(file);
}

TEST_F(ProfileFilesTest, SeesAChangeOfTheSameSizeWithinTheSameMoment) {
  WriteHostFile(drive / "a.ini", "[s]\nk=000\n");
  for (int i = 0; i < 1000; ++i) {
    const std::string value = std::to_string(100 + i % 900);
    Overwrite(drive / "a.ini", 6, value);
    ASSERT_EQ(Read("C:\\a.ini"), value);
  }
}

// The times of a file have a grain: two changes within it may leave the same ones. Some systems give every change a
// time of its own; a change through a mapping of the file, when the page was changed before, shows in no time on any of
// them.
TEST_F(ProfileFilesTest, SeesAChangeThatTheTimesDoNotShow) {
  const std::filesystem::path host = drive / "a.ini";
  for (int attempt = 0; attempt < 100; ++attempt) {
    WriteHostFile(host, "[s]\nk=1\n");
    const auto start = std::chrono::steady_clock::now();
    const int file = open(host.c_str(), O_RDWR | O_CLOEXEC);
    void* const mapped = mmap(nullptr, 8, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    static_cast<char*>(mapped)[6] = '2';
    const std::string before = Read("C:\\a.ini");
    const auto version = posix::VersionOf(host);
    static_cast<char*>(mapped)[6] = '3';
    const bool hidden = posix::VersionOf(host) == version;
    const std::string after = Read("C:\\a.ini");
    munmap(mapped, 8);
    close(file);
    // On a busy machine the file may have grown old meanwhile.
    if (hidden && std::chrono::steady_clock::now() - start < std::chrono::milliseconds(40)) {
      EXPECT_EQ(before, "2");
      EXPECT_EQ(after, "3");
      return;
    }
  }
  FAIL() << "no attempt was quick enough";
}

TEST_F(ProfileFilesTest, SeesAChangeThatPutsTheFormerTimeBack) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n");
  std::this_thread::sleep_for(std::chrono::milliseconds(80));
  EXPECT_EQ(Read("C:\\a.ini"), "1");
  const auto time = std::filesystem::last_write_time(drive / "a.ini");
  Overwrite(drive / "a.ini", 6, "2");
  std::filesystem::last_write_time(drive / "a.ini", time);
  EXPECT_EQ(Read("C:\\a.ini"), "2");
}

// Reading it each time would take minutes.
TEST_F(ProfileFilesTest, AnUnchangedFileIsNotReadAgain) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n" + std::string(20'000'000, '\n'));
  std::this_thread::sleep_for(std::chrono::milliseconds(80));
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(Read("C:\\a.ini"), "1");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(ProfileFilesTest, ASectionKeepsTheVersionItWasMadeFor) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n");
  const auto section = profile.Section("s", "C:\\a.ini");
  WriteHostFile(drive / "a.ini", "[s]\nk=2\n");
  EXPECT_EQ(Read("C:\\a.ini"), "2");
  EXPECT_EQ(section->ReadString("k", "-", 255), "1");
}

TEST_F(ProfileFilesTest, WhatIsHeldIsOneVersionAndTheNextHoldAnother) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n");
  auto hold = profile.Hold("C:\\a.ini");
  WriteHostFile(drive / "a.ini", "[s]\nk=22\n");
  EXPECT_EQ(Read("C:\\a.ini"), "1");
  const auto nested = profile.Hold("C:\\a.ini");
  EXPECT_EQ(Read("C:\\a.ini"), "22");
  hold.reset();
  WriteHostFile(drive / "a.ini", "[s]\nk=333\n");
  EXPECT_EQ(Read("C:\\a.ini"), "22");
}

TEST_F(ProfileFilesTest, AWriteIsMadeToTheFileAsItIsNow) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n");
  const auto section = profile.Section("s", "C:\\a.ini");
  WriteHostFile(drive / "a.ini", "[s]\nother=2\n");
  EXPECT_TRUE(section->WriteString("k", "3"));
  EXPECT_EQ(ReadHostFile(drive / "a.ini"), "[s]\nother=2\nk=3\r\n");
  EXPECT_EQ(section->ReadString("other", "-", 255), "2");
}

TEST_F(ProfileFilesTest, ManyFilesByTurnsAreEachReadRight) {
  for (int i = 0; i < 20; ++i) {
    WriteHostFile(drive / (std::to_string(i) + ".ini"), "[s]\nk=" + std::to_string(i) + "\n");
  }
  for (int i = 0; i < 60; ++i) {
    EXPECT_EQ(Read("C:\\" + std::to_string(i % 20) + ".ini"), std::to_string(i % 20));
  }
}

TEST_F(ProfileFilesTest, SectionsOutliveTheKeepingOfTheirFile) {
  WriteHostFile(drive / "a.ini", "[s]\nk=1\n");
  const auto section = profile.Section("s", "C:\\a.ini");
  for (int i = 0; i < 20; ++i) {
    Read("C:\\" + std::to_string(i) + ".ini");
  }
  EXPECT_EQ(section->ReadString("k", "-", 255), "1");
}

TEST_F(ProfileFilesTest, AFileNameAloneIsInTheWindowsFolder) {
  WriteHostFile(drive / "windows" / "a.ini", "[s]\nk=1\n");
  WriteHostFile(drive / "a.ini", "[s]\nk=2\n");
  EXPECT_EQ(Read("a.ini"), "1");
  EXPECT_EQ(Read("\\a.ini"), "2");
}

TEST_F(ProfileFilesTest, AFileThatAppearsIsSeen) {
  EXPECT_EQ(Read("C:\\a.ini"), "-");
  WriteHostFile(drive / "A.INI", "[s]\nk=1\n");
  EXPECT_EQ(Read("C:\\a.ini"), "1");
}

TEST_F(ProfileFilesTest, AFolderIsNoFile) {
  std::filesystem::create_directories(drive / "a.ini");
  EXPECT_EQ(Read("C:\\a.ini"), "-");
  EXPECT_FALSE(profile.Section("s", "C:\\a.ini")->WriteString("k", "v"));
}

TEST_F(ProfileFilesTest, PathsThatNoFileCanHaveReadAsMissing) {
  for (const char* path : {"", "C:\\a*.ini", "C:\\a\"b.ini", "\\\\server\\share\\a.ini", "Q:\\a.ini"}) {
    EXPECT_EQ(Read(path), "-") << path;
    EXPECT_FALSE(profile.Section("s", path)->WriteString("k", "v")) << path;
  }
}

TEST_F(ProfileFilesTest, AFileOfMoreThanAGibibyteIsRefusedByName) {
  WriteHostFile(drive / "a.ini", "[s]\n");
  std::filesystem::resize_file(drive / "a.ini", (std::uintmax_t{1} << 30) + 1);
  try {
    Read("C:\\a.ini");
    FAIL() << "read";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 75);
    EXPECT_NE(error.Description().find("C:\\a.ini"), std::string::npos);
  }
}

// Where Windows and Wine part, the native rules are those that Windows documents.
TEST_F(ProfileFilesTest, AQuotedValueMayFillTheBuffer) {
  WriteHostFile(drive / "a.ini", "[s]\nk=\"" + std::string(254, 'x') + "\"\n");
  EXPECT_EQ(Read("C:\\a.ini"), std::string(254, 'x'));
}

TEST_F(ProfileFilesTest, AFallbackOfBlanksIsEmpty) {
  EXPECT_EQ(profile.Section("s", "C:\\a.ini")->ReadString("k", "   ", 255), "");
}

TEST_F(ProfileFilesTest, TextsEndAtANul) {
  WriteHostFile(drive / "a.ini", "[s]\r\nk=1\r\n");
  const std::string_view nul("\0x", 2);
  const auto section = profile.Section("s" + std::string(nul), "C:\\a.ini");
  EXPECT_EQ(section->ReadString("k" + std::string(nul), "-", 255), "1");
  EXPECT_EQ(section->ReadString("none", "f" + std::string(nul), 255), "f");
  EXPECT_TRUE(section->WriteString("k" + std::string(nul), "2" + std::string(nul)));
  EXPECT_EQ(ReadHostFile(drive / "a.ini"), "[s]\r\nk=2\r\n");
}

}  // namespace
}  // namespace parvex::test
