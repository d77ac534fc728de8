#pragma once

#include <optional>
#include <string>

#include "adapters/msxml/component_nodes.h"

namespace parvex::xml {

/// The markup of a document that is not empty and has no declaration, with CR LF at its end. The component saves it
/// into a stream, as UTF-8, in time that grows with its length. The text of `xml` Wine makes in time that grows with
/// the square (3 s for 15 MB), and lays it out anew. Null when the document cannot be saved so.
std::optional<std::string> MarkupByStream(const ComDocument& document);

}  // namespace parvex::xml
