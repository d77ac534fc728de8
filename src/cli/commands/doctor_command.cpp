#include "cli/commands/doctor_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/doctor/machine_checks.h"
#include "cli/terminal/colours.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {
namespace {

using State = Finding::State;

std::string NameOf(State state) {
  switch (state) {
    case State::Ok:
      return "ok";
    case State::Warning:
      return "warning";
    case State::Failure:
      return "failure";
    case State::Unchecked:
      return "unchecked";
  }
  return {};
}

Colour ColourOf(State state) {
  switch (state) {
    case State::Ok:
      return Colour::Green;
    case State::Failure:
      return Colour::Red;
    default:
      return Colour::Yellow;
  }
}

std::ptrdiff_t Count(const std::vector<Finding>& findings, State state) {
  return std::ranges::count(findings, state, &Finding::state);
}

std::string Padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string AsTable(const std::vector<Finding>& findings, bool takesColours) {
  constexpr std::size_t kStateWidth = 11;
  constexpr std::size_t kNameWidth = 21;
  std::string text;
  for (const Finding& finding : findings) {
    text += Coloured(Padded(NameOf(finding.state), kStateWidth), ColourOf(finding.state), takesColours);
    text += Padded(finding.name, kNameWidth) + Printable(finding.detail) + "\n";
    if (!finding.hint.empty()) {
      text += std::string(kStateWidth, ' ') + Padded("", kNameWidth) + finding.hint + "\n";
    }
  }
  return text + "\n" + std::to_string(Count(findings, State::Failure)) + " failed, " +
         std::to_string(Count(findings, State::Warning)) + " with a warning, of " + std::to_string(findings.size()) +
         " checks\n";
}

std::string AsJson(const std::vector<Finding>& findings) {
  nlohmann::ordered_json checks = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    checks.push_back(
        {{"name", finding.name}, {"state", NameOf(finding.state)}, {"detail", finding.detail}, {"hint", finding.hint}});
  }
  const nlohmann::ordered_json all = {
      {"checks", checks}, {"failures", Count(findings, State::Failure)}, {"warnings", Count(findings, State::Warning)}};
  return all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

ExitStatus Doctor(const SessionOptions& sessionOptions, bool asJson) {
  Session session(sessionOptions);
  const std::vector<Finding> findings = ExamineMachine(session.Platform(), session.Settings(), Host::Facts());
  session.Close();
  WriteText(asJson ? EscapedJson(AsJson(findings)) : AsTable(findings, TakesColours(stdout)));
  return Count(findings, State::Failure) > 0 ? kFailedReply : kReply;
}

}  // namespace parvex::cli
