#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// Tags are renamed, copied and deleted by the legacy application's own extended commands. New names are made unique
// first; the rename and copy requests carry the root element of TagUpdateInfo.xml of the program folder as parameter
// `data`.

xml::Document RenameTag(LegacyLink& link, const xml::Document& command);
/// Within the project when destinationProject is missing, empty or the project itself.
xml::Document CopyTag(LegacyLink& link, const xml::Document& command);
xml::Document DeleteTag(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
