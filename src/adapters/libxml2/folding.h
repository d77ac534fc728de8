#pragma once

#include <libxml/tree.h>

#include "adapters/libxml2/document_state.h"

namespace parvex::xml {

// Elements whose content is complete may be folded: what is below them is then kept as markup, in a tenth of the
// memory, and given back its nodes when somebody looks for them. A folded element has no children, and its markup
// stands where a text has its content.
//
// Only what reads as the same nodes again is folded: no namespaces, no comments, no text that a parser would drop, join
// or change. Nobody can tell a folded element from another.

inline bool IsFolded(const xmlNode* node) { return IsElement(node) && (node->extra & kFolded) != 0; }

/// Folds an element. Leaves it as it is when somebody holds a node below it, when its markup would read otherwise, when
/// its document was searched by an expression (so that nothing is folded and unfolded time and again), and when so much
/// is below it that its nodes are no longer in the processor's cache. Throws std::bad_alloc; nothing has changed then.
void Fold(xmlNode* element);

/// Gives a folded element its nodes back; leaves every other node as it is.
void Unfold(xmlNode* node);
/// The same for a node and everything below it.
void UnfoldTree(xmlNode* top);
/// The same for all nodes of a document, those without parent too, which is not folded any more from then on.
void UnfoldForSearch(xmlDoc* document);

}  // namespace parvex::xml
