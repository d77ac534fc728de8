#include "adapters/windows/this_program.h"

// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include "adapters/windows/wide_text.h"

namespace parvex::windows {

std::wstring ProgramPath() {
  std::wstring path(32768, L'\0');  // the longest that the system has
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

std::vector<std::string> ProgramArguments() {
  int count = 0;
  LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    arguments.push_back(Narrow(wide[i]));
  }
  LocalFree(wide);
  return arguments;
}

}  // namespace parvex::windows
