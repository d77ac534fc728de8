#pragma once

#include <memory>
#include <utility>

#include "journal/crossing_log.h"
#include "seams/message_boxes.h"
#include "seams/message_router.h"
#include "seams/notes.h"

namespace parvex::journal {

// What lies outside of this system, with every use told to a log, as lines of the kinds "router", "messageBox" and
// "note" (docs/journal.md). Answers and errors are the outside's own. Objects that came from one of these may outlive
// it; the outside outlives all.

class WatchedRouters : public MessageRouters {
 public:
  WatchedRouters(MessageRouters& outside, std::shared_ptr<CrossingLog> log) : outside_(outside), log_(std::move(log)) {}

  std::unique_ptr<MessageRouter> Create() override;

 private:
  MessageRouters& outside_;
  std::shared_ptr<CrossingLog> log_;
};

/// One that was there before; null for null.
std::unique_ptr<MessageRouter> WatchRouter(std::unique_ptr<MessageRouter> router, std::shared_ptr<CrossingLog> log);

class WatchedMessageBoxes : public MessageBoxes {
 public:
  WatchedMessageBoxes(MessageBoxes& outside, std::shared_ptr<CrossingLog> log)
      : outside_(outside), log_(std::move(log)) {}

  void Show(std::string_view text, std::string_view caption, Icon icon) override;

 private:
  MessageBoxes& outside_;
  std::shared_ptr<CrossingLog> log_;
};

class WatchedNotes : public Notes {
 public:
  /// `outside` may be null.
  WatchedNotes(Notes* outside, std::shared_ptr<CrossingLog> log) : outside_(outside), log_(std::move(log)) {}

  void Take(std::string_view about, std::string_view text) override;
  void Find(std::string_view text) override;

 private:
  Notes* outside_;
  std::shared_ptr<CrossingLog> log_;
};

}  // namespace parvex::journal
