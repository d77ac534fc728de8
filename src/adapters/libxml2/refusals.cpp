#include "adapters/libxml2/refusals.h"

#include <climits>
#include <cstddef>

#include "adapters/libxml2/document_state.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

bool IsInside(const xmlNode* node, const xmlNode* tree) {
  if (tree->children == nullptr) {
    return node == tree;
  }
  while (node != nullptr && node != tree) {
    node = node->parent;
  }
  return node == tree;
}

[[noreturn]] void RefuseAppend(const xmlNode* child, const xmlNode* parent, const std::string& reason) {
  Refuse("the node " + NameOf(child) + " cannot be appended to " + NameOf(parent) + ": " + reason);
}

}  // namespace

void Refuse(const std::string& description) { throw MakeRuntimeError(RuntimeError::InvalidCall, description); }

std::string NameOf(const xmlNode* node) {
  switch (node->type) {
    case XML_TEXT_NODE:
      return "#text";
    case XML_CDATA_SECTION_NODE:
      return "#cdata-section";
    case XML_COMMENT_NODE:
      return "#comment";
    case XML_DOCUMENT_NODE:
      return "#document";
    default:
      break;
  }
  const xmlNs* space = nullptr;
  if (IsElement(node)) {
    space = node->ns;
  } else if (IsAttribute(node)) {
    space = AsAttribute(node)->ns;
  }
  const std::string_view prefix = space == nullptr ? std::string_view{} : View(space->prefix);
  return (prefix.empty() ? "" : std::string(prefix) + ":") + std::string(View(node->name));
}

bool CanCarry(std::string_view text) { return text.size() < INT_MAX && FindForbidden(text) == std::string_view::npos; }

void RefuseText(std::string_view text, const std::string& place) {
  if (text.size() >= INT_MAX) {
    Refuse("the text for " + place + " is longer than 2 GB");
  }
  const std::size_t bad = FindForbidden(text);
  Refuse("the text for " + place + " holds what XML cannot carry: the byte value " +
         std::to_string(static_cast<unsigned char>(text[bad])) + " at byte " + std::to_string(bad + 1));
}

bool IsMovable(const xmlNode* node) {
  return IsElement(node) || node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE ||
         node->type == XML_COMMENT_NODE || node->type == XML_PI_NODE;
}

xmlNode* RootOf(const xmlDoc* document) {
  xmlNode* node = document->children;
  while (node != nullptr && !IsElement(node)) {
    node = node->next;
  }
  return node;
}

void CheckAppend(const xmlNode* child, const xmlNode* parent) {
  if (!IsMovable(child)) {
    RefuseAppend(child, parent, "only elements, texts, CDATA sections, comments and processing instructions can be");
  }
  if (!IsElement(parent) && !IsDocument(parent)) {
    RefuseAppend(child, parent, "only elements and documents have children");
  }
  if (IsDocument(parent)) {
    if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
      RefuseAppend(child, parent, "text stands in elements only");
    }
    const xmlNode* root = RootOf(parent->doc);
    if (IsElement(child) && root != nullptr && root != child) {
      RefuseAppend(child, parent, "it has the root " + NameOf(root));
    }
  }
  if (IsInside(parent, child)) {
    RefuseAppend(child, parent, "the one is a part of the other");
  }
}

}  // namespace parvex::xml
