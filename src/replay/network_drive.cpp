#include "replay/network_drive.h"

#include <utility>

#include "formats/text/letter_case.h"

namespace parvex::replay {
namespace {

constexpr std::string_view kNetwork = "unc";

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsOfNetwork(std::string_view folded) { return folded == "UNC" || folded.starts_with("UNC/"); }

}  // namespace

NetworkDrive::NetworkDrive(const KeptFiles& before, const KeptFiles& after) {
  const auto has = [&](const std::string& folder) {
    return before.folders.contains(folder) || after.folders.contains(folder);
  };
  if (!has("UNC")) {
    return;
  }
  for (char letter = 'Z'; letter >= 'A' && letter_ == 0; --letter) {
    if (!has(std::string("DRIVE_") + letter)) {
      letter_ = letter;
    }
  }
}

std::string NetworkDrive::Path(std::string_view path) const {
  const bool isMoved = letter_ != 0 && path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
  return isMoved ? std::string{letter_, ':'}.append(path.substr(1)) : std::string(path);
}

KeptFiles NetworkDrive::Moved(KeptFiles files) const {
  if (letter_ == 0) {
    return files;
  }
  const auto moved = [&](const std::string& place) {
    return std::string("drive_") + static_cast<char>(letter_ | 0x20) + place.substr(kNetwork.size());
  };
  KeptFiles kept;
  for (auto& [folded, file] : files.files) {
    const bool isMoved = IsOfNetwork(folded);
    file.place = isMoved ? moved(file.place) : file.place;
    kept.files.emplace(FoldName(file.place), std::move(file));
  }
  for (auto& [folded, place] : files.folders) {
    const std::string now = IsOfNetwork(folded) ? moved(place) : place;
    kept.folders.emplace(FoldName(now), now);
  }
  return kept;
}

}  // namespace parvex::replay
