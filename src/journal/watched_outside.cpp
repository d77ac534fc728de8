#include "journal/watched_outside.h"

#include <string>

#include "journal/journal_lines.h"

namespace parvex::journal {
namespace {

class WatchedRouter : public MessageRouter {
 public:
  WatchedRouter(std::unique_ptr<MessageRouter> outside, std::shared_ptr<CrossingLog> log)
      : outside_(std::move(outside)), log_(std::move(log)) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override {
    return Watch(*log_, {{"kind", "router"}, {"request", request}}, [&](Json& line) {
      const bool success = outside_->SendRequestMessage(request, response);
      line["answer"] = response;
      line["success"] = success;
      return success;
    });
  }

 private:
  std::unique_ptr<MessageRouter> outside_;
  std::shared_ptr<CrossingLog> log_;
};

}  // namespace

std::unique_ptr<MessageRouter> WatchedRouters::Create() { return WatchRouter(outside_.Create(), log_); }

std::unique_ptr<MessageRouter> WatchRouter(std::unique_ptr<MessageRouter> router, std::shared_ptr<CrossingLog> log) {
  return router == nullptr ? nullptr : std::make_unique<WatchedRouter>(std::move(router), std::move(log));
}

void WatchedMessageBoxes::Show(std::string_view text, std::string_view caption, Icon icon) {
  Watch(*log_, MessageBoxJson(text, caption, icon), [&](Json&) {
    outside_.Show(text, caption, icon);
    return true;
  });
}

void WatchedNotes::Take(std::string_view about, std::string_view text) {
  log_->Note(NoteJson(about, text));
  if (outside_ != nullptr) {
    outside_->Take(about, text);
  }
}

void WatchedNotes::Find(std::string_view text) {
  log_->Note(FindingJson(text));
  if (outside_ != nullptr) {
    outside_->Find(text);
  }
}

}  // namespace parvex::journal
