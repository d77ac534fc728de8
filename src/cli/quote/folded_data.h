#pragma once

#include <cstddef>
#include <string>

#include "cli/quote/quote.h"
#include "cli/quote/stored_data.h"

namespace parvex::cli {

// Bounds of what a page unfolds, beside those of stored_data.h (docs/bounds.md). What is beyond is told with its size.
inline constexpr std::size_t kLongestUnfolded = 100'000;   ///< of a text, in UTF-16 units
inline constexpr std::size_t kLargestReadable = 1u << 20;  ///< bytes of an entry that is shown, of XML laid out
inline constexpr std::size_t kMostUnfolded = 10u << 20;    ///< bytes of markup, of a page
inline constexpr std::size_t kMostListedEntries = 200;     ///< of a tag's stored data

/// What a page shows folded: order configurations, and what lies in stored data. One for each page, since its bounds
/// are those of the page.
class FoldedData {
 public:
  /// Markup of a unit's order configuration, as indented XML; nothing when it has none.
  std::string OrderConfiguration(const QuoteUnit& unit);

  /// Markup of a tag's stored data: their entries with their sizes, and the text of those that are XML or a text;
  /// nothing when there are none. Data that cannot be opened are told with the reason.
  std::string StoredData(const QuoteTag& tag);

 private:
  std::string Block(std::string_view text, bool isCut, std::size_t bytes);
  std::string Readable(const std::string& text, std::size_t bytes);
  std::string Entry(const std::string& name, const std::string& bytes);
  std::string Entries(const QuoteTag& tag);

  std::size_t unfolded_ = 0;
  StoredDataBudget stored_;
};

}  // namespace parvex::cli
