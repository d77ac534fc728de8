#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "legacy_env/ui_settings.h"
#include "tests/faults/case_bytes.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"

// Files of settings that were made to do harm.

namespace parvex::test {
namespace {

using testing::HasSubstr;

const std::string kUiKeys = std::string(FakeMachine::kBinPath) + "UIKeys.txt";

std::string TooLong() { return "it has more than " + std::to_string(kLongestUiFile) + " bytes"; }

TEST(HostileUiKeys, OfLineEndsHaveNoValueAndAreLeftAsTheyAre) {
  FakeMachine machine;
  machine.Write(kUiKeys, Repeat("\n", kLongestUiFile));
  const ChildOutcome read = InLimitedChild([&] { return "[" + getUIValue(machine.platform, "ToolBarActive") + "]"; });
  ExpectQuick(read);
  EXPECT_EQ(read.answer, "[]");
  const ChildOutcome changed = InLimitedChild([&] {
    setUIValue(machine.platform, "1");
    return std::string("changed");
  });
  ExpectQuick(changed);
  EXPECT_THAT(changed.answer, HasSubstr("has 16777216 lines; it may have at most 101"));
}

TEST(HostileUiKeys, OfMoreBytesThanAreReadAreRefused) {
  FakeMachine machine;
  machine.Write(kUiKeys, Repeat("\n", 30'000'000));
  const ChildOutcome read = InLimitedChild([&] { return getUIValue(machine.platform, "ToolBarActive"); });
  ExpectQuick(read);
  EXPECT_THAT(read.answer, HasSubstr(TooLong()));
}

TEST(HostileUiKeys, OfGigabytesFailTheirOwnCheckOfTheDoctorAlone) {
  FakeMachine machine;
  constexpr std::uintmax_t kEightGigabytes = std::uintmax_t{8} << 30;
  machine.Write(kUiKeys, "");
  std::filesystem::resize_file(machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Bin/UIKeys.txt", kEightGigabytes);
  const std::string output = (machine.folder.Path() / "told").string();
  const ProgramOutcome told =
      InLimitedProgram({PARVEX_PROGRAM, "--machine", machine.folder.Path().string(), "doctor"}, output);
  ExpectQuick(told);
  EXPECT_EQ(told.status, 1) << told.answer;
  EXPECT_THAT(ReadHostFile(output), HasSubstr(TooLong()));
  EXPECT_THAT(ReadHostFile(output), HasSubstr("of 23 checks"));
}

}  // namespace
}  // namespace parvex::test
