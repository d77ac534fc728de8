#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

namespace parvex::xml {

// What cannot be done with a node, as "invalid call".

[[noreturn]] void Refuse(const std::string& description);
/// A node's name as errors and Node::Name tell it.
std::string NameOf(const xmlNode* node);

/// Whether XML can carry a text.
bool CanCarry(std::string_view text);
/// `place` says where the text, which XML cannot carry, was to go.
[[noreturn]] void RefuseText(std::string_view text, const std::string& place);

/// Whether a node can be taken from its place: no document, attribute or DOCTYPE.
bool IsMovable(const xmlNode* node);
/// The root element; null when there is none.
xmlNode* RootOf(const xmlDoc* document);
/// Refuses a child that its parent cannot have.
void CheckAppend(const xmlNode* child, const xmlNode* parent);

}  // namespace parvex::xml
