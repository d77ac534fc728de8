#pragma once

#include <libxml/tree.h>

#include <string_view>

#include "adapters/libxml2/document_state.h"

namespace parvex::xml {

// Nodes in the document's arena, made and freed one by one or as whole trees that hang nowhere.

inline NodeArena& ArenaOf(const xmlDoc* document) { return *StateOf(document).arena; }

/// A node of a document, with all else empty.
xmlNode* NewNode(xmlDoc* document, xmlElementType type, const xmlChar* name = nullptr);
/// A text, a CDATA section, a comment or a processing instruction; the name is that of the last.
xmlNode* NewLeaf(xmlDoc* document, xmlElementType type, const xmlChar* name, std::string_view content);
/// A copy in the document's memory that ends with a zero, as the library's texts do.
xmlChar* NewChars(xmlDoc* document, std::string_view text);

/// Replaces the content of a text or CDATA section.
void SetContent(xmlNode* leaf, std::string_view text);

/// Frees a tree that hangs nowhere, from its leaves up, without recursion: trees may be deep.
void FreeTree(xmlNode* top) noexcept;

}  // namespace parvex::xml
