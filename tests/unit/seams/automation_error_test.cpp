#include "seams/automation_error.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

TEST(AutomationError, CarriesNumberSourceAndDescription) {
  const AutomationError error(0x80070005u, "Base64.DecodeToFile", "File already exists.");
  EXPECT_EQ(error.Number(), 0x80070005u);
  EXPECT_EQ(error.Source(), "Base64.DecodeToFile");
  EXPECT_EQ(error.Description(), "File already exists.");
  EXPECT_EQ(error.RuntimeNumber(), 5);
}

// Scripts of integrators compare these.
TEST(AutomationError, RuntimeErrorsHaveTheRuntimesNumbers) {
  EXPECT_EQ(MakeRuntimeError(RuntimeError::InvalidCall, "").Number(), 0x800A0005u);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::Overflow, "").Number(), 0x800A0006u);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::SubscriptOutOfRange, "").Number(), 0x800A0009u);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::TypeMismatch, "").Number(), 0x800A000Du);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::FileNotFound, "").Number(), 0x800A0035u);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::FileExists, "").Number(), 0x800A003Au);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::DiskFull, "").Number(), 0x800A003Du);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::PathFileAccess, "").Number(), 0x800A004Bu);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::PathNotFound, "").Number(), 0x800A004Cu);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::ObjectNotSet, "").Number(), 0x800A005Bu);
  EXPECT_EQ(MakeRuntimeError(RuntimeError::CannotCreateObject, "").Number(), 0x800A01ADu);
}

TEST(AutomationError, RuntimeErrorsSayWhoRaisedThemAndWhat) {
  const AutomationError error = MakeRuntimeError(RuntimeError::FileNotFound, "C:\\a.txt does not exist");
  EXPECT_EQ(error.Source(), "Parvex");
  EXPECT_STREQ(error.what(), "C:\\a.txt does not exist");
  EXPECT_EQ(error.RuntimeNumber(), 53);
}

}  // namespace
}  // namespace parvex
