#pragma once

#include <string_view>

namespace parvex {

/// What the legacy side means by reading a text as a number: the number that the text begins with, whatever follows it;
/// 0 for a text that begins with none.
///
/// A number is an optional sign, decimal digits with at most one decimal point (always ".", whatever the machine's
/// language), and an optional exponent ("E" or "D", either case, at least one digit behind it). Blanks, tabs and line
/// feeds count nowhere, also inside: "1 2" is 12. There are no group separators: "1,234" is 1. Hexadecimal notation is
/// not known here: "&H10" is 0, since the values that are read hold prices, flows and unit numbers.
///
/// A number beyond the range of a double is the overflow error (6).
double LeadingNumber(std::string_view text);

}  // namespace parvex
