#include "adapters/libxml2/tree.h"

#include <libxml/dict.h>
#include <libxml/globals.h>
#include <libxml/parserInternals.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "adapters/libxml2/library_memory.h"
#include "adapters/libxml2/names.h"
#include "adapters/libxml2/nodes.h"

namespace parvex::xml {
namespace {

void SetHandlesOn(xmlNode* node, std::uintptr_t count) { node->_private = reinterpret_cast<void*>(count); }

bool IsHeldInside(xmlNode* top) {
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    if (HandlesOn(node) != 0) {
      return true;
    }
    if (!IsElement(node)) {
      continue;
    }
    for (const xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
      if (HandlesOn(attribute) != 0 || (attribute->children != nullptr && HandlesOn(attribute->children) != 0)) {
        return true;
      }
    }
  }
  return false;
}

xmlNode* Limbo(xmlDoc* document) {
  DocumentState& state = StateOf(document);
  if (state.limbo == nullptr) {
    state.limbo = NewNode(document, XML_DOCUMENT_FRAG_NODE);
  }
  return state.limbo;
}

void Free(xmlNode* node) noexcept {
  CutOut(node);
  FreeTree(node);
}

xmlNode* Copied(const xmlNode* original) {
  if (!IsElement(original)) {
    return NewLeaf(original->doc, original->type, original->name, View(original->content));
  }
  xmlNode* copy = NewNode(original->doc, XML_ELEMENT_NODE, original->name);
  copy->ns = original->ns;
  return copy;
}

void CopyAttributes(const xmlNode* original, xmlNode* copy) {
  for (const xmlNs* space = original->nsDef; space != nullptr; space = space->next) {
    AppendDeclaration(copy, View(space->prefix), View(space->href));
  }
  xmlAttr* last = nullptr;
  for (const xmlAttr* attribute = original->properties; attribute != nullptr; attribute = attribute->next) {
    last = AppendAttribute(copy, last, attribute->ns, attribute->name);
    for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
      AppendText(AsNode(last), View(text->content));
    }
  }
}

void Swallow(void*, const char*, ...) {}

}  // namespace

Quiet::Quiet() : before_(xmlGenericError), contextBefore_(xmlGenericErrorContext) {
  xmlSetGenericErrorFunc(nullptr, Swallow);
}

Quiet::~Quiet() { xmlSetGenericErrorFunc(contextBefore_, before_); }

UnheldDocument NewDocument() {
  const LibraryMemory memory;
  UnheldDocument document(Made(xmlNewDoc(Chars("1.0"))));
  memory.Check();
  document->standalone = -1;
  document->dict = SharedNames();
  xmlDictReference(document->dict);
  TakeIn(document.get());
  return document;
}

void TakeIn(xmlDoc* document) { document->_private = new DocumentState; }

void FreeDocument(xmlDoc* document) noexcept {
  auto* state = static_cast<DocumentState*>(document->_private);
  if (state == nullptr) {
    xmlFreeDoc(document);
    return;
  }
  // The library frees what it made, the document type.
  if (document->intSubset != nullptr) {
    xmlNode* doctype = reinterpret_cast<xmlNode*>(document->intSubset);
    CutOut(doctype);
    doctype->parent = doctype->prev = doctype->next = nullptr;
  }
  if (state->arena.IsShared()) {
    while (document->children != nullptr) {
      Free(document->children);
    }
    if (state->limbo != nullptr) {
      FreeTree(state->limbo);
    }
  }
  document->children = document->last = nullptr;
  xmlFreeDoc(document);
  for (const auto& [key, space] : state->namespaces) {
    xmlFreeNs(space);
  }
  delete state;
}

void Hold(xmlNode* node) noexcept {
  if (!IsDocument(node)) {
    SetHandlesOn(node, HandlesOn(node) + 1);
  }
  ++StateOf(node->doc).handles;
}

void Release(xmlNode* node) noexcept {
  DocumentState& state = StateOf(node->doc);
  if (--state.handles == 0) {
    FreeDocument(node->doc);
    return;
  }
  if (IsDocument(node)) {
    return;
  }
  const std::uintptr_t left = HandlesOn(node) - 1;
  SetHandlesOn(node, left);
  if (left == 0 && IsParentless(node) && !IsHeldInside(node)) {
    Free(node);
  }
}

