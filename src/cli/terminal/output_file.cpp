#include "cli/terminal/output_file.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "cli/terminal/standard_streams.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

namespace fs = std::filesystem;

// Where a link leads, so that the file behind it is replaced and not the link.
fs::path FollowLinks(const fs::path& path) {
  std::error_code error;
  const fs::path end = fs::weakly_canonical(path, error);
  return error ? path : end;
}

bool IsOtherThanFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return fs::exists(status) && !fs::is_regular_file(status);
}

}  // namespace

OutputFile::OutputFile(const std::string& name) : name_(name) {
  if (name == "-") {
    return;
  }
  target_ = FollowLinks(PathOf(name));
  beside_ = target_;
  if (!IsOtherThanFile(target_)) {
    beside_ += ".parvex-new";
  }
  stream_.open(beside_, std::ios::binary | std::ios::trunc);
  if (!stream_) {
    throw UsageError("cannot write " + name + ": " + std::strerror(errno));
  }
}

OutputFile::~OutputFile() {
  if (beside_ != target_) {
    stream_.close();
    std::error_code ignored;
    fs::remove(beside_, ignored);
  }
}

void OutputFile::Write(std::string_view bytes) {
  if (target_.empty()) {
    WriteDocument(bytes);
    return;
  }
  stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream_.close();
  std::error_code error;
  if (stream_ && beside_ != target_) {
    fs::rename(beside_, target_, error);
  }
  if (!stream_ || error) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "cannot write " + name_);
  }
}

}  // namespace parvex::cli
