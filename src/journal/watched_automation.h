#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "journal/crossing_log.h"
#include "seams/automation.h"

namespace parvex::journal {

/// Late-bound objects of which every creation, get, put, call and release is told to a log, as lines of kind
/// "automation" (docs/journal.md). The objects that callers get are stand-ins for the outside's own; they are exchanged
/// for those again where they are passed as arguments, so the outside never sees one. Objects may outlive this.
class WatchedAutomation : public automation::Automation {
 public:
  WatchedAutomation(automation::Automation& outside, std::shared_ptr<CrossingLog> log)
      : outside_(outside), log_(std::move(log)) {}

  automation::ObjectRef Create(std::string_view programmaticId) override;

 private:
  automation::Automation& outside_;
  std::shared_ptr<CrossingLog> log_;
  std::map<std::string, std::size_t, std::less<>> created_;  // objects so far, by programmatic identifier
};

/// The stand-in for an object that was there before; the object itself when it is a stand-in or null.
automation::ObjectRef WatchObject(automation::ObjectRef object, std::string name, std::shared_ptr<CrossingLog> log);

}  // namespace parvex::journal
