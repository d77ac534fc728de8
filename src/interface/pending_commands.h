#pragma once

#include "interface/legacy_link.h"
#include "platform/xml.h"

namespace parvex {

/// The handler of every command that is in the tables but not carried out yet: the failed reply. The tables name it, so
/// what is still missing can be seen there in one look; when the last row is gone, so is this file.
xml::Document AnswerPendingCommand(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
