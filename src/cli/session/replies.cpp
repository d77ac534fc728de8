#include "cli/session/replies.h"

#include <cstdio>

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
  std::fprintf(stderr, "parvex: %s%sautomation error 0x%08X, %s: %s\n", subject.c_str(), subject.empty() ? "" : ": ",
               static_cast<unsigned>(error.Number()), error.Source().c_str(), error.Description().c_str());
}

}  // namespace parvex::cli
