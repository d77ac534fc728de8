#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "seams/code_page.h"

namespace parvex {

// Archives in which the legacy application keeps a tag's data ("blobs"): ZIP archives with stored and deflated entries.
// docs/stored-tag-data.md describes what is read and what is refused.

/// What the entries of an archive may amount to when unpacked, each and all together.
inline constexpr std::uint64_t kLargestPackedEntry = 64u << 20;
inline constexpr std::uint64_t kLargestPackedTotal = 128u << 20;

struct PackedEntry {
  /// UTF-8, components separated by backslashes; every component is a name that Windows gives to files, but for those
  /// of devices with an extension ("aux.txt").
  std::string name;
  std::string bytes;
  bool isFolder = false;
};

struct UnpackLimits {
  std::uint64_t entry = kLargestPackedEntry;
  std::uint64_t total = kLargestPackedTotal;
  std::string_view what = "blob";  ///< what refusals call the archive
  std::size_t entries = SIZE_MAX;
  std::size_t folders = SIZE_MAX;  ///< that the entries make or lie in
};

/// Of an archive whose entries become files and folders of the machine, each of which takes its time. The legacy
/// application's have a dozen.
inline constexpr UnpackLimits kUnpackedAsFiles = {.entries = 2'000, .folders = 500};

/// The unpacked entries of the archive that `archive` holds, in the archive's order; none when it is no archive. No two
/// have the same name. An archive that is damaged, holds an entry with a hostile name or of a kind that is not read, or
/// goes beyond the limits is refused as a whole: an AutomationError (5) that names `path` and the entry.
std::vector<PackedEntry> Unpack(CodePage& codePage, std::string_view archive, std::string_view path,
                                const UnpackLimits& limits = {});

/// An archive whose directory was never written (ArchiveFile), with one for the stored entries that are whole; what
/// follows them is left out.
std::string WithDirectory(std::string_view unfinished);

/// The refusal of an archive for one of its entries, as Unpack words it: `reason` is read behind the entry's name.
[[noreturn]] void RefuseEntry(std::string_view blobPath, std::string_view name, const std::string& reason);

}  // namespace parvex
