#include "journal/journalled_automation.h"

#include <cstdint>

#include "journal/journal_lines.h"

namespace parvex::journal {
namespace {

// A line is written when its operation has ended, so what that caused stands before it.
class JournalOfEnds : public CrossingLog {
 public:
  explicit JournalOfEnds(std::ostream& out) : out_(out) {}

  std::uint64_t Begin(const Json&) override { return 0; }
  void End(std::uint64_t, const Json& line, const AutomationError* error) override {
    Json ended = line;
    ended.erase("changed");  // a journal shows arguments as they were passed
    if (error != nullptr) {
      ended["error"] = ErrorJson(*error);
    }
    WriteLine(out_, ended);
  }
  void Note(const Json& line) override { WriteLine(out_, line); }

 private:
  std::ostream& out_;
};

}  // namespace

JournalledAutomation::JournalledAutomation(automation::Automation& outside, std::ostream& out)
    : WatchedAutomation(outside, std::make_shared<JournalOfEnds>(out)) {}

}  // namespace parvex::journal
