#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

/// The way back: decodes the BLOB of a Hybris tag document, which lies in the command's parameters, into
/// "\Temp\QPblob.tmp" of the data root, and leaves the hand-over "\Temp\input.ini" beside it for the legacy
/// application.
///
/// A document without PDSG or BLOB is answered with the failed reply and a message box; earlier files stay. A success
/// shows one message box for each component of the document, once for every base unit. Failures to write are
/// AutomationErrors.
xml::Document ReturnTagToLegacy(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
