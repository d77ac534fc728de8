#pragma once

#include <memory>
#include <string>

namespace parvex {

/// A component of the installed application that takes a request as text and gives back an answer and a success flag.
class MessageRouter {
 public:
  virtual ~MessageRouter() = default;
  /// True when the request was carried out; `response` then, and possibly also otherwise, holds the answer. A call that
  /// fails on its way is an AutomationError.
  virtual bool SendRequestMessage(const std::string& request, std::string& response) = 0;
};

class MessageRouters {
 public:
  virtual ~MessageRouters() = default;
  /// Creates a router; an AutomationError when the component is not registered or does not start.
  virtual std::unique_ptr<MessageRouter> Create() = 0;
};

}  // namespace parvex
