#pragma once

#include <ostream>

#include "journal/watched_automation.h"

namespace parvex::journal {

/// Late-bound objects with every creation, get, put, call and release written to a journal. The stream outlives every
/// object.
class JournalledAutomation : public WatchedAutomation {
 public:
  JournalledAutomation(automation::Automation& outside, std::ostream& out);
};

}  // namespace parvex::journal
