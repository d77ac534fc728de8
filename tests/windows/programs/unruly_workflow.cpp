#include <windows.h>

#include <string>

// Stands in the place of the workflow program and misbehaves as the file beside it says: UNRULY.txt begins with "crash"
// or "hang". Either leaves a torn hand-over file first, as a program that dies in the middle of its work does.

namespace {

std::wstring Folder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring own(path, length);
  return own.substr(0, own.rfind(L'\\') + 1);
}

char FirstLetterOf(const std::wstring& file) {
  char letter = 0;
  DWORD got = 0;
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ReadFile(handle, &letter, 1, &got, nullptr);
  CloseHandle(handle);
  return letter;
}

void LeaveTornFile() {
  constexpr char kText[] = "[Header]\r\nAct";
  DWORD written = 0;
  const HANDLE file = CreateFileW((Folder() + L"..\\Temp\\torn.tmp").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  WriteFile(file, kText, sizeof kText - 1, &written, nullptr);
  CloseHandle(file);
}

}  // namespace

int main() {
  LeaveTornFile();
  if (FirstLetterOf(Folder() + L"UNRULY.txt") == 'h') {
    Sleep(INFINITE);
  }
  RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  return 0;
}
