#include "legacy_env/registry_strings.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/legacy_env/fake_registry.h"

namespace parvex {
namespace {

class RegistryStrings : public testing::Test {
 protected:
  test::FakeRegistry registry_;
  test::FakeMachine machine_;
  const Platform platform_ = [this] {
    Platform platform = machine_.platform;
    platform.registry = &registry_;
    return platform;
  }();
};

TEST_F(RegistryStrings, KeepValuesOf254BytesAndNoLonger) {
  registry_.value = std::string(254, 'x');
  EXPECT_EQ(ReadRegistryString(platform_, "K", "V", "fallback"), std::string(254, 'x'));
  registry_.value = std::string(255, 'x');
  EXPECT_EQ(ReadRegistryString(platform_, "K", "V", "fallback"), "fallback");
}

TEST_F(RegistryStrings, AreMeasuredInBytesOfTheCodePage) {
  std::string umlauts;
  for (int i = 0; i < 254; ++i) {
    umlauts += "ü";  // two bytes in UTF-8, one in the code page
  }
  registry_.value = umlauts;
  EXPECT_EQ(umlauts, ReadRegistryString(platform_, "K", "V", "fallback"));
}

TEST_F(RegistryStrings, KeepAnEmptyValue) {
  registry_.value = "";
  EXPECT_EQ(ReadRegistryString(platform_, "K", "V", "fallback"), "");
}

TEST_F(RegistryStrings, TrapErrorsWithNothingRead) {
  registry_.onRead = [] { throw MakeRuntimeError(RuntimeError::PathFileAccess, "no right"); };
  EXPECT_EQ(ReadRegistryString(platform_, "K", "V", "fallback"), "");
}

TEST_F(RegistryStrings, TheUiKeyIsAnsweredFromTheSettingsFileAndNeverFromTheRegistry) {
  registry_.value = "C:\\Korvane\\TQ5-VX\\Bin\\";
  machine_.Write("C:\\Korvane\\TQ5-VX\\Bin\\UIKeys.txt", "ToolBarActive=-1\r\n");
  EXPECT_EQ(ReadRegistryString(platform_, "SOFTWARE\\Korvane\\UI\\", "ToolBarActive", "fallback"), "-1");
  EXPECT_EQ(ReadRegistryString(platform_, "SOFTWARE\\Korvane\\UI\\", "NoSuchKey", "fallback"), "");
  for (const auto& [key, valueName] : registry_.asked) {
    EXPECT_EQ(valueName, "BinPath");  // only for where the file is
  }
}

TEST_F(RegistryStrings, TheUiKeyWithoutSettingsFileReadsAsEmpty) {
  registry_.value = "C:\\Korvane\\TQ5-VX\\Bin\\";
  EXPECT_EQ(ReadRegistryString(platform_, "SOFTWARE\\Korvane\\UI\\", "ToolBarActive", "fallback"), "");
}

TEST_F(RegistryStrings, OtherSpellingsOfTheUiKeyAreOrdinaryKeys) {
  registry_.value = "from the registry";
  for (const char* key : {"SOFTWARE\\Korvane\\UI", "software\\korvane\\ui\\"}) {
    EXPECT_EQ(ReadRegistryString(platform_, key, "ToolBarActive", ""), "from the registry") << key;
  }
}

}  // namespace
}  // namespace parvex
