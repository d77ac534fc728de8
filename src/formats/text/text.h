#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex {

// Text inside the system is UTF-8. The legacy protocol counts characters as its platform does, in UTF-16 units; the
// functions here are the only place that counts them. A surrogate pair (one UTF-8 sequence of four bytes, two units) is
// never cut in two: a cut that would fall inside it falls before it. A byte that belongs to no UTF-8 sequence counts as
// a character of its own (formats/text/unicode.h).

/// Length in UTF-16 units.
std::size_t LengthInUnits(std::string_view text);
/// The first `units` UTF-16 units, all of the text when it is shorter.
std::string_view FirstUnits(std::string_view text, std::size_t units);
/// What remains when the first `units` UTF-16 units are dropped; empty when the text is shorter.
std::string_view DropUnits(std::string_view text, std::size_t units);
/// The last `units` UTF-16 units, all of the text when it is shorter.
std::string_view LastUnits(std::string_view text, std::size_t units);

/// The text without leading and trailing blanks (U+0020 only, as the legacy runtime trims).
std::string_view TrimBlanks(std::string_view text);

/// Upper case of the letters that the legacy code page knows: ASCII and Latin-1; every other character as it stands.
std::string ToUpper(std::string_view text);
/// Whether two texts are the same when letter case is ignored (the letters of ToUpper).
bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Every occurrence of `what` (not empty) in `text` replaced by `with`.
std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with);

}  // namespace parvex
