#include "adapters/msxml/refusals.h"

#include "adapters/msxml/ancestry.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

using windows::Bstr;
using windows::Variant;

bool IsNameOrPrefixedName(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? IsPlainName(name)
                                         : IsPlainName(name.substr(0, colon)) && IsPlainName(name.substr(colon + 1));
}

bool IsDeclaredAt(ComNode node, std::string_view prefix) {
  const Bstr declaration("xmlns:" + std::string(prefix));
  for (; node && TypeOf(node) == NODE_ELEMENT; node = ParentOf(node)) {
    Variant value;
    if (AsElement(node)->getAttribute(declaration.Get(), value.Out()) == S_OK) {
      return true;
    }
  }
  return prefix == "xml";
}

bool MayBeChild(DOMNodeType type) {
  return type == NODE_ELEMENT || type == NODE_TEXT || type == NODE_CDATA_SECTION || type == NODE_COMMENT ||
         type == NODE_PROCESSING_INSTRUCTION;
}

}  // namespace

void RefuseCall(const std::string& description) { throw MakeRuntimeError(RuntimeError::InvalidCall, description); }

void RefuseForbiddenAt(std::string_view text, std::size_t offset, const std::string& where) {
  RefuseCall("the text for " + where + " holds what XML cannot carry: the byte value " +
             std::to_string(static_cast<unsigned char>(text[offset])) + " at byte " + std::to_string(offset + 1));
}

void RefuseAttributeName(const ComNode& node, std::string_view name) {
  const std::size_t colon = name.find(':');
  if (name == "xmlns" || name.starts_with("xmlns:")) {
    RefuseCall("the namespace declaration " + Quoted(name) + " cannot be set at " + NameOf(node));
  }
  if (!IsNameOrPrefixedName(name)) {
    RefuseCall(Quoted(name) + " cannot be the name of an attribute of " + NameOf(node));
  }
  if (colon != std::string_view::npos && !IsDeclaredAt(node, name.substr(0, colon))) {
    RefuseCall("the prefix of the attribute " + Quoted(name) + " is not declared at " + NameOf(node));
  }
}

void RefuseAppend(Box& parent, Box& child) {
  const DOMNodeType parentType = TypeOf(parent);
  const DOMNodeType childType = TypeOf(child);
  const auto refuse = [&](const std::string& reason) {
    RefuseCall("the node " + NameOf(child.node) + " cannot be appended to " + NameOf(parent.node) + ": " + reason);
  };
  if (!MayBeChild(childType)) {
    refuse("only elements, texts, CDATA sections, comments and processing instructions can be");
  }
  if (parentType != NODE_ELEMENT && parentType != NODE_DOCUMENT) {
    refuse("only elements and documents have children");
  }
  if (parentType == NODE_DOCUMENT) {
    if (childType == NODE_TEXT || childType == NODE_CDATA_SECTION) {
      refuse("text stands in elements only");
    }
    if (const ComElement root = RootOf(DocumentOf(parent)); root && childType == NODE_ELEMENT) {
      refuse("it has the root " + NameOf(ComNode::Share(root.Get())));
    }
  } else if (childType == NODE_ELEMENT && IsAtOrAbove(child, parent)) {
    refuse("the one is a part of the other");
  }
}

}  // namespace parvex::xml
