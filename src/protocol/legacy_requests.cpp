#include "protocol/legacy_requests.h"

#include <charconv>
#include <cmath>

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex {

bool Ask(const LegacyLink& link, const xml::Document& request, xml::Document& answer) {
  std::string text;
  const bool carriedOut = link.SendRequestMessage(request.Xml(), text);
  answer = carriedOut ? ReadAnswer(link, GetCommandName(request), text, carriedOut) : xml::Document();
  return carriedOut;
}

xml::Document ReadAnswer(const LegacyLink& link, std::string_view request, const std::string& text, bool carriedOut) {
  xml::Document answer = xml::Document::Parse(text);
  if (carriedOut && answer.IsEmpty() && link.platform.notes != nullptr) {
    link.platform.notes->Take(kRouterNotes, "its answer to " + std::string(request) + " is no XML document: " +
                                                (text.empty() ? "it is empty" : answer.ParseError()));
  }
  return answer;
}

bool StatusMeansTrue(std::string_view status) {
  const std::string_view trimmed = TrimBlanks(status);
  if (EqualIgnoringCase(trimmed, "True")) {
    return true;
  }
  if (EqualIgnoringCase(trimmed, "False")) {
    return false;
  }
  // from_chars takes no plus sign, and takes "inf" and "nan" for numbers.
  const std::string_view digits = trimmed.substr(trimmed.starts_with('+') && !trimmed.starts_with("+-") ? 1 : 0);
  double number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number)) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch,
                           "STATUS \"" + std::string(status) + "\" of the legacy application's answer is no yes or no");
  }
  return number != 0;
}

}  // namespace parvex
