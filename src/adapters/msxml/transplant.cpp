#include "adapters/msxml/transplant.h"

#include <utility>
#include <vector>

namespace parvex::xml {
namespace {

using windows::Bstr;
using windows::Variant;

/// The namespace of an element or attribute; an empty text when it has none.
void ReadNamespace(const ComNode& node, Bstr& space) {
  if (node->get_namespaceURI(space.Out()) != S_OK || space.Get() == nullptr) {
    *space.Out() = Bstr("").Detach();
  }
}

ComNode MakeNode(const ComDocument& document, DOMNodeType type, const ComNode& like) {
  Variant kind;
  V_VT(&kind.Get()) = VT_I4;
  V_I4(&kind.Get()) = type;
  Bstr space;
  ReadNamespace(like, space);
  ComNode made;
  Check(document->createNode(kind.Get(), Bstr(NameOf(like)).Get(), space.Get(), made.Out()), "making a node");
  return made;
}

/// Not every version lists the declarations among the attributes, or adds them to markup by itself.
void DeclarePrefixOf(const ComNode& attribute, const ComElement& element) {
  const std::string name = NameOf(attribute);
  const std::size_t colon = name.find(':');
  Bstr space;
  ReadNamespace(attribute, space);
  if (colon != std::string::npos && !name.starts_with("xml") && SysStringLen(space.Get()) != 0) {
    element->setAttribute(Bstr("xmlns:" + name.substr(0, colon)).Get(), TextVariant(space.Text()).Get());
  }
}

void CopyAttribute(const ComDocument& document, const ComNode& attribute, const ComElement& to) {
  const std::string name = NameOf(attribute);
  const Variant value = TextVariant(ValueOf(attribute));
  if (name == "xmlns") {
    return;  // the element was made in its namespace
  }
  if (name.starts_with("xmlns:")) {
    Check(to->setAttribute(Bstr(name).Get(), value.Get()), "declaring a namespace");
    return;
  }
  DeclarePrefixOf(attribute, to);
  const ComNode made = MakeNode(document, NODE_ATTRIBUTE, attribute);
  Check(made->put_nodeValue(value.Get()), "setting an attribute");
  MsxmlPointer<IXMLDOMAttribute> replaced;
  Check(to->setAttributeNode(made.As<IXMLDOMAttribute>(kDomAttribute).Get(), replaced.Out()), "adding an attribute");
}

void CopyAttributes(const ComDocument& document, const ComNode& from, const ComElement& to) {
  MsxmlPointer<IXMLDOMNamedNodeMap> attributes;
  Check(from->get_attributes(attributes.Out()), "reading attributes");
  ComNode attribute;
  while (attributes->nextNode(attribute.Out()) == S_OK && attribute) {
    CopyAttribute(document, attribute, to);
  }
}

template <typename Made, typename Call>
ComNode Created(Call create) {
  MsxmlPointer<Made> made;
  Check(create(made.Out()), "making a node");
  return ComNode::Share(made.Get());
}

/// A node like that one, without its children; null for one that only a document type can make.
ComNode MakeLike(const ComDocument& document, const ComNode& node) {
  const DOMNodeType type = TypeOf(node);
  const Bstr value(type == NODE_ELEMENT ? std::string() : ValueOf(node));
  switch (type) {
    case NODE_ELEMENT: {
      ComNode made = MakeNode(document, type, node);
      CopyAttributes(document, node, AsElement(made));
      return made;
    }
    case NODE_TEXT:
      return Created<IXMLDOMText>([&](auto made) { return document->createTextNode(value.Get(), made); });
    case NODE_CDATA_SECTION:
      return Created<IXMLDOMCDATASection>([&](auto made) { return document->createCDATASection(value.Get(), made); });
    case NODE_COMMENT:
      return Created<IXMLDOMComment>([&](auto made) { return document->createComment(value.Get(), made); });
    case NODE_PROCESSING_INSTRUCTION:
      return Created<IXMLDOMProcessingInstruction>([&](auto made) {
        return document->createProcessingInstruction(Bstr(NameOf(node)).Get(), value.Get(), made);
      });
    default:
      return {};
  }
}

/// Without a call inside itself: a document that somebody else made may nest as deeply as it likes.
ComNode CopyInto(const ComDocument& document, const ComNode& node) {
  ComNode copy = MakeLike(document, node);
  std::vector<std::pair<ComNode, ComNode>> open;  // a node still to be copied, with its siblings, and their new parent
  open.emplace_back(FirstChildOf(node), copy);
  while (!open.empty()) {
    auto& [next, parent] = open.back();
    if (!next) {
      open.pop_back();
      continue;
    }
    const ComNode source = std::exchange(next, NextOf(next));
    const ComNode made = MakeLike(document, source);
    if (!made) {
      continue;
    }
    ComNode appended;
    Check(parent->appendChild(made.Get(), appended.Out()), "appending a node");
    open.emplace_back(FirstChildOf(source), made);
  }
  return copy;
}

}  // namespace

ComNode MoveByCopy(const ComNode& node, const ComNode& parent) {
  ComNode copy = CopyInto(DocumentOf(parent), node);
  ComNode appended;
  Check(parent->appendChild(copy.Get(), appended.Out()), "appending a node");
  if (const ComNode former = ParentOf(node)) {
    ComNode removed;
    Check(former->removeChild(node.Get(), removed.Out()), "taking out a node");
  }
  return copy;
}

}  // namespace parvex::xml
