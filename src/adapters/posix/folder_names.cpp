#include "adapters/posix/folder_names.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "formats/text/letter_case.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostListings = 64;
constexpr std::chrono::milliseconds kSettled{50};

bool LeadsSomewhere(const std::string& host) {
  struct stat status;
  return stat(host.c_str(), &status) == 0;
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
  if (known != listings_.end() && VersionOf(folder) != known->second.version) {
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

std::optional<FolderNames::Version> FolderNames::VersionOf(const std::string& folder) {
  struct stat status;
  if (stat(folder.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return VersionIn(status);
}

FolderNames::Version FolderNames::VersionIn(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_mtim.tv_sec * 1'000'000'000ll + status.st_mtim.tv_nsec};
}

bool FolderNames::IsSettled(const Version& version) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return now - std::chrono::nanoseconds(version.modifiedNanoseconds) > kSettled;
}

// The listing that holds for this version of the folder; null when it cannot be read.
const FolderNames::Listing* FolderNames::Current(const std::string& folder, const Version& version) {
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
  const std::optional<Version> version = known == listings_.end() ? std::nullopt : VersionOf(folder);
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
