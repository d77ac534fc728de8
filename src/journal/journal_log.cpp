#include "journal/journal_log.h"

#include <cstdint>

#include "journal/journal_lines.h"

namespace parvex::journal {
namespace {

bool IsOfKind(const Json& line, const char* kind) { return line.at("kind") == kind; }

class JournalOfEnds : public CrossingLog {
 public:
  explicit JournalOfEnds(std::ostream& out) : out_(out) {}

  std::uint64_t Begin(const Json& line) override {
    if (IsOfKind(line, "messageBox")) {
      WriteLine(out_, line);
    }
    return 0;
  }

  void End(std::uint64_t, const Json& line, const AutomationError* error) override {
    if (IsOfKind(line, "messageBox")) {
      return;
    }
    Json ended = line;
    ended.erase("changed");  // a journal shows arguments as they were passed
    if (IsOfKind(line, "router") && !line.contains("answer")) {
      ended["answer"] = "";
      ended["success"] = false;
    }
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

std::shared_ptr<CrossingLog> JournalLog(std::ostream& out) { return std::make_shared<JournalOfEnds>(out); }

}  // namespace parvex::journal
