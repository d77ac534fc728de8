#include "adapters/windows/system_error.h"

#include <windows.h>

#include <cstdio>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

RuntimeError KindOf(std::uint32_t systemCode) {
  switch (systemCode) {
    case ERROR_FILE_NOT_FOUND:
      return RuntimeError::FileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
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

// Why a file may not be used; empty when it does not tell.
std::string_view RefusalOf(std::string_view doing, std::string_view path) {
  const DWORD attributes = GetFileAttributesW(Widen(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return {};
  }
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (doing == "remove the folder") {
    return isFolder ? "" : kIsNoFolder;
  }
  if (isFolder) {
    return kIsFolder;
  }
  return doing != "read" && (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? kIsReadOnly : "";
}

}  // namespace

AutomationError FileError(std::uint32_t systemCode, std::string_view doing, std::string_view path) {
  const RuntimeError error = KindOf(systemCode);
  if (systemCode == ERROR_INVALID_NAME) {
    const bool hasToExist = doing == "read" || doing == "remove";
    return hasToExist ? MakeFileError(RuntimeError::FileNotFound, doing, path)
                      : MakeFileError(error, doing, path, kNoPossibleName);
  }
  return MakeFileError(error, doing, path, error == RuntimeError::PathFileAccess ? RefusalOf(doing, path) : "");
}

std::string Hex(std::uint32_t number) {
  char digits[11];
  std::snprintf(digits, sizeof digits, "0x%08X", static_cast<unsigned>(number));
  return digits;
}

}  // namespace parvex::windows
