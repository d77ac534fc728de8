#pragma once

#include <string>

#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"

namespace parvex::cli {

/// A quote as one HTML page that needs nothing beside it: no script, no font, no image from elsewhere.
std::string QuotePage(const Quote& quote, const std::string& fileName);

/// The same page of the later of two quotes, with what was changed above it and the tags that were removed below it.
/// Each difference leads to what it is about, and back.
std::string ComparisonPage(const Quote& before, const Quote& after, const QuoteComparison& comparison,
                           const std::string& beforeName, const std::string& afterName);

}  // namespace parvex::cli
