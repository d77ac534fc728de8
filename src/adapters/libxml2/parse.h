#pragma once

#include <string>
#include <string_view>

#include "adapters/libxml2/tree.h"

namespace parvex::xml {

/// A new document, without a handle, with the content of a UTF-8 text; empty and with a parse error when the text does
/// not parse. The text's declaration only tells what is kept as the document's encoding.
///
/// Nothing outside the text is ever read: no external entity, no external subset, no network. Entities that the text
/// declares are expanded when they are plain text, up to a bound in all; a reference to any other is a parse error, as
/// are parameter entities, what passes the bounds of formats/text/markup_bounds.h, and texts of 2 GB.
UnheldDocument ParseText(std::string_view text);

/// An empty document with that parse error.
UnheldDocument FailedDocument(const std::string& error);

}  // namespace parvex::xml