xmlNode* NewElement(xmlDoc* document, const xmlChar* name) { return AppendElement(Limbo(document), name); }

xmlNode* NewCData(xmlDoc* document, std::string_view text) {
  return AppendLeaf(Limbo(document), XML_CDATA_SECTION_NODE, text);
}

xmlNode* AppendElement(xmlNode* parent, const xmlChar* name) {
  constexpr std::size_t kBothTags = 5;  // < > </ >
  StateOf(parent->doc).markupGuess += 2 * View(name).size() + kBothTags;
  xmlNode* element = NewNode(parent->doc, XML_ELEMENT_NODE, name);
  LinkLast(element, parent);
  return element;
}

xmlNode* AppendLeaf(xmlNode* parent, xmlElementType type, std::string_view content, const xmlChar* name) {
  StateOf(parent->doc).markupGuess += content.size();
  xmlNode* leaf = NewLeaf(parent->doc, type, type == XML_COMMENT_NODE ? xmlStringComment : name, content);
  LinkLast(leaf, parent);
  return leaf;
}

void AppendText(xmlNode* parent, std::string_view text) { AppendLeaf(parent, XML_TEXT_NODE, text); }

xmlAttr* AppendAttribute(xmlNode* element, xmlAttr* last, xmlNs* space, const xmlChar* name) {
  constexpr std::size_t kQuotesAndSign = 4;  // blank, =, ""
  StateOf(element->doc).markupGuess += View(name).size() + kQuotesAndSign;
  auto* attribute = new (ArenaOf(element->doc).Allocate(sizeof(xmlAttr))) xmlAttr{};
  attribute->type = XML_ATTRIBUTE_NODE;
  attribute->name = name;
  attribute->ns = space;
  attribute->doc = element->doc;
  attribute->parent = element;
  attribute->prev = last;
  (last == nullptr ? element->properties : last->next) = attribute;
  return attribute;
}

void AppendDeclaration(xmlNode* element, std::string_view prefix, std::string_view uri) {
  xmlDoc* document = element->doc;
  auto* space = new (ArenaOf(document).Allocate(sizeof(xmlNs))) xmlNs{};
  space->type = XML_LOCAL_NAMESPACE;
  space->context = document;
  xmlNs** end = &element->nsDef;
  while (*end != nullptr) {
    end = &(*end)->next;
  }
  *end = space;
  space->prefix = prefix.empty() ? nullptr : NewChars(document, prefix);
  space->href = NewChars(document, uri);
}

xmlNode* NewClone(xmlNode* original) {
  xmlNode* parent = Limbo(original->doc);
  xmlNode* top = nullptr;
  for (xmlNode* node = original;;) {
    xmlNode* copy = Copied(node);
    if (const unsigned short blanks = BlanksAt(node); blanks != 0) {
      copy->extra = node == original ? blanks & kBlankInside : blanks;
    }
    LinkLast(copy, parent);
    top = top == nullptr ? copy : top;
    if (IsElement(node)) {
      CopyAttributes(node, copy);
      if (node->children != nullptr) {
        parent = copy;
        node = node->children;
        continue;
      }
    }
    while (node != original && node->next == nullptr) {
      node = node->parent;
      parent = parent->parent;
    }
    if (node == original) {
      return top;
    }
    node = node->next;
  }
}

xmlNode* NextInTree(xmlNode* node, const xmlNode* top) {
  if ((IsElement(node) || IsDocument(node)) && node->children != nullptr) {
    return node->children;
  }
  while (node != top && node->next == nullptr) {
    node = node->parent;
  }
  return node == top ? nullptr : node->next;
}

void Unlink(xmlNode* node) {
  xmlNode* limbo = Limbo(node->doc);
  CutOut(node);
  KeepBlankInside(node);
  LinkLast(node, limbo);
}

void ClearChildren(xmlNode* parent) {
  while (parent->children != nullptr) {
    if (IsHeldInside(parent->children)) {
      Unlink(parent->children);
    } else {
      Free(parent->children);
    }
  }
}

}  // namespace parvex::xml
