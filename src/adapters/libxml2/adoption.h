#pragma once

#include <libxml/tree.h>

namespace parvex::xml {

/// The document's own copy of a namespace.
xmlNs* OwnNamespace(xmlDoc* document, const xmlNs* original);

/// Makes a node, wherever it is, the last child of `parent`, also across documents.
void Move(xmlNode* node, xmlNode* parent);

}  // namespace parvex::xml
