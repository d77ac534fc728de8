#include "hybris/protected_files.h"

#include <algorithm>
#include <array>

#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "hybris/selected_items.h"

namespace parvex {
namespace {

constexpr std::array<std::string_view, 7> kHandOverNames = {"OUTPUT.INI",  "QBOUTPUT.INI", "UBOUT.INI", "QBINPUT.INI",
                                                            "HBINPUT.INI", "QPBLOB.TMP",   "INPUT.INI"};
constexpr std::array<std::string_view, 5> kDatabaseExtensions = {".MDB", ".MDE", ".LDB", ".ACCDB", ".LACCDB"};
constexpr std::array<std::string_view, 3> kSettingsNames = {"UIKEYS.TXT", "OPTIONS.XML", "TOOLS.XML"};
constexpr std::string_view kSettingsExtension = ".INI";

std::string_view NameOf(std::string_view path) {
  const std::size_t separator = path.find_last_of("\\/");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

template <std::size_t N>
bool IsAmong(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool IsDatabase(std::string_view foldedName) {
  return std::ranges::any_of(kDatabaseExtensions,
                             [&](std::string_view extension) { return foldedName.ends_with(extension); });
}

bool IsSettings(std::string_view foldedName) {
  return IsAmong(kSettingsNames, foldedName) || foldedName.ends_with(kSettingsExtension);
}

// An export that is repeated unpacks the same entries again.
bool IsOtherwiseThere(Files& files, const std::string& path, const PackedEntry& entry) {
  const std::optional<std::string> there = files.ReadIfFile(path);
  return there && *there != entry.bytes;
}

}  // namespace

bool NamedBlobs::Contain(std::string_view path) {
  if (!blobs_) {
    blobs_.emplace();
    for (const SelectedTag& tag : ReadSelectedTags(platform_, qbOutputFile_)) {
      Add(tag.blobFileName);
      const Accessories accessories = ReadAccessories(tag);
      for (const auto& accessory : accessories) {
        Add(accessory->fileName);
      }
    }
  }
  return blobs_->contains(FoldPath(path));
}

void NamedBlobs::Add(const std::string& blob) {
  if (blob.empty()) {
    return;
  }
  blobs_->insert(FoldPath(blob));
  if (NameOf(blob).find('~') == std::string_view::npos) {
    return;
  }
  const std::string folder = blob.substr(0, blob.size() - NameOf(blob).size());
  for (const std::string& own : platform_.files->ListFiles(blob)) {
    blobs_->insert(FoldPath(folder + own));
  }
}

void RefuseProtectedFile(Files& files, std::string_view folder, const PackedEntry& entry, std::string_view blobPath,
                         NamedBlobs* named) {
  if (entry.isFolder) {
    return;
  }
  const std::string path = std::string(folder) + entry.name;
  const std::string name = FoldName(WithoutTrailingDotsAndBlanks(NameOf(entry.name)));
  if (IsAmong(kHandOverNames, name)) {
    RefuseEntry(blobPath, entry.name, "has the name of a file that runs are handed over by");
  }
  if (named != nullptr && named->Contain(path)) {
    RefuseEntry(blobPath, entry.name, "would replace another blob of the selection");
  }
  if (IsDatabase(name) && IsOtherwiseThere(files, path, entry)) {
    RefuseEntry(blobPath, entry.name, "would replace a database");
  }
  if (IsSettings(name) && IsOtherwiseThere(files, path, entry)) {
    RefuseEntry(blobPath, entry.name, "would replace a settings file");
  }
}

}  // namespace parvex
