#include "adapters/windows/system_processes.h"

#include <windows.h>

#include <string>

#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

class SystemProcess : public Process {
 public:
  explicit SystemProcess(HANDLE handle) : handle_(handle) {}
  ~SystemProcess() override { CloseHandle(handle_); }
  SystemProcess(const SystemProcess&) = delete;
  SystemProcess& operator=(const SystemProcess&) = delete;

  std::uint32_t ExitCode() override {
    DWORD code = 0;
    if (!GetExitCodeProcess(handle_, &code)) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "the exit code of a process is lost");
    }
    return code;
  }

 private:
  HANDLE handle_;
};

// Where the system finds a program with blanks in its path behind an unquoted name, it quotes that name, so that the
// program sees its arguments where they belong. It does not where it is told the program.
std::wstring LineFor(std::string_view program, std::string_view commandLine) {
  if (!program.empty() && program.find_first_of(" \t") != std::string_view::npos && commandLine.starts_with(program)) {
    return L'"' + Widen(program) + L'"' + Widen(commandLine.substr(program.size()));
  }
  return Widen(commandLine);
}

bool IsMissing(DWORD code) {
  return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_DIRECTORY;
}

// Only what is known to lie in the file is said of it; anything else has the system's number.
std::string ReasonOf(DWORD code) {
  if (IsMissing(code)) {
    return "the program does not exist";
  }
  switch (code) {
    case ERROR_BAD_EXE_FORMAT:
    case ERROR_INVALID_EXE_SIGNATURE:
    case ERROR_EXE_MARKED_INVALID:
    case ERROR_EXE_MACHINE_TYPE_MISMATCH:
      return "it is no program that the system can run";
    default:
      return "the system refuses to, with error " + std::to_string(code);
  }
}

}  // namespace

std::unique_ptr<Process> SystemProcesses::Start(std::string_view commandLine, int windowStyle,
                                                std::string_view program) {
  std::wstring line = LineFor(program, commandLine);  // CreateProcess may write into it
  const std::wstring path = Widen(program);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  // The legacy runtime's window styles are the system's show commands.
  startup.wShowWindow = static_cast<WORD>(windowStyle);
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(path.empty() ? nullptr : path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &started)) {
    const DWORD code = GetLastError();
    throw MakeRuntimeError(IsMissing(code) ? RuntimeError::FileNotFound : RuntimeError::InvalidCall,
                           FailureText("cannot start", commandLine, ReasonOf(code)));
  }
  // The handle for polling is opened by the process's id with query rights only, before the creation's own handles are
  // closed, so the id cannot meanwhile belong to another process.
  HANDLE query = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, started.dwProcessId);
  CloseHandle(started.hThread);
  if (query == nullptr) {
    query = started.hProcess;
  } else {
    CloseHandle(started.hProcess);
  }
  return std::make_unique<SystemProcess>(query);
}

}  // namespace parvex::windows
