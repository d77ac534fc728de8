#pragma once

#include <memory>
#include <ostream>

#include "journal/crossing_log.h"

namespace parvex::journal {

/// A log that writes a journal (docs/journal.md): one line a crossing, when it is over, so that what it caused stands
/// before it; of a message box before it opens, which may be for long. The stream outlives the log.
std::shared_ptr<CrossingLog> JournalLog(std::ostream& out);

}  // namespace parvex::journal
