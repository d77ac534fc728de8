#include "adapters/libxml2/tree.h"

#include <libxml/dict.h>
#include <libxml/globals.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "formats/text/xml_characters.h"

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

NodeArena& ArenaOf(const xmlDoc* document) { return *StateOf(document).arena; }

void PutChars(xmlChar* place, std::string_view text) {
  if (!text.empty()) {
    std::memcpy(place, text.data(), text.size());
  }
  place[text.size()] = 0;
}

// A copy in the document's memory that ends with a zero, as the library's texts do.
xmlChar* NewChars(xmlDoc* document, std::string_view text) {
  auto* copy = static_cast<xmlChar*>(ArenaOf(document).Allocate(text.size() + 1));
  PutChars(copy, text);
  return copy;
}

void FreeChars(NodeArena& arena, const xmlChar* text) noexcept {
  if (text != nullptr) {
    arena.Free(const_cast<xmlChar*>(text), View(text).size() + 1);
  }
}

// A node of a document, with all else empty.
xmlNode* NewNode(xmlDoc* document, xmlElementType type, const xmlChar* name = nullptr) {
  auto* node = new (ArenaOf(document).Allocate(sizeof(xmlNode))) xmlNode{};
  node->type = type;
  node->name = name;
  node->doc = document;
  return node;
}

// What a text node has of a node. Behind it stands a short text, or the size of that place when the text stands apart.
constexpr std::size_t kTextNode = offsetof(xmlNode, properties);
static_assert(kTextNode % alignof(std::size_t) == 0 && NodeArena::kGrain >= sizeof(std::size_t));

xmlChar* BehindTextNode(xmlNode* text) { return reinterpret_cast<xmlChar*>(text) + kTextNode; }
bool StandsApart(xmlNode* text) { return text->content != BehindTextNode(text); }

std::size_t RoomFor(std::string_view text) {
  return (text.size() + NodeArena::kGrain) / NodeArena::kGrain * NodeArena::kGrain;  // with its zero
}

void SetApart(xmlNode* text, xmlChar* content, std::size_t room) {
  text->content = content;
  std::memcpy(BehindTextNode(text), &room, sizeof room);
}

std::size_t RoomBehind(xmlNode* text) {
  std::size_t room = 0;
  if (StandsApart(text)) {
    std::memcpy(&room, BehindTextNode(text), sizeof room);
  } else {
    room = RoomFor(View(text->content));
  }
  return room;
}

xmlNode* NewTextNode(xmlDoc* document, std::string_view content) {
  const bool isShort = kTextNode + content.size() < NodeArena::kLargestSmall;
  const std::size_t room = isShort ? RoomFor(content) : sizeof(std::size_t);
  xmlChar* apart = isShort ? nullptr : NewChars(document, content);
  auto* text = static_cast<xmlNode*>(ArenaOf(document).Allocate(kTextNode + room));
  std::memset(static_cast<void*>(text), 0, kTextNode);
  text->type = XML_TEXT_NODE;
  text->name = xmlStringText;
  text->doc = document;
  if (isShort) {
    text->content = BehindTextNode(text);
    PutChars(text->content, content);
  } else {
    SetApart(text, apart, room);
  }
  return text;
}

xmlNode* NewLeaf(xmlDoc* document, xmlElementType type, const xmlChar* name, std::string_view content) {
  if (type == XML_TEXT_NODE) {
    return NewTextNode(document, content);
  }
  xmlChar* chars = NewChars(document, content);
  xmlNode* leaf = NewNode(document, type, name);
  leaf->content = chars;
  return leaf;
}

// The dictionary for the names of a thread's documents, and names lately found in it.
class Names {
 public:
  Names() = default;
  ~Names() { xmlDictFree(dictionary_); }
  Names(const Names&) = delete;
  Names& operator=(const Names&) = delete;

  xmlDict* Dictionary() {
    if (dictionary_ != nullptr &&
        (xmlDictSize(dictionary_) > kMostNames || xmlDictGetUsage(dictionary_) > kMostNameBytes)) {
      xmlDictFree(std::exchange(dictionary_, nullptr));
      known_ = {};
    }
    if (dictionary_ == nullptr) {
      dictionary_ = Made(xmlDictCreate());
    }
    return dictionary_;
  }

  const xmlChar* FindPlain(xmlDict* dictionary, std::string_view name) {
    if (name.empty() || dictionary != dictionary_) {
      return LookUpPlain(dictionary, name);
    }
    std::string_view& known = known_[PlaceOf(name)];
    if (known != name) {
      const xmlChar* found = LookUpPlain(dictionary, name);
      if (found == nullptr) {
        return nullptr;
      }
      known = View(found);
    }
    return reinterpret_cast<const xmlChar*>(known.data());
  }

 private:
  static const xmlChar* LookUpPlain(xmlDict* dictionary, std::string_view name) {
    return IsPlainName(name) ? Made(xmlDictLookup(dictionary, Chars(name.data()), static_cast<int>(name.size())))
                             : nullptr;
  }

