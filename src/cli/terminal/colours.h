#pragma once

#include <cstddef>
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

/// How many bytes at the beginning of the text are one of the sequences that Coloured writes; 0 for everything else.
std::size_t LengthOfColour(std::string_view text);

}  // namespace parvex::cli
