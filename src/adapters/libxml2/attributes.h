#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

namespace parvex::xml {

/// A name as written, in two parts; without colon the prefix is empty.
struct SplitName {
  std::string_view prefix;
  std::string_view local;
};
SplitName Split(std::string_view name);

/// Whether an attribute of that name declares a namespace.
bool IsDeclarationName(std::string_view name);
/// The declaration of a prefix that the element itself carries; null when it has none.
const xmlNs* FindDeclaration(const xmlNode* element, std::string_view prefix);

/// The element's attribute; null when it has none of that name.
xmlAttr* FindAttribute(const xmlNode* element, const SplitName& name);
/// The attribute of that name, a new one without a value when the element has none. What is no name, or has a prefix
/// that is not declared at the element, is refused.
xmlAttr* AttributeFor(xmlNode* element, std::string_view name);
std::string ValueOf(const xmlAttr* attribute);

}  // namespace parvex::xml
