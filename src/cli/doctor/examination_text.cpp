#include "cli/doctor/examination_text.h"

#include <algorithm>

#include "cli/terminal/colours.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

using State = Finding::State;

constexpr std::size_t kStateWidth = 11;
constexpr std::size_t kNameWidth = 21;

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

std::string Padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

// Below what was found.
std::string Continued(const std::string& text) {
  return text.empty() ? "" : std::string(kStateWidth + kNameWidth, ' ') + text + "\n";
}

std::string Totals(const std::vector<Finding>& findings) {
  return "\n" + std::to_string(CountOf(findings, State::Failure)) + " failed, " +
         std::to_string(CountOf(findings, State::Warning)) + " with a warning, of " + std::to_string(findings.size()) +
         " checks\n";
}

}  // namespace

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

std::size_t CountOf(const std::vector<Finding>& findings, State state) {
  return static_cast<std::size_t>(std::ranges::count(findings, state, &Finding::state));
}

std::string AsTable(const std::vector<Finding>& findings, bool takesColours) {
  std::string text;
  for (const Finding& finding : findings) {
    text += Coloured(Padded(NameOf(finding.state), kStateWidth), ColourOf(finding.state), takesColours);
    text += Padded(finding.name, kNameWidth) + Printable(finding.detail.Full()) + "\n";
    text += Continued(finding.hint) + Continued(Printable(finding.command));
  }
  return text + Totals(findings);
}

std::string AsReport(const std::vector<Finding>& findings, const std::vector<MachineLook::PrivateFolder>& folders) {
  std::string text =
      "parvex doctor --report: names of people, computers, projects and customers are left out (\"...\").\n\n";
  for (const Finding& finding : findings) {
    text += Padded(NameOf(finding.state), kStateWidth) + Padded(finding.name, kNameWidth) +
            Printable(finding.detail.Shared(folders)) + "\n";
  }
  return text + Totals(findings);
}

}  // namespace parvex::cli
