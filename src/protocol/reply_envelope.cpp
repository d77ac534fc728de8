#include "protocol/reply_envelope.h"

namespace parvex {

xml::Document MakeReplyEnvelope() {
  const xml::Document reply = xml::Document::Parse("<LegacyORLA/>");
  xml::AppendElement(reply.Root(), "returnError", "0");
  xml::AppendElement(reply.Root(), "errorMessage");
  return reply;
}

xml::Document MakeFailedReply() { return MakeFailedReply("Unrecognized or Failed Command"); }

xml::Document MakeFailedReply(std::string_view message) {
  const xml::Document reply = MakeReplyEnvelope();
  reply.First("//returnError").SetText("-1");
  reply.First("//errorMessage").SetText(message);
  return reply;
}

bool IsFailedReply(const xml::Document& reply) {
  if (!reply || reply.IsEmpty() || reply.Root().Name() != "LegacyORLA") {
    return false;
  }
  const xml::Node returnError = reply.Root().Child("returnError");
  return returnError && returnError.Text() == "-1";
}

}  // namespace parvex