  std::size_t PlaceOf(std::string_view name) const {
    const auto at = [&](std::size_t pos) { return static_cast<std::size_t>(static_cast<unsigned char>(name[pos])); };
    return (name.size() * 37 + at(0) * 3 + at(name.size() / 2) * 11 + at(name.size() - 1) * 7) % known_.size();
  }

  xmlDict* dictionary_ = nullptr;
  std::array<std::string_view, 256> known_{};
};

thread_local Names names;

xmlNode* Limbo(xmlDoc* document) {
  DocumentState& state = StateOf(document);
  if (state.limbo == nullptr) {
    state.limbo = NewNode(document, XML_DOCUMENT_FRAG_NODE);
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

void FreeLeaf(NodeArena& arena, xmlNode* leaf) noexcept {
  if (leaf->type != XML_TEXT_NODE) {
    FreeChars(arena, leaf->content);
    arena.Free(leaf, sizeof(xmlNode));
    return;
  }
  const std::size_t room = RoomBehind(leaf);
  if (StandsApart(leaf)) {
    FreeChars(arena, leaf->content);
  }
  arena.Free(leaf, kTextNode + room);
}

void FreeAttribute(NodeArena& arena, xmlAttr* attribute) noexcept {
  for (xmlNode* text = attribute->children; text != nullptr;) {
    FreeLeaf(arena, std::exchange(text, text->next));
  }
  arena.Free(attribute, sizeof(xmlAttr));
}

// An element's children are freed before it; other nodes have none.
void FreeOne(NodeArena& arena, xmlNode* node) noexcept {
  if (!IsElement(node)) {
    FreeLeaf(arena, node);
    return;
  }
  for (xmlAttr* attribute = node->properties; attribute != nullptr;) {
    FreeAttribute(arena, std::exchange(attribute, attribute->next));
  }
  for (xmlNs* space = node->nsDef; space != nullptr;) {
    FreeChars(arena, space->prefix);
    FreeChars(arena, space->href);
    arena.Free(std::exchange(space, space->next), sizeof(xmlNs));
  }
  arena.Free(node, sizeof(xmlNode));
}

// Frees a tree that hangs nowhere, from its leaves up, without recursion: trees may be deep.
void FreeTree(xmlNode* top) noexcept {
  NodeArena& arena = ArenaOf(top->doc);
  for (xmlNode* node = top;;) {
    if (node->children != nullptr) {
      node = node->children;
      continue;
    }
    xmlNode* next = node->next;
    xmlNode* parent = node->parent;
    const bool isTop = node == top;
    FreeOne(arena, node);
    if (isTop) {
      return;
    }
    if (next == nullptr) {
      parent->children = nullptr;
    }
    node = next == nullptr ? parent : next;
  }
}

// What was dropped behind a node stays behind when it leaves its place.
void KeepBlankInside(xmlNode* node) {
  if (BlanksAt(node) != 0) {
    node->extra &= kBlankInside;
  }
}

void Free(xmlNode* node) noexcept {
  CutOut(node);
  FreeTree(node);
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
  std::size_t handles = 0;
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    VisitWithAttributes(node, [&](xmlNode* each) {
      handles += HandlesOn(each);
      AdoptOne(each, from, to, owned);
    });
  }
  StateOf(to).handles += handles;
  StateOf(from).handles -= handles;
  if (StateOf(from).handles == 0) {
    StateOf(to).markupGuess += StateOf(from).markupGuess;
    FreeDocument(from);
  }
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

xmlDict* SharedNames() { return names.Dictionary(); }

const xmlChar* PlainName(xmlDoc* document, std::string_view name) { return names.FindPlain(document->dict, name); }

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
  // The library frees what it made, the document type.
  if (document->intSubset != nullptr) {
    xmlNode* doctype = reinterpret_cast<xmlNode*>(document->intSubset);
    CutOut(doctype);
    doctype->parent = doctype->prev = doctype->next = nullptr;
  }
  if (state->arena.use_count() > 1) {
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

xmlAttr* LastAttribute(const xmlNode* element) {
  xmlAttr* last = element->properties;
  while (last != nullptr && last->next != nullptr) {
    last = last->next;
  }
  return last;
}

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
  KeepBlankInside(node);
  LinkLast(node, limbo);
}

void Move(xmlNode* node, xmlNode* parent) {
  // What may fail comes first: from the cut on the tree is nobody's until it is adopted.
  const bool isForeign = node->doc != parent->doc;
  const OwnNamespaces owned = isForeign ? NamespacesIn(node, parent->doc) : OwnNamespaces();
  CutOut(node);
  KeepBlankInside(node);
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

void SetContent(xmlNode* leaf, std::string_view text) {
  xmlChar* content = NewChars(leaf->doc, text);
  if (leaf->type == XML_TEXT_NODE && !StandsApart(leaf)) {
    SetApart(leaf, content, RoomBehind(leaf));
    return;
  }
  FreeChars(ArenaOf(leaf->doc), leaf->content);
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
