#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"
#include "formats/json/bounded_json.h"

namespace parvex::cli {

// What docs/program.md promises to other programs: members are added, never renamed or removed, and each is there at
// any time, null where it says nothing. Amounts are texts with two decimals (PlainAmount); places count from 1. Nothing
// in the JSON controls a terminal.

/// Gets the JSON piece by piece, as a large quote has a hundred times the JSON that is at hand at once.
using TakeJson = std::function<void(std::string_view piece)>;

/// A total in every JSON of this program.
Json TotalJson(const Total& total);

/// A quote with everything that is read of it.
void WriteQuoteJson(const Quote& quote, const std::string& fileName, const TakeJson& take);

/// Both quotes in the same way, and what was changed between them.
void WriteComparisonJson(const Quote& before, const std::string& beforeName, const Quote& after,
                         const std::string& afterName, const QuoteComparison& comparison, const TakeJson& take);

}  // namespace parvex::cli
