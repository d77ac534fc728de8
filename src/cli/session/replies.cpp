#include "cli/session/replies.h"

#include <cstdio>

#include "cli/terminal/standard_streams.h"
#include "protocol/reply_envelope.h"
#include "seams/xml.h"

namespace parvex::cli {

std::optional<std::string> FailureIn(const std::string& reply) {
  if (!reply.starts_with("<LegacyORLA")) {
    return std::nullopt;
  }
  const xml::Document envelope = xml::Document::Parse(reply);
  if (!IsFailedReply(envelope)) {
    return std::nullopt;
  }
  const xml::Node message = envelope.Root().Child("errorMessage");
  return message ? message.Text() : std::string();
}

void ReportError(const std::string& subject, const AutomationError& error) {
  char number[16];
  std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(error.Number()));
  TellError(subject + (subject.empty() ? "" : ": ") + "automation error " + number + ", " + error.Source() + ": " +
            error.Description());
}

}  // namespace parvex::cli
