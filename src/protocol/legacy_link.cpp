#include "protocol/legacy_link.h"

#include "protocol/reply_envelope.h"

namespace parvex {

LegacyLink::LegacyLink(const Platform& thePlatform)
    : platform(thePlatform), router(thePlatform.messageRouters->Create()) {}

bool LegacyLink::SendRequestMessage(const std::string& request, std::string& answer) const {
  answer.clear();
  return router->SendRequestMessage(request, answer);
}

xml::Document ForwardAndAcknowledge(const LegacyLink& link, const xml::Document& request) {
  std::string dropped;
  return link.SendRequestMessage(request.Xml(), dropped) ? MakeReplyEnvelope() : MakeFailedReply();
}

}  // namespace parvex
