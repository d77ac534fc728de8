#pragma once

#include <string>

#include "seams/xml.h"

namespace parvex::cli {

/// The Hybris document that a file of this system holds, "-" for standard input; a UsageError that says what is wrong
/// with it when its root is no PROJECT.
xml::Document ReadQuoteDocument(const std::string& fileName);

}  // namespace parvex::cli
