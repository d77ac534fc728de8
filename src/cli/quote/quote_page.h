#pragma once

#include <string>
#include <vector>

#include "cli/quote/quote.h"
#include "cli/quote/quote_differences.h"

namespace parvex::cli {

/// A quote as one HTML page that needs nothing beside it: no script, no font, no image from elsewhere.
std::string QuotePage(const Quote& quote, const std::string& fileName);

/// The same page of the later of two quotes, with what was changed above it.
std::string ComparisonPage(const Quote& after, const std::vector<Difference>& differences,
                           const std::string& beforeName, const std::string& afterName);

}  // namespace parvex::cli
