#include "adapters/windows/system_error.h"

#include <windows.h>

#include <cstdio>

namespace parvex::windows {
namespace {

RuntimeError KindOf(std::uint32_t systemCode) {
  switch (systemCode) {
    case ERROR_FILE_NOT_FOUND:
      return RuntimeError::FileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_NAME:
      return RuntimeError::PathNotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return RuntimeError::FileExists;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return RuntimeError::DiskFull;
    default:
      return RuntimeError::PathFileAccess;
  }
}

}  // namespace

AutomationError FileError(std::uint32_t systemCode, std::string_view doing, std::string_view path) {
  return MakeRuntimeError(KindOf(systemCode), "cannot " + std::string(doing) + " \"" + std::string(path) +
                                                  "\": system error " + std::to_string(systemCode));
}

std::string Hex(std::uint32_t number) {
  char digits[11];
  std::snprintf(digits, sizeof digits, "0x%08X", static_cast<unsigned>(number));
  return digits;
}

}  // namespace parvex::windows
