#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace parvex {

/// Exit code of a process that still runs.
inline constexpr std::uint32_t kStillActive = 259;

class Process {
 public:
  virtual ~Process() = default;
  /// The process's exit code, kStillActive while it runs.
  virtual std::uint32_t ExitCode() = 0;
};

class Processes {
 public:
  virtual ~Processes() = default;

  /// Starts a program by its command line. An unquoted program path with blanks is resolved as CreateProcess does (each
  /// blank is tried as the end of the path, ".exe" is added to a name without extension). `windowStyle` is 0 to 6 as
  /// the legacy runtime numbers them (1: normal with focus, 6: minimised without focus). A program that cannot be
  /// started is an AutomationError: not found (53), not a program or no right to run it (5).
  ///
  /// With `program`, its path, that file is what starts, whatever the line's beginning may mean: a planted
  /// "C:\Korvane.exe" is not tried for "C:\Korvane App\Bin\x.exe /y". The program sees its arguments as it would
  /// without.
  virtual std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle,
                                         std::string_view program = {}) = 0;
};

}  // namespace parvex
