#include "cli/host/module_version_windows.h"

#include <windows.h>

#include <cstring>

namespace parvex::cli {
namespace {

// The fixed part of a version resource, which a signature begins.
std::string VersionIn(const char* resource, std::size_t size) {
  constexpr DWORD kSignature = 0xFEEF04BD;
  VS_FIXEDFILEINFO fixed = {};
  for (std::size_t at = 0; at + sizeof fixed <= size; at += sizeof(DWORD)) {
    std::memcpy(&fixed, resource + at, sizeof fixed);
    if (fixed.dwSignature == kSignature) {
      const DWORD high = fixed.dwFileVersionMS;
      const DWORD low = fixed.dwFileVersionLS;
      return std::to_string(HIWORD(high)) + "." + std::to_string(LOWORD(high)) + "." + std::to_string(HIWORD(low)) +
             "." + std::to_string(LOWORD(low));
    }
  }
  return {};
}

}  // namespace

// The only version resource (1 of type 16). Loaded as data: nothing of the module runs, and it may be one of the other
// bitness.
std::string ModuleVersion(const std::wstring& path) {
  const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (module == nullptr) {
    return {};
  }
  std::string version;
  if (const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16))) {
    if (const void* resource = LockResource(LoadResource(module, found))) {
      version = VersionIn(static_cast<const char*>(resource), SizeofResource(module, found));
    }
  }
  FreeLibrary(module);
  return version;
}

}  // namespace parvex::cli
