#pragma once

#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/libxml2/document_state.h"

// Documents and their nodes: what handles hold, what is new, what hangs where. document_state.h says who owns what.

namespace parvex::xml {

/// Keeps the library from writing to standard error while it works for this thread.
class Quiet {
 public:
  Quiet();
  ~Quiet();
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  xmlGenericErrorFunc before_;
  void* contextBefore_;
};

/// Frees a document that nobody holds, whether it was taken in or not.
void FreeDocument(xmlDoc* document) noexcept;

struct FreeUnheld {
  void operator()(xmlDoc* document) const { FreeDocument(document); }
};
/// A document without a handle; once one is taken, the handles own it.
using UnheldDocument = std::unique_ptr<xmlDoc, FreeUnheld>;

/// A new, empty document.
UnheldDocument NewDocument();
/// Gives an empty document that the parser made what NewDocument gives its own.
void TakeIn(xmlDoc* document);

static_assert(sizeof(std::uintptr_t) == sizeof(xmlNode::_private),
              "the number of handles stands in place of a pointer");

/// How many handles are on a node itself, which is no document.
inline std::uintptr_t HandlesOn(const xmlNode* node) { return reinterpret_cast<std::uintptr_t>(node->_private); }
inline std::uintptr_t HandlesOn(const xmlAttr* attribute) {
  return reinterpret_cast<std::uintptr_t>(attribute->_private);
}
void Hold(xmlNode* node) noexcept;
void Release(xmlNode* node) noexcept;

/// New nodes in limbo. Names come from the document's dictionary.
xmlNode* NewElement(xmlDoc* document, const xmlChar* name);
xmlNode* NewCData(xmlDoc* document, std::string_view text);
xmlNode* NewClone(xmlNode* original);

/// New nodes behind the last child of their parent. A leaf is a text, a CDATA section, a comment or a processing
/// instruction; the last has a name.
xmlNode* AppendElement(xmlNode* parent, const xmlChar* name);
xmlNode* AppendLeaf(xmlNode* parent, xmlElementType type, std::string_view content, const xmlChar* name = nullptr);
void AppendText(xmlNode* parent, std::string_view text);

/// A new attribute without a value behind the last one of its element, null when it has none; `space` is null or the
/// document's own.
xmlAttr* AppendAttribute(xmlNode* element, xmlAttr* last, xmlNs* space, const xmlChar* name);
/// Writes down that an element declares a namespace; `prefix` empty for the default one.
void AppendDeclaration(xmlNode* element, std::string_view prefix, std::string_view uri);

/// The next node of the tree below `top` in document order, attributes left out; null behind the last.
xmlNode* NextInTree(xmlNode* node, const xmlNode* top);

/// Leaves the node's own links to its place as they were.
inline void CutOut(xmlNode* node) {
  (node->prev != nullptr ? node->prev->next : node->parent->children) = node->next;
  (node->next != nullptr ? node->next->prev : node->parent->last) = node->prev;
}
inline void LinkLast(xmlNode* node, xmlNode* parent) {
  node->parent = parent;
  node->next = nullptr;
  node->prev = parent->last;
  (parent->last != nullptr ? parent->last->next : parent->children) = node;
  parent->last = node;
}
/// What was dropped behind a node stays behind when it leaves its place.
inline void KeepBlankInside(xmlNode* node) {
  if (BlanksAt(node) != 0) {
    node->extra &= static_cast<unsigned short>(~kBlankAfter);
  }
}

/// Takes a node out of its place, into limbo.
void Unlink(xmlNode* node);
/// Removes all children, freeing those that nobody holds.
void ClearChildren(xmlNode* parent);

}  // namespace parvex::xml
