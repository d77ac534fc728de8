#include "adapters/libxml2/nodes.h"

#include <libxml/parserInternals.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace parvex::xml {
namespace {

void PutChars(xmlChar* place, std::string_view text) {
  if (!text.empty()) {
    std::memcpy(place, text.data(), text.size());
  }
  place[text.size()] = 0;
}

void FreeChars(NodeArena& arena, const xmlChar* text) noexcept {
  if (text != nullptr) {
    arena.Free(const_cast<xmlChar*>(text), View(text).size() + 1);
  }
}

// What a text node has of a node. Behind it stands a short text, or the size of that place when the text stands apart.
constexpr std::size_t kTextNode = offsetof(xmlNode, properties);
static_assert(offsetof(xmlNode, doc) < kTextNode && offsetof(xmlNode, ns) < kTextNode &&
                  offsetof(xmlNode, content) + sizeof(xmlNode::content) == kTextNode,
              "what the library reads of a text stands before the fields that only elements have");
static_assert(offsetof(xmlNode, nsDef) > kTextNode && offsetof(xmlNode, psvi) > kTextNode &&
                  offsetof(xmlNode, line) > kTextNode && offsetof(xmlNode, extra) > kTextNode,
              "a text does without these");
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
  FreeChars(arena, node->content);  // of a folded element
  arena.Free(node, sizeof(xmlNode));
}

}  // namespace

xmlNode* NewNode(xmlDoc* document, xmlElementType type, const xmlChar* name) {
  auto* node = new (ArenaOf(document).Allocate(sizeof(xmlNode))) xmlNode{};
  node->type = type;
  node->name = name;
  node->doc = document;
  return node;
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

xmlChar* NewChars(xmlDoc* document, std::string_view text) {
  auto* copy = static_cast<xmlChar*>(ArenaOf(document).Allocate(text.size() + 1));
  PutChars(copy, text);
  return copy;
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

}  // namespace parvex::xml
