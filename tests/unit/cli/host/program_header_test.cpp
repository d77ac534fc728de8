#include "cli/host/program_header.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::cli {
namespace {

using Kind = ProgramHeader::Kind;

std::string WindowsProgram(const std::string& machine, const std::string& flags) {
  std::string bytes = "MZ" + std::string(0x3A, '\0') + std::string("\x40\0\0\0", 4);
  bytes += std::string("PE\0\0", 4) + machine + std::string(16, '\0') + flags;
  return bytes;
}

TEST(ProgramHeaders, TellProgramsForWindowsByProcessor) {
  const std::string x86 = WindowsProgram(std::string("\x4C\x01", 2), std::string("\x02\x01", 2));
  EXPECT_EQ(ReadProgramHeader(x86).kind, Kind::Windows);
  EXPECT_EQ(ReadProgramHeader(x86).machine, kWindowsX86);
  const std::string x64 = WindowsProgram(std::string("\x64\x86", 2), std::string("\x22\0", 2));
  EXPECT_EQ(ReadProgramHeader(x64).machine, kWindowsX64);
  const std::string library = WindowsProgram(std::string("\x64\x86", 2), std::string("\x22\x20", 2));
  EXPECT_EQ(ReadProgramHeader(library).kind, Kind::WindowsLibrary);
}

TEST(ProgramHeaders, OfOlderWindowsHaveNoProcessor) {
  EXPECT_EQ(ReadProgramHeader("MZ").kind, Kind::Windows);
  EXPECT_EQ(ReadProgramHeader("MZ").machine, 0);
  const std::string farAway = "MZ" + std::string(0x3A, '\0') + "\xFF\xFF\xFF\xFF";
  EXPECT_EQ(ReadProgramHeader(farAway).machine, 0);
  const std::string cut = WindowsProgram("\x4C", "").substr(0, 0x45);
  EXPECT_EQ(ReadProgramHeader(cut).machine, 0x4C);
}

TEST(ProgramHeaders, TellElfAndScripts) {
  const std::string elf =
      "\x7F"
      "ELF" +
      std::string(14, '\0') + std::string("\x3E\0", 2);
  EXPECT_EQ(ReadProgramHeader(elf).kind, Kind::Elf);
  EXPECT_EQ(ReadProgramHeader(elf).machine, 62);
  EXPECT_EQ(ReadProgramHeader("#! /bin/sh -e\nexit").interpreter, "/bin/sh");
  EXPECT_EQ(ReadProgramHeader("#!/bin/sh").interpreter, "/bin/sh");
  EXPECT_EQ(ReadProgramHeader("#!").interpreter, "");
  EXPECT_EQ(ReadProgramHeader("#!\n").interpreter, "");
  EXPECT_EQ(ReadProgramHeader("").kind, Kind::None);
  EXPECT_EQ(ReadProgramHeader("text").kind, Kind::None);
}

}  // namespace
}  // namespace parvex::cli
