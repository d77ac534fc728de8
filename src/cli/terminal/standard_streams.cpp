#include "cli/terminal/standard_streams.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

[[noreturn]] void CannotRead(const std::string& name) {
  throw UsageError("cannot read " + name + ": " + std::strerror(errno));
}

std::string ReadStandardInput() {
  std::string bytes;
  char block[1 << 16];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, stdin)) > 0;) {
    bytes.append(block, count);
  }
  if (std::ferror(stdin) != 0) {
    CannotRead("standard input");
  }
  return bytes;
}

}  // namespace

std::string ReadInput(const std::string& fileName) {
  if (fileName == "-") {
    static const std::string standardInput = ReadStandardInput();
    return standardInput;
  }
  std::ifstream file(PathOf(fileName), std::ios::binary);
  std::string bytes;
  char block[1 << 16];
  while (file.read(block, sizeof block) || file.gcount() > 0) {
    bytes.append(block, static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad() || !file.is_open()) {
    CannotRead(fileName);
  }
  return bytes;
}

void WriteOutput(std::string_view bytes) {
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
  if (!written || std::fflush(stdout) != 0) {
    const int reason = errno;
    std::clearerr(stdout);
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           std::string("cannot write standard output: ") + std::strerror(reason));
  }
}

}  // namespace parvex::cli
