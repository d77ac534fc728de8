#pragma once

#include <string_view>
#include <vector>

#include "adapters/libxml2/tree.h"

namespace parvex::xml {

/// The nodes that an XPath expression selects from `start`, in document order. From a node without parent, relative
/// expressions see its own tree only; absolute ones begin at its document. An expression that is not valid, or whose
/// value is not a set of nodes, raises InvalidCall and is quoted.
std::vector<xmlNode*> Select(xmlNode* start, std::string_view expression);

}  // namespace parvex::xml
