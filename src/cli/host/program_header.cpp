#include "cli/host/program_header.h"

#include <algorithm>

namespace parvex::cli {
namespace {

// The number at a place, little-endian; 0 behind the end.
std::uint32_t NumberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t i = size; i-- > 0;) {
    number = number << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0u);
  }
  return number;
}

ProgramHeader ReadWindowsHeader(std::string_view begin) {
  constexpr std::size_t kPlaceOfHeader = 0x3C;
  constexpr std::uint32_t kIsLibrary = 0x2000;
  const std::size_t at = NumberAt(begin, kPlaceOfHeader, 4);
  if (at > begin.size() || begin.substr(at, 4) != std::string_view("PE\0\0", 4)) {
    return {.kind = ProgramHeader::Kind::Windows};  // of an earlier Windows
  }
  const bool isLibrary = (NumberAt(begin, at + 22, 2) & kIsLibrary) != 0;
  return {.kind = isLibrary ? ProgramHeader::Kind::WindowsLibrary : ProgramHeader::Kind::Windows,
          .machine = static_cast<std::uint16_t>(NumberAt(begin, at + 4, 2))};
}

std::string_view InterpreterOf(std::string_view begin) {
  std::string_view line = begin.substr(2, begin.find('\n') - 2);
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return line.substr(0, line.find_first_of(" \t\r"));
}

}  // namespace

ProgramHeader ReadProgramHeader(std::string_view begin) {
  if (begin.starts_with("MZ")) {
    return ReadWindowsHeader(begin);
  }
  if (begin.starts_with("\x7F"
                        "ELF")) {
    return {.kind = ProgramHeader::Kind::Elf, .machine = static_cast<std::uint16_t>(NumberAt(begin, 18, 2))};
  }
  if (begin.starts_with("#!")) {
    return {.kind = ProgramHeader::Kind::Script, .interpreter = InterpreterOf(begin)};
  }
  return {};
}

}  // namespace parvex::cli
