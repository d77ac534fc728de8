#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "recording/recorded_case.h"

namespace parvex::replay {

/// The files of a machine as a record tells them. Keys are their places in a machine folder, folded.
struct KeptFiles {
  struct File {
    std::string place;                      ///< as it was spelled first
    std::optional<std::string_view> bytes;  ///< nothing: the record does not have what it holds
  };
  std::map<std::string, File> files;
  std::map<std::string, std::string> folders;  ///< place by folded place
};

/// The bytes of a case's members by their names, which look into the case.
using Members = std::map<std::string_view, std::string_view>;
Members MembersOf(const recording::RecordedCase& recorded);

/// Before the call: what stands below machine/. Of a record that was never finished also the names that it saw, and the
/// registry that it read. The views look into `recorded` and `made`, which takes what is made for it.
KeptFiles FilesBefore(const recording::RecordedCase& recorded, std::string& made);

/// After it: every file as the last step that tells of it left it. What the call wrote last, in a record that ended
/// before it was looked at, is not known.
KeptFiles FilesAfter(const recording::RecordedCase& recorded, const Members& members, KeptFiles before);

}  // namespace parvex::replay
