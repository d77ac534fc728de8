#include "hybris/blob_folder.h"

#include <algorithm>
#include <string>

#include "formats/text/text.h"

namespace parvex {
namespace {

// Whether a name beside the blob means the blob. Only the folder's listing knows which letters beyond Latin-1 count as
// the same, and which file has the short name that the blob may be called by.
bool MeansBlob(Files& files, std::string_view name, const std::string& folder, std::string_view blobName) {
  if (EqualIgnoringCase(name, blobName.substr(0, blobName.find_last_not_of(". ") + 1))) {
    return true;
  }
  const auto plain = [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '~'; };
  if (std::all_of(name.begin(), name.end(), plain) && std::all_of(blobName.begin(), blobName.end(), plain)) {
    return false;
  }
  const std::string path = folder + std::string(name);
  return files.IsFile(path) && files.ListFiles(path) == files.ListFiles(folder + std::string(blobName));
}

}  // namespace

std::string_view FolderOf(std::string_view path) { return path.substr(0, path.find_last_of("\\/") + 1); }

void ExtractBesideBlob(Files& files, const std::vector<PackedEntry>& entries, std::string_view blobPath) {
  const std::string folder(FolderOf(blobPath));
  const std::string_view blobName = blobPath.substr(folder.size());
  for (const PackedEntry& entry : entries) {
    const std::string_view topmost = std::string_view(entry.name).substr(0, entry.name.find('\\'));
    if (MeansBlob(files, topmost, folder, blobName)) {
      RefuseEntry(blobPath, entry.name, "has the name of the blob itself");
    }
  }
  for (const PackedEntry& entry : entries) {
    const std::string path = folder + entry.name;
    if (entry.isFolder) {
      files.CreateFolder(path);
      continue;
    }
    if (entry.name.find('\\') != std::string::npos) {
      files.CreateFolder(FolderOf(path));
    }
    files.Replace(path, entry.bytes);
  }
}

}  // namespace parvex
