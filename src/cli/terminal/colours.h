#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace parvex::cli {

enum class Colour { Red, Green, Yellow, Bold, Dim };

/// Whether text for the stream may be coloured: it is a terminal, the environment variable NO_COLOR is not set or
/// empty, and TERM is not "dumb".
bool TakesColours(std::FILE* stream);

/// The text with escape sequences around it, or as it stands.
std::string Coloured(std::string_view text, Colour colour, bool takesColours);

}  // namespace parvex::cli
