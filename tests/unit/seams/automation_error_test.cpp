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

TEST(AutomationErrorTexts, SayWhatOfWhichValueAndWhy) {
  EXPECT_EQ(Quoted("a b"), "\"a b\"");
  EXPECT_EQ(Quoted(""), "\"\"");
  EXPECT_EQ(FailureText("cannot start", "a.exe", "it is none"), "cannot start \"a.exe\": it is none");
}

TEST(AutomationErrorTexts, OfFilesSayTheReasonOfTheNumberUnlessThereIsABetterOne) {
  const auto text = [](RuntimeError error) { return MakeFileError(error, "write", "C:\\a").Description(); };
  EXPECT_EQ(text(RuntimeError::FileNotFound), "cannot write \"C:\\a\": it does not exist");
  EXPECT_EQ(text(RuntimeError::FileExists), "cannot write \"C:\\a\": the name is taken");
  EXPECT_EQ(text(RuntimeError::DiskFull), "cannot write \"C:\\a\": the disk is full");
  EXPECT_EQ(text(RuntimeError::PathNotFound), "cannot write \"C:\\a\": its folder does not exist");
  EXPECT_EQ(text(RuntimeError::PathFileAccess), "cannot write \"C:\\a\": the system refuses it");
  const AutomationError told = MakeFileError(RuntimeError::PathFileAccess, "read", "C:\\a", kIsFolder);
  EXPECT_EQ(told.Description(), "cannot read \"C:\\a\": it is a folder");
  EXPECT_EQ(told.RuntimeNumber(), 75);
}

}  // namespace
}  // namespace parvex
