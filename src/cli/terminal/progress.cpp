#include "cli/terminal/progress.h"

#include <cstdio>

#include "cli/host/host.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

// A line that a terminal breaks into two cannot be taken back.
constexpr std::size_t kLongestLine = 79;

std::string AsSentence(std::string_view what) {
  std::string sentence(what);
  if (!sentence.empty() && sentence.front() >= 'a' && sentence.front() <= 'z') {
    sentence.front() = static_cast<char>(sentence.front() - 'a' + 'A');
  }
  return sentence;
}

}  // namespace

ShownProgress::ShownProgress() : isShown_(IsTerminal(stderr)) {}

ShownProgress::~ShownProgress() { Show({}); }

void ShownProgress::Waits(std::string_view what) {
  const Clock::time_point now = Clock::now();
  if (!waitBegan_) {
    waitBegan_ = now;
  }
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - *waitBegan_).count();
  const std::string since = seconds == 0 ? "" : ", " + std::to_string(seconds) + " s";
  const std::string sentence = Printable(AsSentence(what));
  Show(std::string(FirstUnits(sentence, kLongestLine - since.size())) + since);
}

void ShownProgress::HasWaited() {
  waitBegan_.reset();
  Show({});
}

void ShownProgress::ReadsTag(std::size_t number, std::size_t count, std::string_view name) {
  Show("Reading tag " + std::to_string(number) + " of " + std::to_string(count) + ": " + std::string(name));
}

void ShownProgress::HasReadTags() { Show({}); }

void ShownProgress::Show(const std::string& about) {
  const std::string text(FirstUnits(Printable(about), kLongestLine));
  if (!isShown_ || text == text_) {
    return;
  }
  // Blanks and returns only, which every terminal understands.
  const std::string blanks(LengthInUnits(text_), ' ');
  std::fprintf(stderr, "\r%s\r%s", blanks.c_str(), text.c_str());
  std::fflush(stderr);
  text_ = text;
}

}  // namespace parvex::cli
