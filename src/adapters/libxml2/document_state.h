#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/libxml2/node_arena.h"

// The trees behind the handles of seams/xml.h, and who owns what in them.
//
// - A handle is a pointer to a node of the tree. `_private` of a node counts the handles on it; `_private` of a
//   document points to its DocumentState, which counts the handles on all of its nodes. With the last of them the
//   document goes.
// - A node without parent (new, removed, cloned, or displaced while somebody holds it) hangs under `limbo`, a fragment
//   that belongs to the document without being part of it, so every node is always freed by its document at the latest.
//   When the last handle on such a node is dropped and nobody holds anything inside it, it is freed at once. (A tree of
//   which only an inner node was held stays in limbo until the document goes.)
// - Namespaces that nodes refer to belong to the document, not to the element that declares them, so a node can leave
//   its ancestors without dangling. Declarations on elements are kept beside, as what was written.
// - All nodes but the DOCTYPE, and the texts in them, lie in an arena of the document; where nodes moved between
//   documents, these share one. None of them may be given to the library to be freed.
// - A text node ends before the fields that only elements have; a short text stands in their place.
// - Element and attribute names are interned in a dictionary that the documents of a thread share. Nodes of documents
//   with different dictionaries get their names copied when they move.

namespace parvex::xml {

struct DocumentState {
  using Prefixed = std::pair<std::string, std::string>;  // prefix, name

  std::size_t handles = 0;
  xmlNode* limbo = nullptr;
  SharedArena arena;
  std::map<Prefixed, xmlNs*> namespaces;
  /// About how long the document's markup is: what was put into it so far. Room is taken for that much at once.
  std::size_t markupGuess = 0;
  /// Whether an element may be folded (folding.h), and whether the document was searched by an expression.
  bool mayHaveFolded = false;
  bool isSearched = false;
  /// The encoding that the declaration names, as written.
  std::string encoding;
  std::string parseError;
};

/// White space that was dropped on load reads as one blank in the text of an ancestor; these bits of xmlNode::extra
/// remember where it stood.
inline constexpr unsigned short kBlankAfter = 1;   ///< behind the node
inline constexpr unsigned short kBlankInside = 2;  ///< before the element's first child
/// Another bit there: the element is folded (folding.h).
inline constexpr unsigned short kFolded = 4;

inline std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view{} : std::string_view(reinterpret_cast<const char*>(text));
}
inline const xmlChar* Chars(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// The library's documents, attributes and document types begin like its nodes, and are taken for nodes here.
template <class T>
inline constexpr bool kBeginsLikeNode = offsetof(T, _private) == offsetof(xmlNode, _private) &&
                                        offsetof(T, type) == offsetof(xmlNode, type) &&
                                        offsetof(T, name) == offsetof(xmlNode, name) &&
                                        offsetof(T, children) == offsetof(xmlNode, children) &&
                                        offsetof(T, last) == offsetof(xmlNode, last) &&
                                        offsetof(T, parent) == offsetof(xmlNode, parent) &&
                                        offsetof(T, next) == offsetof(xmlNode, next) &&
                                        offsetof(T, prev) == offsetof(xmlNode, prev) &&
                                        offsetof(T, doc) == offsetof(xmlNode, doc);
static_assert(kBeginsLikeNode<xmlAttr> && kBeginsLikeNode<xmlDtd> && kBeginsLikeNode<xmlEntity>);
static_assert(offsetof(xmlDoc, _private) == offsetof(xmlNode, _private) &&
              offsetof(xmlDoc, type) == offsetof(xmlNode, type) &&
              offsetof(xmlDoc, children) == offsetof(xmlNode, children) &&
              offsetof(xmlDoc, last) == offsetof(xmlNode, last) &&
              offsetof(xmlDoc, parent) == offsetof(xmlNode, parent) &&
              offsetof(xmlDoc, next) == offsetof(xmlNode, next) && offsetof(xmlDoc, prev) == offsetof(xmlNode, prev) &&
              offsetof(xmlDoc, doc) == offsetof(xmlNode, doc));

inline xmlNode* AsNode(xmlDoc* document) { return reinterpret_cast<xmlNode*>(document); }
inline xmlNode* AsNode(xmlAttr* attribute) { return reinterpret_cast<xmlNode*>(attribute); }
inline const xmlAttr* AsAttribute(const xmlNode* node) { return reinterpret_cast<const xmlAttr*>(node); }
inline DocumentState& StateOf(const xmlDoc* document) { return *static_cast<DocumentState*>(document->_private); }

/// The marks of a node. A text never carries one: the next white space is part of it, or was dropped behind another
/// node. Neither a text nor a DOCTYPE has the field.
inline unsigned short BlanksAt(const xmlNode* node) {
  const bool lacksField = node->type == XML_TEXT_NODE || node->type == XML_DTD_NODE;
  return lacksField ? 0 : node->extra & (kBlankAfter | kBlankInside);
}

inline bool IsDocument(const xmlNode* node) { return node->type == XML_DOCUMENT_NODE; }
inline bool IsElement(const xmlNode* node) { return node->type == XML_ELEMENT_NODE; }
inline bool IsAttribute(const xmlNode* node) { return node->type == XML_ATTRIBUTE_NODE; }
/// Whether the node hangs in limbo, which nobody outside may see.
inline bool IsParentless(const xmlNode* node) {
  return node->parent != nullptr && node->parent == StateOf(node->doc).limbo;
}

/// What the library made; it makes nothing when there is no memory.
template <class T>
T* Made(T* made) {
  if (made == nullptr) {
    throw std::bad_alloc();
  }
  return made;
}

}  // namespace parvex::xml
