#pragma once

#include <string>
#include <string_view>

namespace parvex {

// Text from outside as a terminal may get it. What would control the terminal (C0, DEL and C1, so every escape
// sequence), or turn the direction of writing round, appears as U+FFFD; so does what is no UTF-8.

/// Line ends and tabs stay; every line ends with a line feed alone, whatever ended it before.
std::string TerminalText(std::string_view text);

/// One line: line ends and tabs become blanks, so that a name cannot pretend to be a line of its own.
std::string TerminalLine(std::string_view text);

/// Whether a character would do more on a terminal than appear.
bool ControlsTerminal(char32_t character);

}  // namespace parvex
