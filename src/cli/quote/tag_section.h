#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "cli/quote/folded_data.h"
#include "cli/quote/quote.h"

namespace parvex::cli {

/// The elements of a page by which links find tags and their base units; places are counted from 0.
std::string TagId(std::size_t place);
/// Of a tag of the earlier quote that the later one lacks.
std::string RemovedTagId(std::size_t place);
std::string UnitId(const std::string& tagId, std::size_t place);

/// What a page says about a tag beside what the quote holds.
struct TagRemarks {
  std::string id;
  std::string change;                                   ///< "added", "removed", "changed"; empty for neither
  std::string ofTag;                                    ///< markup below the heading
  std::function<std::string(std::size_t unit)> ofUnit;  ///< markup below the heading of a base unit; may be empty
};

/// Puts a tag with its base units behind the page, as a section of it; `number` is its place in its quote, counted from
/// 1. Pages may be as long as memory allows: nothing of them is held twice.
void AppendTagSection(std::string& page, std::size_t number, const QuoteTag& tag, const TagRemarks& remarks,
                      FoldedData& folded);

}  // namespace parvex::cli
