#include <aclapi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sddl.h>
#include <windows.h>

#include <chrono>
#include <thread>
#include <vector>

#include "adapters/windows/native_system.h"
#include "adapters/windows/wide_text.h"
#include "seams/durable_files.h"
#include "tests/contract/contract_fixture.h"

// What a file of Windows has besides its bytes, and who has it open while it is replaced.

namespace parvex::test {
namespace {

using testing::UnorderedElementsAre;
using windows::Narrow;
using windows::Widen;

class ReplacedFiles : public testing::Test {
 protected:
  ContractMachine machine;
  Files& files = machine.files;
  const std::string path = machine.Path("kept.xml");

  static std::wstring TextOf(PSECURITY_DESCRIPTOR descriptor) {
    wchar_t* text = nullptr;
    ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text,
                                                         nullptr);
    const std::wstring kept = text == nullptr ? L"" : text;
    LocalFree(text);
    return kept;
  }
  static std::wstring AccessListOf(const std::string& file) {
    DWORD size = 0;
    GetFileSecurityW(Widen(file).c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<char> descriptor(size + 1);
    GetFileSecurityW(Widen(file).c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size);
    return TextOf(descriptor.data());
  }
  // Nobody but the user may do anything with the file.
  static void CloseToOthers(const std::string& file) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    std::vector<char> user(256);
    DWORD size = 0;
    ASSERT_TRUE(GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size));
    CloseHandle(token);
    EXPLICIT_ACCESSW access = {};
    access.grfAccessPermissions = FILE_ALL_ACCESS;
    access.grfAccessMode = SET_ACCESS;
    access.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    access.Trustee.ptstrName = static_cast<wchar_t*>(reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid);
    PACL list = nullptr;
    ASSERT_EQ(SetEntriesInAclW(1, &access, nullptr, &list), ERROR_SUCCESS);
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
    EXPECT_TRUE(SetFileSecurityW(Widen(file).c_str(), DACL_SECURITY_INFORMATION, &descriptor));
    LocalFree(list);
  }
  HANDLE Open(DWORD sharing) const {
    return CreateFileW(Widen(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
  }
  void Leave(const std::string& name, int hours) {
    files.Replace(machine.Path(name), "left");
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    ULARGE_INTEGER units = {{time.dwLowDateTime, time.dwHighDateTime}};
    units.QuadPart -= std::uint64_t{10'000'000} * 3600 * static_cast<std::uint64_t>(hours);
    time = {units.LowPart, units.HighPart};
    const HANDLE file = CreateFileW(Widen(machine.Path(name)).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
  }
};

TEST_F(ReplacedFiles, KeepTheirAccessList) {
  files.Replace(path, "old");
  const std::wstring open = AccessListOf(path);
  CloseToOthers(path);
  const std::wstring closed = AccessListOf(path);
  ASSERT_NE(closed, open);
  files.Replace(path, "new");
  EXPECT_EQ(AccessListOf(path), closed);
  ReplaceOnDisk(files, path, "newer");
  EXPECT_EQ(AccessListOf(path), closed);
  EXPECT_EQ(files.ReadAll(path), "newer");
}

TEST_F(ReplacedFiles, HaveTheirAccessListFromTheFirstByteOn) {
  files.Replace(path, "old");
  CloseToOthers(path);
  const auto replacement = windows::NativeSystem().MakeReplacement(path, HostSystem::Readers::AsUsual);
  const std::vector<std::string> names = files.ListFiles(machine.Path("*"));
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(AccessListOf(machine.Path(names[0])), AccessListOf(machine.Path(names[1])));
}

TEST_F(ReplacedFiles, StayHidden) {
  files.Replace(path, "old");
  SetFileAttributesW(Widen(path).c_str(), FILE_ATTRIBUTE_HIDDEN);
  files.Replace(path, "new");
  EXPECT_NE(GetFileAttributesW(Widen(path).c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST_F(ReplacedFiles, MayBeReadByWhoLetsThemBeDeletedMeanwhile) {
  files.Replace(path, "old");
  const HANDLE reader = Open(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  files.Replace(path, "new");
  EXPECT_EQ(files.ReadAll(path), "new");
  char bytes[8] = {};
  DWORD got = 0;
  EXPECT_TRUE(ReadFile(reader, bytes, sizeof bytes, &got, nullptr));
  EXPECT_EQ(std::string(bytes, got), "old");
  CloseHandle(reader);
  EXPECT_THAT(files.ListFiles(machine.Path("*")), UnorderedElementsAre("kept.xml"));
}

TEST_F(ReplacedFiles, AreWaitedForWhileAnotherReadsThem) {
  files.Replace(path, "old");
  const HANDLE reader = Open(FILE_SHARE_READ);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  std::thread closing([&] {
    Sleep(200);
    CloseHandle(reader);
  });
  const std::string failed = ErrorIn([&] { files.Replace(path, "new"); });
  closing.join();
  EXPECT_EQ(failed, "");
  EXPECT_EQ(files.ReadAll(path), "new");
}

TEST_F(ReplacedFiles, ThatAnotherDoesNotLetGoStayAsTheyAre) {
  files.Replace(path, "old");
  const HANDLE reader = Open(FILE_SHARE_READ);
  EXPECT_EQ(RaisedBy([&] { files.Replace(path, "new"); }), 75);
  CloseHandle(reader);
  EXPECT_EQ(files.ReadAll(path), "old");
  EXPECT_THAT(files.ListFiles(machine.Path("*")), UnorderedElementsAre("kept.xml"));
}

TEST_F(ReplacedFiles, TakeLeftoversWithThemThatAreOlderThanADay) {
  Leave("~parvex-0123456789abcdef.tmp", 25);
  Leave("~parvex-fedcba9876543210.tmp", 23);
  Leave("~parvex-mine.tmp", 25);
  ASSERT_TRUE(MoveFileW(Widen(machine.scratch).c_str(), Widen(machine.scratch + "-moved").c_str()));
  const std::string moved = machine.scratch + "-moved";
  files.Replace(moved + "\\quote.xml", "quote");
  EXPECT_THAT(files.ListFiles(moved + "\\*"),
              UnorderedElementsAre("quote.xml", "~parvex-fedcba9876543210.tmp", "~parvex-mine.tmp"));
  ASSERT_TRUE(MoveFileW(Widen(moved).c_str(), Widen(machine.scratch).c_str()));
}

TEST_F(ReplacedFiles, OfThisSystemAreWrittenByPiecesAndTakeTheirNameWhenTheyAreComplete) {
  windows::NativeSystem system;
  files.Replace(path, "old");
  {
    const auto given = system.MakeReplacement(path, HostSystem::Readers::AsUsual);
    given->Append("0123456789");
  }
  EXPECT_EQ(files.ReadAll(path), "old");
  const auto replacement = system.MakeReplacement(path, HostSystem::Readers::AsUsual);
  replacement->Append("0123456789");
  replacement->Overwrite(2, "ab");
  EXPECT_EQ(replacement->Read(1, 4), "1ab4");
  replacement->Truncate(5);
  replacement->Append("!");
  replacement->TakeName();
  EXPECT_EQ(files.ReadAll(path), "01ab4!");
  EXPECT_THAT(files.ListFiles(machine.Path("*")), UnorderedElementsAre("kept.xml"));
  const auto nothing = system.MakeReplacement("NUL", HostSystem::Readers::AsUsual);
  nothing->Append("lost");
  EXPECT_EQ(ErrorIn([&] { nothing->TakeName(); }), "");
}

}  // namespace
}  // namespace parvex::test
