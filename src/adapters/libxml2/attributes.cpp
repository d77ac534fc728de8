#include "adapters/libxml2/attributes.h"

#include <cstddef>

#include "adapters/libxml2/adoption.h"
#include "adapters/libxml2/document_state.h"
#include "adapters/libxml2/names.h"
#include "adapters/libxml2/refusals.h"
#include "adapters/libxml2/tree.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

// The namespace that a prefix means at an element.
xmlNs* NamespaceOf(xmlNode* element, std::string_view prefix) {
  if (prefix == "xml") {
    xmlNs xmlSpace{};
    xmlSpace.prefix = Chars("xml");
    xmlSpace.href = XML_XML_NAMESPACE;
    return OwnNamespace(element->doc, &xmlSpace);
  }
  for (const xmlNode* node = element; IsElement(node); node = node->parent) {
    if (const xmlNs* declared = FindDeclaration(node, prefix)) {
      return OwnNamespace(element->doc, declared);
    }
    if (node->ns != nullptr && View(node->ns->prefix) == prefix) {
      return node->ns;
    }
  }
  return nullptr;
}

bool HasName(const xmlAttr* attribute, const SplitName& name) {
  if (name.local.empty() || static_cast<char>(attribute->name[0]) != name.local[0] ||
      View(attribute->name) != name.local) {
    return false;
  }
  return (attribute->ns == nullptr ? std::string_view{} : View(attribute->ns->prefix)) == name.prefix;
}

// Behind the last attribute; the name may turn out to be none.
xmlAttr* NewAttribute(xmlNode* element, xmlAttr* last, std::string_view name, const SplitName& split) {
  const auto [prefix, local] = split;
  const xmlChar* interned = PlainName(element->doc, local);
  if (interned == nullptr || (local.size() != name.size() && !IsPlainName(prefix))) {
    Refuse(Quoted(name) + " cannot be the name of an attribute of " + NameOf(element));
  }
  xmlNs* space = nullptr;
  if (!prefix.empty()) {
    space = NamespaceOf(element, prefix);
    if (space == nullptr) {
      Refuse("the prefix of the attribute " + Quoted(name) + " is not declared at " + NameOf(element));
    }
  }
  return AppendAttribute(element, last, space, interned);
}

}  // namespace

SplitName Split(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? SplitName{{}, name}
                                         : SplitName{name.substr(0, colon), name.substr(colon + 1)};
}

bool IsDeclarationName(std::string_view name) { return name == "xmlns" || name.starts_with("xmlns:"); }

const xmlNs* FindDeclaration(const xmlNode* element, std::string_view prefix) {
  for (const xmlNs* space = element->nsDef; space != nullptr; space = space->next) {
    if (View(space->prefix) == prefix) {
      return space;
    }
  }
  return nullptr;
}

xmlAttr* FindAttribute(const xmlNode* element, const SplitName& name) {
  xmlAttr* attribute = element->properties;
  while (attribute != nullptr && !HasName(attribute, name)) {
    attribute = attribute->next;
  }
  return attribute;
}

xmlAttr* AttributeFor(xmlNode* element, std::string_view name) {
  const SplitName split = Split(name);
  xmlAttr* last = nullptr;
  for (xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
    if (HasName(attribute, split)) {
      return attribute;
    }
    last = attribute;
  }
  return NewAttribute(element, last, name, split);
}

std::string ValueOf(const xmlAttr* attribute) {
  std::string value;
  for (const xmlNode* text = attribute->children; text != nullptr; text = text->next) {
    value += View(text->content);
  }
  return value;
}

}  // namespace parvex::xml
