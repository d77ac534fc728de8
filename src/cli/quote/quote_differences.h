#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/quote/quote.h"
#include "cli/quote/stored_data.h"

namespace parvex::cli {

/// Where an item stands in a quote: places in Quote::tags, QuoteTag::units and QuoteUnit::components, counted from 0.
/// Nothing below the item's own level, and nothing at its own where this quote lacks it.
struct ItemPlace {
  std::optional<std::size_t> tag;
  std::optional<std::size_t> unit;
  std::optional<std::size_t> component;

  bool operator==(const ItemPlace&) const = default;
};

/// One thing in which two quotes differ.
struct Difference {
  std::string where;                  ///< the tag, unit or component, long names shortened; empty for the project
  std::string what;                   ///< the value that differs; empty for a whole tag, unit or component
  std::optional<std::string> before;  ///< nothing when it was added
  std::optional<std::string> after;   ///< nothing when it was removed
  ItemPlace placeBefore = {};         ///< where the item stands in the earlier quote
  ItemPlace placeAfter = {};          ///< and in the later one
  std::optional<Total> total = {};    ///< of a whole item that was added or removed: what it comes to
  std::optional<StoredDataComparison> stored = {};  ///< of stored data: what differs in the archives
};

/// A tag of two quotes: its place in each, counted from 0; nothing in the one that lacks it.
struct TagPair {
  std::optional<std::size_t> before;
  std::optional<std::size_t> after;
};

/// How many items were added or removed, and what they come to.
struct ItemsTogether {
  std::size_t count = 0;
  Total total = {};
};

/// What was changed between two quotes.
struct QuoteComparison {
  std::vector<Difference> differences;
  std::vector<TagPair> tags;  ///< all tags of both: those that were removed, then those of the later quote in its order
  Total totalBefore;
  Total totalAfter;
  ItemsTogether addedTags;
  ItemsTogether removedTags;
  ItemsTogether addedUnits;    ///< of tags that stand in both
  ItemsTogether removedUnits;  ///< of tags that stand in both

  /// By how much the total has grown: of what is a number.
  Hundredths Change() const { return totalAfter.amount - totalBefore.amount; }
};

/// Compares two quotes. The same are
///
/// - tags of one mark-for and PDSG: of several that share both, those of one stored id, then the first of one quote and
///   the first of the other, and so on. A tag that is left over has another name when its stored id is found again.
/// - units of a tag that have one part number and place, or else one part number, or else one place;
/// - components of a unit that have one type and part number, and where that fits several one description and price.
///
/// The order of items is not compared, nor are a unit's SEQUENCE and ID (its place and the beginning of its part
/// number), a component's SEQUENCE (its place), and DELIVERYGROUP, which is always empty.
///
/// The id of a tag without stored data is counted by the run that exports it: it is 1 in one run and 4 in another, and
/// another tag's in a third. A stored id is told by its build version, which comes out of the stored data too: ids
/// count for what is the same, and are compared, only where both tags have a build version.
///
/// Stored data that differ are looked into, as far as StoredDataBudget goes.
///
/// Cost: n log n for n items, and what is looked into.
QuoteComparison Compare(const Quote& before, const Quote& after);

}  // namespace parvex::cli
