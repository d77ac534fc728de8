#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace parvex::cli {

// Everything that the program prints goes through here (or ShownProgress, or the boxes of host/written_boxes.h), so
// that nothing from outside can control a terminal: not even where a writer forgot to ask what a text holds.

/// The bytes of a file of this system, of standard input for "-" (read once: each further "-" is the same bytes). A
/// file that cannot be read, or has more than `most` bytes, is a UsageError.
std::string ReadInput(const std::string& fileName, std::size_t most = SIZE_MAX);

/// Writes a document, or a part of one, to standard output at once: its very bytes, but to a terminal as text is
/// written. An AutomationError (75) when that fails.
void WriteDocument(std::string_view bytes);

/// Writes text for people to standard output at once, without what would control a terminal but the colours of
/// terminal/colours.h where they are in use. An AutomationError (75) when that fails.
void WriteText(std::string_view text);

/// Tells one line on standard error, "parvex: " in front, as every line of an error begins. Line breaks in it are from
/// outside, and become blanks.
void TellError(std::string_view line);

}  // namespace parvex::cli
