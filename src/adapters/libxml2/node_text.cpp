#include "adapters/libxml2/node_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "adapters/libxml2/attributes.h"
#include "adapters/libxml2/document_state.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {
namespace {

// Texts of a tree joined, with where the first section with content begins and the last one ends: outer blanks are
// trimmed up to there.
struct JoinedText {
  std::string text;
  std::size_t firstKept = std::string::npos;
  std::size_t lastKept = 0;

  void AddText(std::string_view part) {
    for (std::size_t end = part.find("\r\n"); end != std::string_view::npos; end = part.find("\r\n")) {
      text.append(part.substr(0, end));
      part.remove_prefix(end + 1);
    }
    text.append(part);
  }

  void AddSection(std::string_view part) {
    if (part.empty()) {
      return;
    }
    firstKept = std::min(firstKept, text.size());
    text.append(part);
    lastKept = text.size();
  }

  void AddBlankFor(const xmlNode* node, unsigned short where) {
    if ((BlanksAt(node) & where) != 0) {
      text += ' ';
    }
  }

  std::string Trimmed() && {
    std::size_t end = text.size();
    while (end > lastKept && IsBlank(text[end - 1])) {
      --end;
    }
    text.resize(end);
    std::size_t begin = 0;
    while (begin < std::min(firstKept, end) && IsBlank(text[begin])) {
      ++begin;
    }
    text.erase(0, begin);
    return std::move(text);
  }
};

JoinedText JoinTexts(xmlNode* top) {
  JoinedText joined;
  for (xmlNode* node = top;;) {
    if (node->type == XML_TEXT_NODE) {
      joined.AddText(View(node->content));
    } else if (node->type == XML_CDATA_SECTION_NODE) {
      joined.AddSection(View(node->content));
    } else if (IsElement(node) || IsDocument(node)) {
      if (IsElement(node)) {
        joined.AddBlankFor(node, kBlankInside);
      }
      if (node->children != nullptr) {
        node = node->children;
        continue;
      }
    }
    while (node != top && node->next == nullptr) {
      joined.AddBlankFor(node, kBlankAfter);
      node = node->parent;
    }
    if (node == top) {
      return joined;
    }
    joined.AddBlankFor(node, kBlankAfter);
    node = node->next;
  }
}

// Whether xml:space="preserve" is in force at a node.
bool PreservesSpace(const xmlNode* node) {
  for (; node != nullptr && !IsDocument(node); node = node->parent) {
    if (!IsElement(node)) {
      continue;
    }
    if (const xmlAttr* attribute = FindAttribute(node, {"xml", "space"})) {
      return ValueOf(attribute) == "preserve";
    }
  }
  return false;
}

}  // namespace

std::string TextOf(xmlNode* node) {
  switch (node->type) {
    case XML_ATTRIBUTE_NODE:
      return ValueOf(AsAttribute(node));
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
      return std::string(View(node->content));
    case XML_DTD_NODE:
      return "";
    default:
      break;
  }
  JoinedText joined = JoinTexts(node);
  return PreservesSpace(node) ? std::move(joined.text) : std::move(joined).Trimmed();
}

}  // namespace parvex::xml
