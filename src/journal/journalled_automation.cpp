#include "journal/journalled_automation.h"

#include "journal/journal_log.h"

namespace parvex::journal {

JournalledAutomation::JournalledAutomation(automation::Automation& outside, std::ostream& out)
    : WatchedAutomation(outside, JournalLog(out)) {}

}  // namespace parvex::journal
