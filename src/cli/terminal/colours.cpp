#include "cli/terminal/colours.h"

#include <cstdlib>

#include "cli/host/host.h"

namespace parvex::cli {
namespace {

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string_view CodeOf(Colour colour) {
  switch (colour) {
    case Colour::Red:
      return "31";
    case Colour::Green:
      return "32";
    case Colour::Yellow:
      return "33";
    case Colour::Bold:
      return "1";
    case Colour::Dim:
      return "2";
  }
  return "0";
}

constexpr std::string_view kEnd = "\x1b[0m";

std::string BeginOf(Colour colour) { return "\x1b[" + std::string(CodeOf(colour)) + "m"; }

}  // namespace

bool TakesColours(std::FILE* stream) {
  return Environment("NO_COLOR").empty() && Environment("TERM") != "dumb" && IsTerminal(stream);
}

std::string Coloured(std::string_view text, Colour colour, bool takesColours) {
  if (!takesColours) {
    return std::string(text);
  }
  return BeginOf(colour).append(text).append(kEnd);
}

std::size_t LengthOfColour(std::string_view text) {
  if (text.starts_with(kEnd)) {
    return kEnd.size();
  }
  for (const Colour colour : {Colour::Red, Colour::Green, Colour::Yellow, Colour::Bold, Colour::Dim}) {
    if (const std::string begin = BeginOf(colour); text.starts_with(begin)) {
      return begin.size();
    }
  }
  return 0;
}

}  // namespace parvex::cli
