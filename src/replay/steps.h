#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recording/recorded_case.h"
#include "replay/json_members.h"

namespace parvex::replay {

/// A file that the record says was left or changed at some moment.
struct FileChange {
  std::string path;
  std::string member;  ///< of the case, where the new content is; empty for a file that has gone
};

/// A step of the journal that a call that is done again has to ask for.
struct Step {
  std::uint64_t number = 0;
  Json asked;                             ///< the line before it
  Json answered;                          ///< the line after it; null for a step that never came back
  std::vector<FileChange> left;           ///< by a program, which ended here
  std::vector<FileChange> changedBehind;  ///< by somebody else, after this step and before the next
};

/// The steps of a record in order. What only looks (questions about files, readings, the registry), notes, and the
/// dropping of late-bound objects are none: a call that looks again in another way does the same.
struct Steps {
  std::vector<FileChange> changedBefore;  ///< by somebody else, before the first step
  std::vector<Step> steps;
};
Steps StepsOf(const recording::RecordedCase& recorded);

/// Whether a step is asked for that is the recorded one: everything that the outside is given is the same.
bool IsSame(const Json& recorded, const Json& asked);
/// Whether the two at least concern one thing: a router, one member of one object, one file.
bool ConcernSame(const Json& recorded, const Json& asked);

/// A step in a few words: "router", "KDQU470.CKDBuilder call Open", "ini write C:\a.ini [Header] Action".
std::string NameOfStep(const Json& line);
/// What it gives to the outside, as text.
std::string TextOfStep(const Json& line);

}  // namespace parvex::replay
