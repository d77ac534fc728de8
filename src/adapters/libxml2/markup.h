#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "adapters/libxml2/encoding.h"
#include "adapters/libxml2/tree.h"

namespace parvex::xml {

using TakeMarkup = std::function<void(std::string_view piece)>;

/// The markup of a node on one line: `<A/>` for an empty element; CR LF behind a document that has a root; the
/// declaration without encoding.
std::string MarkupOf(xmlNode* node);

/// The same of a document, in pieces of some 128 KB, or of one text that is longer. What `take` throws ends it.
void WriteMarkup(xmlNode* document, const TakeMarkup& take);

/// The markup of all that is below a node.
std::string MarkupBelow(xmlNode* node);

/// The document's markup with an encoding in its declaration (none when `encodingName` is empty), in UTF-8, for
/// `encoding`: characters that it lacks are references in texts, CDATA sections and attribute values. Nothing in the
/// document is folded unless the encoding has all characters.
std::string MarkupFor(xmlDoc* document, Encoding& encoding, const std::string& encodingName);

}  // namespace parvex::xml
