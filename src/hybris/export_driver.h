#pragma once

#include <string_view>

#include "protocol/legacy_link.h"
#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

// The export: the units that the quote builder selected become one Hybris document. Failures with a reason of their
// own, an unreadable BinPath and a cancelled run, are answered with the failed reply; everything else ends the command
// with an error.

/// Handler of getHybrisXML: the user selects in the quote builder. The command carries nothing.
xml::Document GetHybrisXML(LegacyLink& link, const xml::Document& command);

/// Handler of getHybrisXMLNoUI: the command carries the selection (UserSelectionTransfer) and the project's name.
xml::Document GetHybrisXMLNoUI(LegacyLink& link, const xml::Document& command);

/// The Hybris document of all tags in the quote builder's output file, a path of the machine.
xml::Document BuildHybrisTagDocument(const Platform& platform, std::string_view qbOutputFile,
                                     std::string_view projectName);

}  // namespace parvex
