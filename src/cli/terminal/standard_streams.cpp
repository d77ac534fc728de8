#include "cli/terminal/standard_streams.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "cli/terminal/colours.h"
#include "formats/text/terminal_text.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

[[noreturn]] void CannotRead(const std::string& name) {
  throw UsageError("cannot read " + name + ": " + std::strerror(errno));
}

[[noreturn]] void TooLarge(const std::string& name, std::size_t most) {
  throw UsageError(name + " has more than " + std::to_string(most) + " bytes");
}

std::string ReadStandardInput(std::size_t most) {
  std::string bytes;
  char block[1 << 16];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, stdin)) > 0;) {
    bytes.append(block, count);
    if (bytes.size() > most) {
      TooLarge("standard input", most);
    }
  }
  if (std::ferror(stdin) != 0) {
    CannotRead("standard input");
  }
  return bytes;
}

void Write(std::string_view bytes) {
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
  if (!written || std::fflush(stdout) != 0) {
    const int reason = errno;
    std::clearerr(stdout);
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           std::string("cannot write standard output: ") + std::strerror(reason));
  }
}

// The bytes up to a character at the end that is not complete yet.
std::size_t WholeCharacters(std::string_view bytes) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t back = 1; back < kLongest && back <= bytes.size(); ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if (byte >= 0xC0) {
      const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
      return back < length ? bytes.size() - back : bytes.size();
    }
    if (byte < 0x80) {
      break;
    }
  }
  return bytes.size();
}

}  // namespace

std::string ReadInput(const std::string& fileName, std::size_t most) {
  if (fileName == "-") {
    static const std::string standardInput = ReadStandardInput(most);
    return standardInput;
  }
  std::ifstream file(PathOf(fileName), std::ios::binary);
  std::string bytes;
  char block[1 << 16];
  while (file.read(block, sizeof block) || file.gcount() > 0) {
    bytes.append(block, static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > most) {
      TooLarge(fileName, most);
    }
  }
  if (file.bad() || !file.is_open()) {
    CannotRead(fileName);
  }
  return bytes;
}

void WriteDocument(std::string_view bytes) {
  if (!IsTerminal(stdout)) {
    Write(bytes);
    return;
  }
  // A long document comes in parts, which end anywhere.
  static std::string begun;
  begun += bytes;
  const std::string rest = begun.substr(WholeCharacters(begun));
  begun.resize(begun.size() - rest.size());
  Write(TerminalText(begun));
  begun = rest;
}

void WriteText(std::string_view text) {
  const bool takesColours = TakesColours(stdout);
  std::string shown;
  std::size_t plainFrom = 0;
  for (std::size_t pos = takesColours ? text.find('\x1b') : text.npos; pos != text.npos; pos = text.find('\x1b', pos)) {
    const std::size_t length = LengthOfColour(text.substr(pos));
    if (length > 0) {
      shown.append(TerminalText(text.substr(plainFrom, pos - plainFrom))).append(text.substr(pos, length));
      plainFrom = pos + length;
    }
    pos += length > 0 ? length : 1;
  }
  Write(shown.append(TerminalText(text.substr(plainFrom))));
}

void TellError(std::string_view line) {
  const std::string shown = "parvex: " + TerminalLine(line) + "\n";
  std::fwrite(shown.data(), 1, shown.size(), stderr);
}

}  // namespace parvex::cli
