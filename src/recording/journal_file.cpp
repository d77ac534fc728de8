#include "recording/journal_file.h"

#include <exception>

namespace parvex::recording {
namespace {

constexpr std::size_t kMostWaiting = 64u << 10;

}  // namespace

void JournalFile::Add(std::uint64_t step, const char* at, std::string_view text) {
  lines_.reserve(lines_.size() + 1);
  text_ += text;
  lines_.push_back({step, at, text.size()});
  if (text_.size() > kMostWaiting) {
    Flush();
  }
}

void JournalFile::Flush() noexcept {
  if (lines_.empty()) {
    return;
  }
  if (!Append(text_)) {
    FlushOneByOne();
  }
  lines_.clear();
  text_.clear();
}

// Where not all of them can be written, some of them may.
void JournalFile::FlushOneByOne() noexcept {
  std::string_view rest = text_;
  for (const Line& line : lines_) {
    if (!Append(rest.substr(0, line.length))) {
      lost_(line.step, line.at, why_);
    }
    rest.remove_prefix(line.length);
  }
}

bool JournalFile::Append(std::string_view text) noexcept {
  try {
    file_.Append(text);
    size_ += text.size();
    return true;
  } catch (const std::exception& failure) {
    try {
      why_ = failure.what();
      file_.Truncate(size_);
    } catch (...) {
      // The next line is written over what is left of this one.
    }
    return false;
  }
}

}  // namespace parvex::recording
