#include <algorithm>
#include <vector>

#include "cli/open/content.h"
#include "formats/jet/catalogue.h"
#include "formats/text/letter_case.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "hybris/stored_tag_text.h"
#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

constexpr std::size_t kMostEntries = 10'000;

// Whether bytes begin as an archive does: with an entry, or with the end of one without entries.
bool LooksLikeArchive(std::string_view bytes) { return bytes.starts_with("PK\3\4") || bytes.starts_with("PK\5\6"); }

bool HasFile(const std::vector<PackedEntry>& entries, std::string_view name) {
  return std::ranges::any_of(entries,
                             [&](const PackedEntry& entry) { return !entry.isFolder && IsSameName(entry.name, name); });
}

bool HasDatabase(const std::vector<PackedEntry>& entries) {
  return std::ranges::any_of(entries, [](const PackedEntry& entry) { return jet::LooksLikeDatabase(entry.bytes); });
}

Content KindOf(CodePage& codePage, const std::vector<PackedEntry>& entries) {
  if (HasFile(entries, recording::kFacts) && HasFile(entries, recording::kJournal)) {
    return {.kind = "case", .what = "a recorded call"};
  }
  if (HasDatabase(entries)) {
    return {.kind = "project-archive", .what = "the archive of a project"};
  }
  if (HoldTagText(codePage, entries)) {
    return {.kind = "stored-tag-data", .what = "the stored data of a tag"};
  }
  return {.kind = "archive", .what = "an archive"};
}

}  // namespace

std::optional<Content> ArchiveContent(std::string_view bytes, const std::string& name, Looking& looking) {
  if (!LooksLikeArchive(bytes)) {
    return std::nullopt;
  }
  if (looking.depth == 0) {
    return Content{.kind = "archive", .what = "an archive, not looked into", .members = Json::object()};
  }
  posix::Windows1252 codePage;
  const std::vector<PackedEntry> entries = Unpack(codePage, bytes, name,
                                                  {.entry = std::min(looking.unpacked, kLargestPackedEntry),
                                                   .total = looking.unpacked,
                                                   .what = "archive",
                                                   .entries = kMostEntries,
                                                   .folders = kMostEntries});
  if (entries.empty() && bytes.starts_with("PK\3\4")) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           FailureText("the archive", name, "it has no directory: it was cut off, or never finished"));
  }
  for (const PackedEntry& entry : entries) {
    looking.unpacked -= std::min<std::uint64_t>(looking.unpacked, entry.bytes.size());
  }
  Content content = KindOf(codePage, entries);
  content.members["entryCount"] = entries.size();
  --looking.depth;
  AddAll(content.members, "entries", entries, looking, [&](const PackedEntry& entry) {
    Json listed = {{"name", ShownText(entry.name)}, {"bytes", entry.bytes.size()}, {"folder", entry.isFolder}};
    if (!entry.isFolder) {
      listed.update(InnerContent(entry.bytes, entry.name, looking));
    }
    return listed;
  });
  ++looking.depth;
  return content;
}

}  // namespace parvex::cli
