#pragma once

#include <libxml/tree.h>

#include <string>

namespace parvex::xml {

/// The text of a node as Node::Text means it.
std::string TextOf(xmlNode* node);

}  // namespace parvex::xml
