#include "journal/replay_routers.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "formats/json/bounded_json.h"
#include "journal/journal_lines.h"
#include "journal/xml_difference.h"
#include "seams/automation_error.h"

namespace parvex::journal {
namespace {

struct Exchange {
  std::size_t lineNumber = 0;
  std::optional<std::string> request;
  std::string answer;
  bool success = true;
  std::optional<AutomationError> error;
};

Exchange ReadExchange(const Json& line, std::size_t lineNumber) {
  Exchange exchange;
  exchange.lineNumber = lineNumber;
  if (line.contains("request")) {
    exchange.request = line["request"].get<std::string>();
  }
  exchange.answer = line.value("answer", exchange.answer);
  exchange.success = line.value("success", exchange.success);
  if (line.contains("error")) {
    exchange.error = ErrorFromJson(line["error"]);
  }
  return exchange;
}

bool IsRouterLine(const Json& line) {
  const std::string kind = line.at("kind").get<std::string>();
  constexpr std::string_view kOthers[] = {"automation", "processStart", "process", "messageBox", "note", "finding"};
  if (kind != "router" && std::ranges::find(kOthers, kind) == std::end(kOthers)) {
    throw std::invalid_argument("unknown kind \"" + kind + "\"");
  }
  return kind == "router";
}

std::vector<Exchange> ReadExchanges(std::string_view journal, const std::string& fileName) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  journal.remove_prefix(journal.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  std::vector<Exchange> exchanges;
  for (std::size_t number = 1; !journal.empty(); ++number) {
    const std::size_t end = std::min(journal.find('\n'), journal.size());
    const std::string_view text = journal.substr(0, end);
    journal.remove_prefix(std::min(end + 1, journal.size()));
    if (text.find_first_not_of(" \t\r") == std::string_view::npos) {
      continue;
    }
    try {
      const Json line = ParseBoundedJson(text);
      if (IsRouterLine(line)) {
        exchanges.push_back(ReadExchange(line, number));
      }
    } catch (const std::exception& reason) {
      throw MakeRuntimeError(RuntimeError::TypeMismatch,
                             fileName + " line " + std::to_string(number) + " is no journal line: " + reason.what());
    }
  }
  return exchanges;
}

}  // namespace

class ReplayRouters::Script {
 public:
  Script(std::vector<Exchange> exchanges, std::string fileName)
      : exchanges_(std::move(exchanges)), fileName_(std::move(fileName)) {}

  bool Answer(const std::string& request, std::string& response) {
    if (next_ == exchanges_.size()) {
      throw MakeRuntimeError(RuntimeError::InvalidCall,
                             fileName_ + " has no router line left. Expected: no request. Actual: " + request);
    }
    const Exchange& exchange = exchanges_[next_++];
    if (exchange.request && FirstXmlDifference(*exchange.request, request)) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, fileName_ + " line " + std::to_string(exchange.lineNumber) +
                                                            " answers another request. Expected: " + *exchange.request +
                                                            " Actual: " + request);
    }
    if (exchange.error) {
      throw *exchange.error;
    }
    response = exchange.answer;
    return exchange.success;
  }

  std::optional<Unused> Left() const {
    if (next_ == exchanges_.size()) {
      return std::nullopt;
    }
    const Exchange& first = exchanges_[next_];
    return Unused{exchanges_.size() - next_, first.lineNumber, first.request};
  }

 private:
  const std::vector<Exchange> exchanges_;
  const std::string fileName_;
  std::size_t next_ = 0;
};

class ReplayRouters::Router : public MessageRouter {
 public:
  explicit Router(std::shared_ptr<Script> script) : script_(std::move(script)) {}
  bool SendRequestMessage(const std::string& request, std::string& response) override {
    return script_->Answer(request, response);
  }

 private:
  std::shared_ptr<Script> script_;
};

ReplayRouters::ReplayRouters(std::string_view journal, std::string fileName)
    : script_(std::make_shared<Script>(ReadExchanges(journal, fileName), std::move(fileName))) {}

ReplayRouters::~ReplayRouters() = default;

std::optional<ReplayRouters::Unused> ReplayRouters::Left() const { return script_->Left(); }

std::unique_ptr<MessageRouter> ReplayRouters::Create() { return std::make_unique<Router>(script_); }

}  // namespace parvex::journal
