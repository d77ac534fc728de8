#pragma once

#include <string_view>

#include "seams/xml.h"

namespace parvex {

// The answer to a command that no document of the legacy application answers: root LegacyORLA, first child returnError
// ("0" or "-1"), second child errorMessage. Handlers that return data append it behind these two.

/// returnError "0", errorMessage empty.
xml::Document MakeReplyEnvelope();
/// returnError "-1", errorMessage "Unrecognized or Failed Command".
xml::Document MakeFailedReply();
/// The failed reply with a message of its own.
xml::Document MakeFailedReply(std::string_view message);

/// Whether a document is a reply envelope whose returnError is "-1".
bool IsFailedReply(const xml::Document& reply);

}  // namespace parvex
