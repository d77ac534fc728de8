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

}  // namespace

bool TakesColours(std::FILE* stream) {
  return Environment("NO_COLOR").empty() && Environment("TERM") != "dumb" && IsTerminal(stream);
}

std::string Coloured(std::string_view text, Colour colour, bool takesColours) {
  if (!takesColours) {
    return std::string(text);
  }
  return "\x1b[" + std::string(CodeOf(colour)) + "m" + std::string(text) + "\x1b[0m";
}

}  // namespace parvex::cli
