// The probe of the process suite, for Windows: see ContractMachine::InstallProbe.

// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <cstdio>
#include <string>

namespace {

std::wstring Folder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetEnvironmentVariableW(L"PARVEX_PROBE_FOLDER", path, MAX_PATH);
  return std::wstring(path, length) + L"\\";
}

std::string Utf8(const std::wstring& text) {
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(), size, nullptr, nullptr);
  return narrow;
}

}  // namespace

int main() {
  int count = 0;
  wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::FILE* report = _wfopen((Folder() + L"probe.txt").c_str(), L"wb");
  if (report == nullptr) {
    return 99;
  }
  for (int i = 1; i < count; ++i) {
    std::fprintf(report, "%s\n", Utf8(arguments[i]).c_str());
  }
  std::fclose(report);
  while (GetFileAttributesW((Folder() + L"probe.hold").c_str()) != INVALID_FILE_ATTRIBUTES) {
    Sleep(10);
  }
  const std::wstring first = count > 1 ? arguments[1] : L"";
  return first.rfind(L"exit=", 0) == 0 ? _wtoi(first.c_str() + 5) : 0;
}
