#include "adapters/libxml2/adoption.h"

#include <libxml/dict.h>

#include <map>
#include <memory>

#include "adapters/libxml2/document_state.h"
#include "adapters/libxml2/tree.h"

namespace parvex::xml {
namespace {

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

// A name that lives in the dictionary of the old document gets one of the new dictionary.
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
  }
  if (from->dict != to->dict) {
    Rename(node->name, from->dict, to->dict);
  }
}

// Makes a tree that was cut out of one document one of another, with the handles on its nodes.
void Adopt(xmlNode* top, xmlDoc* to, const OwnNamespaces& owned) {
  xmlDoc* from = top->doc;
  StateOf(to).arena.JoinWith(StateOf(from).arena);
  std::size_t handles = 0;
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    VisitWithAttributes(node, [&](xmlNode* each) {
      handles += HandlesOn(each);
      AdoptOne(each, from, to, owned);
    });
  }
  StateOf(to).mayHaveFolded |= StateOf(from).mayHaveFolded;
  StateOf(to).handles += handles;
  StateOf(from).handles -= handles;
  if (StateOf(from).handles == 0) {
    StateOf(to).markupGuess += StateOf(from).markupGuess;
    FreeDocument(from);
  }
}

}  // namespace

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

void Move(xmlNode* node, xmlNode* parent) {
  const auto relink = [&] {
    CutOut(node);
    KeepBlankInside(node);
    LinkLast(node, parent);
  };
  if (node->doc == parent->doc) {
    relink();
    return;
  }
  // What may fail comes first: from the cut on the tree is nobody's until it is adopted.
  const OwnNamespaces owned = NamespacesIn(node, parent->doc);
  relink();
  Adopt(node, parent->doc, owned);
}

}  // namespace parvex::xml
