#pragma once

#include "adapters/msxml/component_nodes.h"

namespace parvex::xml {

/// Moves a node, with all below it, to the end of the children of `parent`, whose document refuses nodes that it did
/// not make: one of another version of MSXML, of another threading model or of another apartment. A copy is made there
/// and given back, and the node is taken out of its old place. References to nodes below stay with the old tree, so who
/// will write there makes its nodes in the document that they go into.
ComNode MoveByCopy(const ComNode& node, const ComNode& parent);

}  // namespace parvex::xml
