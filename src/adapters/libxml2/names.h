#pragma once

#include <libxml/parser.h>

#include <string_view>

namespace parvex::xml {

/// The dictionary for the names of new documents of this thread.
xmlDict* SharedNames();

/// A name without colon in the document's dictionary, where each name stands once; null when it is no such name.
const xmlChar* PlainName(xmlDoc* document, std::string_view name);

}  // namespace parvex::xml
