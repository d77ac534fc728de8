#include "platform/posix/xml_tree.h"

#include <libxml/dict.h>
#include <libxml/globals.h>

#include <cstdint>
#include <new>

namespace parvex::xml {
namespace {

// A dictionary never forgets a name, so one that has seen this many gives way to a fresh one.
constexpr int kMostNames = 50'000;
constexpr std::size_t kMostNameBytes = 8u << 20;

std::uintptr_t HandlesOn(const xmlNode* node) { return reinterpret_cast<std::uintptr_t>(node->_private); }
std::uintptr_t HandlesOn(const xmlAttr* attribute) { return reinterpret_cast<std::uintptr_t>(attribute->_private); }

void SetHandlesOn(xmlNode* node, std::uintptr_t count) { node->_private = reinterpret_cast<void*>(count); }

template <class T>
T* Made(T* made) {
  if (made == nullptr) {
    throw std::bad_alloc();
  }
  return made;
}

// Calls `visit` for the node itself, and for an element for its attributes and their texts.
template <class Visit>
void VisitWithAttributes(xmlNode* node, Visit visit) {
  visit(node);
  if (!IsElement(node)) {
    return;
  }
  for (xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
    visit(AsNode(attribute));
    for (xmlNode* text = attribute->children; text != nullptr; text = text->next) {
      visit(text);
    }
  }
}

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
    state.limbo = Made(xmlNewDocFragment(document));
  }
  return state.limbo;
}

// Leaves the node's own links to its place as they were.
void CutOut(xmlNode* node) {
  (node->prev != nullptr ? node->prev->next : node->parent->children) = node->next;
  (node->next != nullptr ? node->next->prev : node->parent->last) = node->prev;
}

void LinkLast(xmlNode* node, xmlNode* parent) {
  node->parent = parent;
  node->next = nullptr;
  node->prev = parent->last;
  (parent->last != nullptr ? parent->last->next : parent->children) = node;
  parent->last = node;
}

void Free(xmlNode* node) {
  CutOut(node);
  node->parent = node->prev = node->next = nullptr;
  xmlFreeNode(node);
}

// A text that lives in the dictionary of the old document gets a copy of its own or one of the new dictionary.
void Rename(const xmlChar*& name, xmlDict* from, xmlDict* to) {
  if (name != nullptr && xmlDictOwns(from, name) != 0) {
    name = Made(xmlDictLookup(to, name, -1));
  }
}

// Elements and attributes do not keep it in the same place. Null for other nodes.
xmlNs** NamespaceOf(xmlNode* node) {
  return IsElement(node) ? &node->ns : IsAttribute(node) ? &reinterpret_cast<xmlAttr*>(node)->ns : nullptr;
}

/// The document's own copies of the namespaces of another document's tree.
using OwnNamespaces = std::map<const xmlNs*, xmlNs*>;

OwnNamespaces NamespacesIn(xmlNode* top, xmlDoc* to) {
  OwnNamespaces owned;
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    VisitWithAttributes(node, [&](xmlNode* each) {
      if (xmlNs** place = NamespaceOf(each); place != nullptr && *place != nullptr && owned.count(*place) == 0) {
        owned.emplace(*place, OwnNamespace(to, *place));
      }
    });
  }
  return owned;
}

void AdoptOne(xmlNode* node, xmlDoc* from, xmlDoc* to, const OwnNamespaces& owned) {
  node->doc = to;
  if (xmlNs** place = NamespaceOf(node)) {
    *place = *place == nullptr ? nullptr : owned.find(*place)->second;
  } else if (from->dict != to->dict && node->content != nullptr && xmlDictOwns(from->dict, node->content) != 0) {
    node->content = Made(xmlStrdup(node->content));
  }
  if (from->dict != to->dict) {
    Rename(node->name, from->dict, to->dict);
  }
}

// Makes a tree that was cut out of one document one of another, with the handles on its nodes.
void Adopt(xmlNode* top, xmlDoc* to, const OwnNamespaces& owned) {
  xmlDoc* from = top->doc;
  std::size_t handles = 0;
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    VisitWithAttributes(node, [&](xmlNode* each) {
      handles += HandlesOn(each);
      AdoptOne(each, from, to, owned);
    });
  }
  StateOf(to).handles += handles;
  StateOf(to).usesSpaceAttribute |= StateOf(from).usesSpaceAttribute;
  StateOf(from).handles -= handles;
  if (StateOf(from).handles == 0) {
    StateOf(to).markupGuess += StateOf(from).markupGuess;
    FreeDocument(from);
  }
}

xmlNode* Copied(const xmlNode* original) {
  xmlDoc* document = original->doc;
  switch (original->type) {
    case XML_ELEMENT_NODE:
      return Made(xmlNewDocNode(document, original->ns, original->name, nullptr));
    case XML_TEXT_NODE:
      return Made(xmlNewDocText(document, original->content));
    case XML_CDATA_SECTION_NODE:
      return Made(xmlNewCDataBlock(document, original->content, static_cast<int>(View(original->content).size())));
    case XML_COMMENT_NODE:
      return Made(xmlNewDocComment(document, original->content));
    default:
      return Made(xmlNewDocPI(document, original->name, original->content));
  }
}

