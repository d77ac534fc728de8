#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "seams/message_router.h"

namespace parvex::journal {

/// A message router that answers from the `router` lines of a journal, in order and one line a request, whichever of
/// its routers is asked. A line without `request` answers any request; one with `request` only what says the same as
/// XML (xml_difference.h), and of other text the very same. A request that has no line left, or meets a line with
/// another request (which is used up by it), is an AutomationError (5) that shows what was expected and what came. A
/// line with an `error` raises that error.
class ReplayRouters : public MessageRouters {
 public:
  /// The lines of a journal; its other kinds of lines are passed over, as are empty lines. `fileName` stands in errors.
  /// A line that cannot be understood is an AutomationError (13) that names its number and what is wrong with it.
  ReplayRouters(std::string_view journal, std::string fileName);
  ~ReplayRouters() override;
  ReplayRouters(const ReplayRouters&) = delete;
  ReplayRouters& operator=(const ReplayRouters&) = delete;

  std::unique_ptr<MessageRouter> Create() override;

  /// The `router` lines that no request has met so far.
  struct Unused {
    std::size_t count = 0;
    std::size_t lineNumber = 0;          ///< of the first, from 1
    std::optional<std::string> request;  ///< that the first waits for; none when it answers any
  };
  /// Nothing when all were used.
  std::optional<Unused> Left() const;

 private:
  class Script;
  class Router;
  std::shared_ptr<Script> script_;
};

}  // namespace parvex::journal
