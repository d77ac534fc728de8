#pragma once

#include <memory>
#include <ostream>

#include "seams/platform.h"

namespace parvex::journal {

/// A machine of which everything that crosses to the outside is written down: router requests, late-bound objects,
/// programs, message boxes and the notes that the system takes, one JSON object a line in order of occurrence
/// (docs/journal.md). Nothing else about the machine changes; errors pass through. `outside` and the stream outlive
/// this and every object that came from it.
class JournalledPlatform {
 public:
  JournalledPlatform(const parvex::Platform& outside, std::ostream& out);
  ~JournalledPlatform();
  JournalledPlatform(const JournalledPlatform&) = delete;
  JournalledPlatform& operator=(const JournalledPlatform&) = delete;

  parvex::Platform Platform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::journal
