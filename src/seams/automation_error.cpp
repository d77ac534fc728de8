#include "seams/automation_error.h"

namespace parvex {
namespace {

std::string_view ReasonOf(RuntimeError error) {
  switch (error) {
    case RuntimeError::FileNotFound:
      return "it does not exist";
    case RuntimeError::FileExists:
      return "the name is taken";
    case RuntimeError::DiskFull:
      return "the disk is full";
    case RuntimeError::PathNotFound:
      return "its folder does not exist";
    default:
      return "the system refuses it";
  }
}

}  // namespace

AutomationError MakeRuntimeError(RuntimeError error, const std::string& description) {
  return AutomationError(0x800A0000u + static_cast<std::uint16_t>(error), kErrorSource, description);
}

std::string Quoted(std::string_view value) { return "\"" + std::string(value) + "\""; }

std::string FailureText(std::string_view what, std::string_view value, std::string_view why) {
  return std::string(what) + " " + Quoted(value) + ": " + std::string(why);
}

AutomationError MakeFileError(RuntimeError error, std::string_view doing, std::string_view path, std::string_view why) {
  return MakeRuntimeError(error,
                          FailureText("cannot " + std::string(doing), path, why.empty() ? ReasonOf(error) : why));
}

}  // namespace parvex