void CopyAttributes(const xmlNode* original, xmlNode* copy) {
  copy->nsDef = original->nsDef == nullptr ? nullptr : Made(xmlCopyNamespaceList(original->nsDef));
  for (const xmlAttr* attribute = original->properties; attribute != nullptr; attribute = attribute->next) {
    xmlAttr* made = Made(xmlNewNsProp(copy, attribute->ns, attribute->name, nullptr));
    for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
      AppendText(AsNode(made), View(text->content));
    }
  }
}

void Swallow(void*, const char*, ...) {}

}  // namespace

Quiet::Quiet() : before_(xmlGenericError), contextBefore_(xmlGenericErrorContext) {
  xmlSetGenericErrorFunc(nullptr, Swallow);
}

Quiet::~Quiet() { xmlSetGenericErrorFunc(contextBefore_, before_); }

xmlDict* SharedNames() {
  struct Owner {
    ~Owner() { xmlDictFree(names); }
    xmlDict* names = nullptr;
  };
  thread_local Owner owner;
  if (owner.names != nullptr &&
      (xmlDictSize(owner.names) > kMostNames || xmlDictGetUsage(owner.names) > kMostNameBytes)) {
    xmlDictFree(owner.names);
    owner.names = nullptr;
  }
  if (owner.names == nullptr) {
    owner.names = Made(xmlDictCreate());
  }
  return owner.names;
}

UnheldDocument NewDocument() {
  UnheldDocument document(Made(xmlNewDoc(Chars("1.0"))));
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
  if (state->limbo != nullptr) {
    xmlFreeNode(state->limbo);
  }
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

xmlNode* NewElement(xmlDoc* document, std::string_view name) {
  xmlNode* limbo = Limbo(document);
  constexpr std::size_t kBothTags = 5;  // < > </ >
  StateOf(document).markupGuess += 2 * name.size() + kBothTags;
  xmlNode* node = Made(xmlNewDocNode(document, nullptr, Chars(std::string(name).c_str()), nullptr));
  LinkLast(node, limbo);
  return node;
}

xmlNode* NewCData(xmlDoc* document, std::string_view text) {
  xmlNode* limbo = Limbo(document);
  StateOf(document).markupGuess += text.size();
  xmlNode* node = Made(xmlNewCDataBlock(document, Chars(text.data()), static_cast<int>(text.size())));
  if (node->content == nullptr) {
    node->content = Made(xmlStrdup(Chars("")));
  }
  LinkLast(node, limbo);
  return node;
}

xmlNode* NewClone(xmlNode* original) {
  xmlNode* parent = Limbo(original->doc);
  xmlNode* top = nullptr;
  for (xmlNode* node = original;;) {
    xmlNode* copy = Copied(node);
    copy->extra = node == original ? node->extra & kBlankInside : node->extra;
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

xmlNs* OwnNamespace(xmlDoc* document, const xmlNs* original) {
  auto& namespaces = StateOf(document).namespaces;
  const DocumentState::Prefixed key(View(original->prefix), View(original->href));
  const auto found = namespaces.find(key);
  if (found != namespaces.end()) {
    return found->second;
  }
  // Made by hand, since the library makes none for the prefix xml.
  struct FreeNamespace {
    void operator()(xmlNs* space) const { xmlFreeNs(space); }
  };
  std::unique_ptr<xmlNs, FreeNamespace> copy(Made(static_cast<xmlNs*>(xmlMalloc(sizeof(xmlNs)))));
  *copy = {};
  copy->type = XML_LOCAL_NAMESPACE;
  copy->href = original->href == nullptr ? nullptr : Made(xmlStrdup(original->href));
  copy->prefix = original->prefix == nullptr ? nullptr : Made(xmlStrdup(original->prefix));
  namespaces.emplace(key, copy.get());
  return copy.release();
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
  node->extra &= kBlankInside;
  LinkLast(node, limbo);
}

void Move(xmlNode* node, xmlNode* parent) {
  // What may fail comes first: from the cut on the tree is nobody's until it is adopted.
  const bool isForeign = node->doc != parent->doc;
  const OwnNamespaces owned = isForeign ? NamespacesIn(node, parent->doc) : OwnNamespaces();
  CutOut(node);
  node->extra &= kBlankInside;
  LinkLast(node, parent);
  if (isForeign) {
    Adopt(node, parent->doc, owned);
  }
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

void AppendText(xmlNode* parent, std::string_view text) {
  StateOf(parent->doc).markupGuess += text.size();
  LinkLast(Made(xmlNewDocTextLen(parent->doc, Chars(text.data()), static_cast<int>(text.size()))), parent);
}

void SetContent(xmlNode* leaf, std::string_view text) {
  xmlChar* content = Made(xmlStrndup(Chars(text.empty() ? "" : text.data()), static_cast<int>(text.size())));
  if (leaf->content != nullptr && xmlDictOwns(leaf->doc->dict, leaf->content) == 0) {
    xmlFree(leaf->content);
  }
  leaf->content = content;
}

xmlAttr* FindAttribute(const xmlNode* element, std::string_view prefix, std::string_view name) {
  for (xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
    const std::string_view itsPrefix = attribute->ns == nullptr ? std::string_view{} : View(attribute->ns->prefix);
    if (View(attribute->name) == name && itsPrefix == prefix) {
      return attribute;
    }
  }
  return nullptr;
}

std::string ValueOf(const xmlAttr* attribute) {
  std::string value;
  for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
    value += View(text->content);
  }
  return value;
}

}  // namespace parvex::xml
