#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace parvex::cli {

/// What kind of program a file is by its first bytes.
struct ProgramHeader {
  enum class Kind {
    None,            ///< none of those that follow
    Windows,         ///< begins as programs for Windows do
    WindowsLibrary,  ///< a DLL
    Elf,
    Script  ///< begins with "#!"
  };
  Kind kind = Kind::None;
  /// The processor that it was made for, as the format numbers it; 0 where that cannot be read.
  std::uint16_t machine = 0;
  std::string_view interpreter = {};  ///< of a script: the program's path
};

inline constexpr std::uint16_t kWindowsX86 = 0x014C;
inline constexpr std::uint16_t kWindowsX64 = 0x8664;

/// So many bytes of a file are enough.
inline constexpr std::size_t kMostOfProgramHeader = 4096;

/// `begin` is how the file begins, and outlives the result.
ProgramHeader ReadProgramHeader(std::string_view begin);

}  // namespace parvex::cli
