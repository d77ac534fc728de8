#include "cli/cases/run_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "cli/terminal/printable.h"
#include "journal/xml_difference.h"

namespace parvex::cli {
namespace {

using replay::Difference;

constexpr std::size_t kMostShown = 10;
constexpr std::size_t kShownBefore = 60;
constexpr std::size_t kShownBehind = 180;

bool IsInsideOfCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Of a long text what stands around the place where it differs.
std::string Around(std::string_view text, std::size_t at) {
  std::size_t begin = at < kShownBefore + 20 ? 0 : at - kShownBefore;
  std::size_t end = std::min(text.size(), at + kShownBehind);
  while (begin > 0 && IsInsideOfCharacter(text[begin])) {
    --begin;
  }
  while (end < text.size() && IsInsideOfCharacter(text[end])) {
    ++end;
  }
  return (begin > 0 ? "..." : "") + Printable(text.substr(begin, end - begin)) + (end < text.size() ? "..." : "");
}

std::pair<std::string, std::string> Shown(const Difference& difference) {
  std::size_t expectedAt = 0;
  std::size_t actualAt = 0;
  if (const auto differs = journal::FirstXmlDifference(difference.expected, difference.actual)) {
    expectedAt = differs->expectedAt;
    actualAt = differs->actualAt;
  }
  return {Around(difference.expected, expectedAt), Around(difference.actual, actualAt)};
}

std::string Where(const Difference& difference) {
  return (difference.step == 0 ? "" : "step " + std::to_string(difference.step) + ", ") + Printable(difference.what);
}

}  // namespace

std::string TextOfRun(const replay::RunResult& result) {
  std::string text = result.IsReproduced()
                         ? "Reproduced: " + result.outcome + ", " + Counted(result.steps, "step") + ".\n"
                         : "Not reproduced: " + Counted(result.differences.size(), "difference") + ".\n";
  for (std::size_t i = 0; i < std::min(kMostShown, result.differences.size()); ++i) {
    const Difference& difference = result.differences[i];
    const auto& [expected, actual] = Shown(difference);
    text += Where(difference) + "\n  expected: " + expected + "\n  actual:   " + actual + "\n";
  }
  if (result.differences.size() > kMostShown) {
    text += "and " + std::to_string(result.differences.size() - kMostShown) + " more\n";
  }
  for (const std::string& note : result.notes) {
    text += "Note: " + Printable(note) + ".\n";
  }
  return text;
}

std::string LineOfRun(const replay::RunResult& result) {
  if (result.IsReproduced()) {
    return "reproduced";
  }
  const std::size_t more = result.differences.size() - 1;
  return "not reproduced: " + Where(result.differences.front()) +
         (more == 0 ? "" : " and " + std::to_string(more) + " more");
}

}  // namespace parvex::cli
