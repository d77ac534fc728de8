#include "hybris/blob_folder.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "formats/text/text.h"

namespace parvex {
namespace {

// Whether a name beside the blob means the blob. Only the folder's listing knows which file has the short name that the
// blob may be called by, and which letters a volume takes for the same.
bool MeansBlob(Files& files, std::string_view name, const std::string& folder, std::string_view blobName) {
  if (IsSameName(name, blobName.substr(0, blobName.find_last_not_of(". ") + 1))) {
    return true;
  }
  const auto plain = [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '~'; };
  if (std::all_of(name.begin(), name.end(), plain) && std::all_of(blobName.begin(), blobName.end(), plain)) {
    return false;
  }
  const std::string path = folder + std::string(name);
  return files.IsFile(path) && files.ListFiles(path) == files.ListFiles(folder + std::string(blobName));
}

// Whether a component can be the second, short name that Windows keeps for a file of a longer one ("UNITDA~1.XML").
bool MayBeShortName(std::string_view component) {
  constexpr std::size_t kLongestStem = 8;
  constexpr std::size_t kLongestExtension = 3;
  const std::size_t dot = std::min(component.rfind('.'), component.size());
  return component.find('~') != std::string_view::npos && LengthInUnits(component.substr(0, dot)) <= kLongestStem &&
         (dot == component.size() || LengthInUnits(component.substr(dot + 1)) <= kLongestExtension);
}

// The components of a name, from the first up to each of them: "a", "a\b", "a\b\c".
std::vector<std::string_view> PathsWithin(std::string_view name) {
  std::vector<std::string_view> paths;
  for (std::size_t end = name.find('\\'); end != std::string_view::npos; end = name.find('\\', end + 1)) {
    paths.push_back(name.substr(0, end));
  }
  paths.push_back(name);
  return paths;
}

std::string_view LastOf(std::string_view path) { return path.substr(FolderOf(path).size()); }

enum class Called { NotThere, BySpelling, Otherwise };

// Whether what exists at a path has another name of its own: the machine knows it by a short one too.
Called HowCalled(Files& files, const std::string& path) {
  std::vector<std::string> own;
  if (files.IsFile(path)) {
    own = files.ListFiles(path);
  } else if (files.IsFolder(path)) {
    const std::string_view above = FolderOf(path);
    own = files.ListFolders(above.empty() ? "." : above);
  } else {
    return Called::NotThere;
  }
  const std::string name = FoldName(LastOf(path));
  const bool is = std::ranges::any_of(own, [&name](const std::string& one) { return FoldName(one) == name; });
  return is ? Called::BySpelling : Called::Otherwise;
}

// Whether writing the entry would change another file than its own name says. Below what is not there nothing is:
// `known` holds what was looked at for an entry before.
bool MeansAnother(Files& files, const std::string& folder, const PackedEntry& entry,
                  std::unordered_map<std::string, Called>& known) {
  for (const std::string_view path : PathsWithin(entry.name)) {
    if (!MayBeShortName(LastOf(path))) {
      continue;
    }
    const auto [called, isNew] = known.try_emplace(std::string(path), Called::NotThere);
    if (isNew) {
      called->second = HowCalled(files, folder + std::string(path));
    }
    if (called->second != Called::BySpelling) {
      return called->second == Called::Otherwise;
    }
  }
  return false;
}

bool MeansDevice(const PackedEntry& entry) {
  const std::vector<std::string_view> paths = PathsWithin(entry.name);
  return std::any_of(paths.begin(), paths.end(), [](std::string_view path) { return IsDeviceName(LastOf(path)); });
}

// The entries in the order in which they are written: in every folder, first what could be the short name of another
// entry. Windows then gives that one another short name, and neither is written over the other.
std::vector<const PackedEntry*> InWritingOrder(const std::vector<PackedEntry>& entries) {
  std::vector<std::pair<std::vector<bool>, const PackedEntry*>> sorted;
  for (const PackedEntry& entry : entries) {
    std::vector<bool> isLong;
    for (const std::string_view path : PathsWithin(entry.name)) {
      isLong.push_back(!MayBeShortName(LastOf(path)));
    }
    sorted.emplace_back(std::move(isLong), &entry);
  }
  std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<const PackedEntry*> order;
  for (const auto& [isLong, entry] : sorted) {
    order.push_back(entry);
  }
  return order;
}

void WriteEntry(Files& files, const std::string& folder, const PackedEntry& entry) {
  const std::string path = folder + entry.name;
  if (entry.isFolder) {
    files.CreateFolder(path);
    return;
  }
  if (entry.name.find('\\') != std::string::npos) {
    files.CreateFolder(FolderOf(path));
  }
  files.Replace(path, entry.bytes);
}

}  // namespace

std::string_view FolderOf(std::string_view path) { return path.substr(0, path.find_last_of("\\/") + 1); }

void ExtractBesideBlob(Files& files, const std::vector<PackedEntry>& entries, std::string_view blobPath,
                       NamedBlobs* named) {
  const std::string folder(FolderOf(blobPath));
  const std::string_view blobName = blobPath.substr(folder.size());
  std::unordered_map<std::string, Called> known;
  for (const PackedEntry& entry : entries) {
    if (MeansBlob(files, PathsWithin(entry.name).front(), folder, blobName)) {
      RefuseEntry(blobPath, entry.name, "has the name of the blob itself");
    }
    if (MeansAnother(files, folder, entry, known)) {
      RefuseEntry(blobPath, entry.name, "has the short name of another file");
    }
    RefuseProtectedFile(files, folder, entry, blobPath, named);
  }
  for (const PackedEntry* entry : InWritingOrder(entries)) {
    if (!MeansDevice(*entry)) {
      WriteEntry(files, folder, *entry);
    }
  }
}

}  // namespace parvex
