#include "adapters/posix/folder_names.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "formats/text/letter_case.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostListings = 64;

bool LeadsSomewhere(const std::string& host) {
  struct stat status;
  return stat(host.c_str(), &status) == 0;
}

std::optional<FileVersion> VersionOfFolder(const std::string& folder) {
  struct stat status;
  return stat(folder.c_str(), &status) == 0 ? std::optional(VersionIn(status)) : std::nullopt;
}

}  // namespace

std::optional<std::string> FolderNames::Find(const std::string& folder, const struct stat& status,
                                             const std::string& name) {
  const Listing* listing = Current(folder, VersionIn(status));
  if (listing == nullptr) {
    return std::nullopt;
  }
  const auto found = listing->names.find(FoldName(name));
  std::optional<std::string> first;
  if (found != listing->names.end()) {
    for (const std::string& candidate : found->second) {
      if ((!first || candidate < *first) && LeadsSomewhere(folder + "/" + candidate)) {
        first = candidate;
      }
    }
  }
  return first;
}

void FolderNames::BeforeChange(const std::string& folder) {
  const auto known = listings_.find(folder);
  if (known != listings_.end() && VersionOfFolder(folder) != known->second.version) {
    listings_.erase(known);
  }
}

void FolderNames::AfterAdding(const std::string& folder, const std::string& name) {
  if (Listing* listing = Noted(folder)) {
    std::vector<std::string>& names = listing->names[FoldName(name)];
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  }
}

void FolderNames::AfterRemoving(const std::string& folder, const std::string& name) {
  if (Listing* listing = Noted(folder)) {
    std::erase(listing->names[FoldName(name)], name);
  }
}

// The listing that holds for this version of the folder; null when it cannot be read.
const FolderNames::Listing* FolderNames::Current(const std::string& folder, const FileVersion& version) {
  const bool isSettled = IsSettled(version);
  const auto known = listings_.find(folder);
  if (known != listings_.end() && known->second.version == version &&
      (known->second.isExact || (known->second.isOurs && !isSettled))) {
    return &known->second;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> reading(opendir(folder.c_str()), closedir);
  if (!reading) {
    return nullptr;
  }
  Listing listing{version, isSettled, false, {}};
  while (const dirent* entry = readdir(reading.get())) {
    listing.names[FoldName(entry->d_name)].emplace_back(entry->d_name);
  }
  if (listings_.size() >= kMostListings) {
    listings_.clear();
  }
  return &(listings_[folder] = std::move(listing));
}

// The listing to note a change of our own in, with the version that the change made; null when there is none.
FolderNames::Listing* FolderNames::Noted(const std::string& folder) {
  const auto known = listings_.find(folder);
  const std::optional<FileVersion> version = known == listings_.end() ? std::nullopt : VersionOfFolder(folder);
  if (!version) {
    return nullptr;
  }
  Listing& listing = known->second;
  listing.isOurs = listing.isExact || listing.isOurs;
  listing.isExact = false;
  listing.version = *version;
  return &listing;
}

}  // namespace parvex::posix
