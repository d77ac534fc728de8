#include "adapters/posix/folder_names.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <utility>

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

void FolderNames::BeforeChange(const std::string& folder, const struct stat& status) {
  const auto known = listings_.find(folder);
  if (known != listings_.end() && VersionIn(status) != known->second.version) {
    known->second = {.version = VersionIn(status)};
  }
}

void FolderNames::AfterAdding(const std::string& folder, const std::string& name) {
  if (Listing* listing = Noted(folder)) {
    listing->isRead = false;  // until the name stands in it: there may be no memory for it
    std::vector<std::string>& names = listing->names[FoldName(name)];
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
    listing->isRead = true;
  }
}

void FolderNames::AfterRemoving(const std::string& folder, const std::string& name) {
  if (Listing* listing = Noted(folder)) {
    const auto found = listing->names.find(FoldName(name));
    if (found != listing->names.end()) {
      std::erase(found->second, name);
    }
  }
}

void FolderNames::Made(const std::string& folder) {
  if (const std::optional<FileVersion> version = VersionOfFolder(folder)) {
    Keep(folder, {.version = *version, .isOurs = true, .isRead = true});
  }
}

bool FolderNames::Listing::Holds(const FileVersion& now) const {
  return version == now && isRead && (isExact || (isOurs && !IsSettled(now)));
}

// The listing that holds for this version of the folder; null when it cannot be read.
const FolderNames::Listing* FolderNames::Current(const std::string& folder, const FileVersion& version) {
  const bool isSettled = IsSettled(version);
  const auto known = listings_.find(folder);
  if (known != listings_.end() && known->second.Holds(version)) {
    known->second.lastUse = ++uses_;
    return &known->second;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> reading(opendir(folder.c_str()), closedir);
  if (!reading) {
    return nullptr;
  }
  const bool isOurs = known != listings_.end() && known->second.isOurs && known->second.version == version;
  Listing listing{.version = version, .isExact = isSettled, .isOurs = isOurs, .isRead = true};
  while (const dirent* entry = readdir(reading.get())) {
    listing.names[FoldName(entry->d_name)].emplace_back(entry->d_name);
  }
  return Keep(folder, std::move(listing));
}

// In place of the one that was used longest ago, when there are enough.
const FolderNames::Listing* FolderNames::Keep(const std::string& folder, Listing listing) {
  if (listings_.size() >= kMostListings && !listings_.contains(folder)) {
    listings_.erase(std::min_element(listings_.begin(), listings_.end(),
                                     [](const auto& a, const auto& b) { return a.second.lastUse < b.second.lastUse; }));
  }
  listing.lastUse = ++uses_;
  return &(listings_[folder] = std::move(listing));
}

// The listing to note a change of our own in, with the version that the change made; null when there is none. One that
// was read so soon after another program's change that more of those may have followed unseen is read once more.
FolderNames::Listing* FolderNames::Noted(const std::string& folder) {
  const auto known = listings_.find(folder);
  const std::optional<FileVersion> version = known == listings_.end() ? std::nullopt : VersionOfFolder(folder);
  if (!version) {
    return nullptr;
  }
  Listing& listing = known->second;
  listing.isRead = listing.isRead && (listing.isExact || listing.isOurs);
  listing.isOurs = true;
  listing.isExact = false;
  listing.version = *version;
  listing.lastUse = ++uses_;
  return listing.isRead ? &listing : nullptr;
}

}  // namespace parvex::posix
