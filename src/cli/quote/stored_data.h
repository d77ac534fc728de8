#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/quote/content_differences.h"
#include "cli/quote/quote.h"
#include "formats/zip/zip_reader.h"

namespace parvex::cli {

/// What a tag's archive may unpack to that is looked into, and all that are looked into one after the other.
inline constexpr std::uint64_t kLargestStoredArchive = 32u << 20;
inline constexpr std::uint64_t kMostStoredBytes = 256u << 20;
/// What all contents that are compared value by value may have together.
inline constexpr std::size_t kMostComparedBytes = 32u << 20;

/// What is in a tag's stored data.
struct StoredArchive {
  std::vector<PackedEntry> entries;
  std::string refusal;  ///< why there are none; empty for an archive, and where there is no stored data
};

/// What all the stored data may still take that one run looks into, so that no quote takes it long.
struct StoredDataBudget {
  std::uint64_t unpacked = kMostStoredBytes;
  std::size_t compared = kMostComparedBytes;
};

/// The archive of a tag, each entry unpacked. Never an error: what is no archive, damaged, hostile or too large is told
/// in the refusal.
StoredArchive OpenStoredData(const QuoteTag& tag, StoredDataBudget& budget);

/// An entry that two archives do not share.
struct StoredEntryDifference {
  std::string name;                              ///< components separated by backslashes
  std::optional<std::size_t> before;             ///< how many bytes it has; nothing when it was added
  std::optional<std::size_t> after;              ///< nothing when it was removed
  std::vector<ContentDifference> contents = {};  ///< of an entry in both: what its text differs in
  std::string note = {};                         ///< of an entry in both: why there is no more to be said
};

/// In what the stored data of a tag differ.
struct StoredDataComparison {
  std::vector<StoredEntryDifference> entries;
  std::string note = {};  ///< why there are none
};

StoredDataComparison CompareStoredData(const QuoteTag& before, const QuoteTag& after, StoredDataBudget& budget);

}  // namespace parvex::cli
