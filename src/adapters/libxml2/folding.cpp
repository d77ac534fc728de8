#include "adapters/libxml2/folding.h"

#include <cstddef>
#include <string>
#include <utility>

#include "adapters/libxml2/adoption.h"
#include "adapters/libxml2/markup.h"
#include "adapters/libxml2/nodes.h"
#include "adapters/libxml2/parse.h"
#include "adapters/libxml2/refusals.h"
#include "adapters/libxml2/tree.h"
#include "formats/text/markup_bounds.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

constexpr std::size_t kMostNodes = 4'000;  // half a megabyte of them, which a processor's own cache holds
constexpr std::size_t kDeepest = 100;      // this and the next far from what the parser refuses
constexpr std::size_t kLongestMarkup = std::size_t{1} << 20;

bool ReadsAgain(const xmlAttr* attribute) {
  const xmlNode* text = attribute->children;
  const bool isOnlyText = text == nullptr || (text->next == nullptr && HandlesOn(text) == 0 && text->content[0] != 0);
  return attribute->ns == nullptr && HandlesOn(attribute) == 0 && isOnlyText;
}

bool TextReadsAgain(const xmlNode* node) {
  const std::string_view text = View(node->content);
  const bool isJoined = node->next != nullptr && node->next->type == XML_TEXT_NODE;
  return !IsBlank(text) && text.find('\r') == std::string_view::npos && !isJoined;
}

bool SectionReadsAgain(const xmlNode* node) {
  const std::string_view text = View(node->content);
  return !text.empty() && text.find('\r') == std::string_view::npos && text.find("]]>") == std::string_view::npos;
}

bool ReadsAgainWithoutContent(const xmlNode* element) {
  if (element->ns != nullptr || element->nsDef != nullptr || IsFolded(element)) {
    return false;
  }
  const xmlAttr* attribute = element->properties;
  std::size_t attributes = 0;
  while (attribute != nullptr && ++attributes <= kMostAttributes && ReadsAgain(attribute)) {
    attribute = attribute->next;
  }
  return attribute == nullptr;
}

// Whether the markup of a node reads as this node again, if that of its children does.
bool ReadsAgain(const xmlNode* node) {
  if (HandlesOn(node) != 0 || BlanksAt(node) != 0) {
    return false;
  }
  switch (node->type) {
    case XML_ELEMENT_NODE:
      return ReadsAgainWithoutContent(node);
    case XML_TEXT_NODE:
      return TextReadsAgain(node);
    case XML_CDATA_SECTION_NODE:
      return SectionReadsAgain(node);
    default:
      return false;
  }
}

bool ReadsAgainBelow(const xmlNode* top) {
  std::size_t nodes = 0;
  std::size_t depth = 0;
  for (const xmlNode* node = top->children;;) {
    if (++nodes > kMostNodes || depth > kDeepest || !ReadsAgain(node)) {
      return false;
    }
    if (node->children != nullptr) {
      node = node->children;
      ++depth;
      continue;
    }
    while (node->next == nullptr) {
      node = node->parent;
      if (node == top) {
        return true;
      }
      --depth;
    }
    node = node->next;
  }
}

// Holds a document while its nodes move into another.
class Held {
 public:
  explicit Held(UnheldDocument document) : document_(document.release()) { Hold(AsNode(document_)); }
  ~Held() { Release(AsNode(document_)); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  xmlDoc* Get() const { return document_; }

 private:
  xmlDoc* document_;
};

}  // namespace

void Fold(xmlNode* element) {
  DocumentState& state = StateOf(element->doc);
  if (!IsElement(element) || element->children == nullptr || state.isSearched || !ReadsAgainBelow(element)) {
    return;
  }
  const std::string markup = MarkupBelow(element);
  if (markup.size() > kLongestMarkup) {
    return;
  }
  element->content = NewChars(element->doc, markup);
  element->extra |= kFolded;
  state.mayHaveFolded = true;
  element->last = nullptr;
  for (xmlNode* child = std::exchange(element->children, nullptr); child != nullptr;) {
    FreeTree(std::exchange(child, child->next));
  }
}

void Unfold(xmlNode* node) {
  if (!IsFolded(node)) {
    return;
  }
  std::string markup = "<A>";
  markup.append(View(node->content)).append("</A>");
  const Held read(ParseText(markup));
  xmlNode* content = RootOf(read.Get());
  if (content == nullptr) {
    Refuse("the content of " + NameOf(node) + " cannot be read again: " + StateOf(read.Get()).parseError);
  }
  ArenaOf(node->doc).Free(std::exchange(node->content, nullptr),
                          markup.size() - std::string_view("<A></A>").size() + 1);
  node->extra &= static_cast<unsigned short>(~kFolded);
  while (content->children != nullptr) {
    Move(content->children, node);
  }
}

void UnfoldTree(xmlNode* top) {
  if (!StateOf(top->doc).mayHaveFolded) {
    return;
  }
  for (xmlNode* node = top; node != nullptr; node = NextInTree(node, top)) {
    Unfold(node);
  }
}

void UnfoldForSearch(xmlDoc* document) {
  DocumentState& state = StateOf(document);
  state.isSearched = true;
  if (!state.mayHaveFolded) {
    return;
  }
  UnfoldTree(AsNode(document));
  for (xmlNode* node = state.limbo == nullptr ? nullptr : state.limbo->children; node != nullptr; node = node->next) {
    UnfoldTree(node);
  }
  state.mayHaveFolded = false;
}

}  // namespace parvex::xml
