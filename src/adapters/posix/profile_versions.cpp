#include "adapters/posix/profile_versions.h"

#include "adapters/posix/file_version.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostHosts = 16;

}  // namespace

std::optional<ini::ProfileVersions::Seen> HostFileVersions::Look(const std::string& file) {
  const std::int64_t now = NowInNanoseconds();
  const auto known = hosts_.find(file);
  std::optional<FileVersion> version = known == hosts_.end() ? std::nullopt : VersionOf(known->second);
  if (!version) {
    const std::optional<std::filesystem::path> host = folder_.Resolve(file);
    version = host ? VersionOf(*host) : std::nullopt;
    if (!version) {
      return std::nullopt;
    }
    if (hosts_.size() == kMostHosts) {
      hosts_.clear();
    }
    hosts_[file] = *host;
  }
  const auto mark = [](auto number) { return static_cast<std::uint64_t>(number); };
  return Seen{{{version->device, version->inode, mark(version->modifiedNanoseconds), mark(version->changedNanoseconds)},
               mark(version->size)},
              IsSettled(*version, now)};
}

}  // namespace parvex::posix
