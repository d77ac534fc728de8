#pragma once

#include <string>
#include <vector>

#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"

namespace parvex::cli {

/// A quote as text for a terminal: tag by tag its base units with their components in a table, with what they come to.
std::string QuoteAsText(const Quote& quote, bool takesColours);

/// What differs, one line each: "+" added, "-" removed, with what it comes to; "~" changed.
/// Below stored data stand the entries that differ, and below these the values.
std::string DifferencesAsText(const std::vector<Difference>& differences, bool takesColours);

/// The same, and what the quotes come to before and after. Nothing more where nothing differs.
std::string ComparisonAsText(const QuoteComparison& comparison, bool takesColours);

/// "1,234.50", with a note when some prices are no numbers.
std::string TotalText(const Total& total);

}  // namespace parvex::cli
