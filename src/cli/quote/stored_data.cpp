#include "cli/quote/stored_data.h"

#include <algorithm>
#include <map>
#include <utility>

#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "formats/text/windows_1252.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

// No deflated byte becomes more.
constexpr std::uint64_t kMostUnpackedOfOne = 1032;

void Take(std::uint64_t& budget, std::uint64_t amount) { budget -= std::min(budget, amount); }

std::string NameOfStored(const QuoteTag& tag) {
  constexpr std::size_t kLongestNameOfStored = 60;
  return std::string(FirstUnits(tag.markFor, kLongestNameOfStored));
}

// What an entry that stands in both archives differs in.
StoredEntryDifference CompareEntries(const PackedEntry& before, const PackedEntry& after, StoredDataBudget& budget) {
  StoredEntryDifference difference{before.name, before.bytes.size(), after.bytes.size()};
  const std::size_t size = before.bytes.size() + after.bytes.size();
  if (size > budget.compared && std::max(before.bytes.size(), after.bytes.size()) <= kLargestComparedContent) {
    difference.note = "not looked into: so much was already";
    return difference;
  }
  ContentComparison contents = CompareContents(before.bytes, after.bytes);
  budget.compared -= std::min(budget.compared, size);
  difference.contents = std::move(contents.differences);
  difference.note = std::move(contents.note);
  return difference;
}

// The files of an archive; folders say nothing that their files do not.
std::map<std::string, const PackedEntry*> FilesOf(const StoredArchive& archive) {
  std::map<std::string, const PackedEntry*> files;
  for (const PackedEntry& entry : archive.entries) {
    if (!entry.isFolder) {
      files.emplace(entry.name, &entry);
    }
  }
  return files;
}

}  // namespace

StoredArchive OpenStoredData(const QuoteTag& tag, StoredDataBudget& budget) {
  if (tag.storedData.empty()) {
    return {};
  }
  const std::string bytes = DecodeBase64(tag.storedData);
  UnpackLimits limits = kUnpackedAsFiles;
  limits.total = std::min(kLargestStoredArchive, budget.unpacked);
  limits.entry = limits.total;
  limits.what = "stored data of the tag";
  posix::Windows1252 codePage;
  try {
    StoredArchive archive{Unpack(codePage, bytes, NameOfStored(tag), limits), {}};
    for (const PackedEntry& entry : archive.entries) {
      Take(budget.unpacked, entry.bytes.size());
    }
    archive.refusal = archive.entries.empty() ? "no archive that holds something" : "";
    return archive;
  } catch (const AutomationError& error) {
    Take(budget.unpacked, std::min(limits.total, bytes.size() * kMostUnpackedOfOne));
    return {{}, error.Description()};
  }
}

StoredDataComparison CompareStoredData(const QuoteTag& before, const QuoteTag& after, StoredDataBudget& budget) {
  const StoredArchive first = OpenStoredData(before, budget);
  const StoredArchive last = OpenStoredData(after, budget);
  for (const std::string& refusal : {first.refusal, last.refusal}) {
    if (!refusal.empty()) {
      return {{}, "not looked into: " + refusal};
    }
  }
  std::map<std::string, const PackedEntry*> added = FilesOf(last);
  StoredDataComparison comparison;
  for (const auto& [name, entry] : FilesOf(first)) {
    const auto partner = added.find(name);
    if (partner == added.end()) {
      comparison.entries.push_back({name, entry->bytes.size(), std::nullopt});
      continue;
    }
    if (entry->bytes != partner->second->bytes) {
      comparison.entries.push_back(CompareEntries(*entry, *partner->second, budget));
    }
    added.erase(partner);
  }
  for (const auto& [name, entry] : added) {
    comparison.entries.push_back({name, std::nullopt, entry->bytes.size()});
  }
  comparison.note = comparison.entries.empty() ? "the same files, packed in another way" : "";
  return comparison;
}

}  // namespace parvex::cli
