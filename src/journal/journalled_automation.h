#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <ostream>
#include <string>

#include "seams/automation.h"

namespace parvex::journal {

/// Late-bound objects with every creation, get, put, call and release written to a journal. The objects that callers
/// get are stand-ins for the outside's own; they are exchanged for those again where they are passed as arguments, so
/// the outside never sees one. The stream outlives every object.
class JournalledAutomation : public automation::Automation {
 public:
  JournalledAutomation(automation::Automation& outside, std::ostream& out) : outside_(outside), out_(out) {}

  automation::ObjectRef Create(std::string_view programmaticId) override;

 private:
  automation::Automation& outside_;
  std::ostream& out_;
  std::map<std::string, std::size_t, std::less<>> created_;  // objects so far, by programmatic identifier
};

}  // namespace parvex::journal
