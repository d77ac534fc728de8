#include "interface/pending_commands.h"

#include "interface/reply_envelope.h"

namespace parvex {

xml::Document AnswerPendingCommand(LegacyLink&, const xml::Document&) { return MakeFailedReply(); }

}  // namespace parvex
