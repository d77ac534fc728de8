#include "cli/standard_streams.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/exit_status.h"
#include "platform/automation_error.h"

namespace parvex::cli {
namespace {

std::string ReadAll(std::FILE* file, const std::string& name) {
  std::string bytes;
  char block[1 << 16];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, file)) > 0;) {
    bytes.append(block, count);
  }
  if (std::ferror(file) != 0) {
    throw UsageError("cannot read " + name + ": " + std::strerror(errno));
  }
  return bytes;
}

}  // namespace

std::string ReadInput(const std::string& fileName) {
  if (fileName == "-") {
    static const std::string standardInput = ReadAll(stdin, "standard input");
    return standardInput;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(fileName.c_str(), "rb"), std::fclose);
  if (!file) {
    throw UsageError("cannot read " + fileName + ": " + std::strerror(errno));
  }
  return ReadAll(file.get(), fileName);
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
