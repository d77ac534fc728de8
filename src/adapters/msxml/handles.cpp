// The XML seam over MSXML 3.

#include <cstdint>
#include <utility>

#include "adapters/msxml/component_nodes.h"
#include "adapters/msxml/handle_box.h"
#include "adapters/msxml/markup_encoding.h"
#include "adapters/msxml/refusals.h"
#include "adapters/msxml/transplant.h"
#include "adapters/windows/system_error.h"
#include "formats/text/text.h"
#include "formats/text/xml_characters.h"
#include "seams/xml.h"

namespace parvex::xml {

using windows::Bstr;
using windows::ComPointer;
using windows::Hex;
using windows::Variant;

Node::Node(const Node& other) noexcept : handle_(other.handle_) {
  if (handle_ != nullptr) {
    ++static_cast<Box*>(handle_)->handles;
  }
}

Node::Node(Node&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Node& Node::operator=(const Node& other) noexcept { return *this = Node(other); }

Node& Node::operator=(Node&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

Node::~Node() {
  auto* box = static_cast<Box*>(handle_);
  if (box != nullptr && --box->handles == 0) {
    delete box;
  }
}

bool Node::IsElement() const { return TypeOf(Adapter::Com(*this, "IsElement")) == NODE_ELEMENT; }

std::string Node::Name() const { return NameOf(Adapter::Com(*this, "Name")); }

std::string Node::Text() const {
  const ComNode& node = Adapter::Com(*this, "Text");
  const DOMNodeType type = TypeOf(node);
  if (type == NODE_COMMENT || type == NODE_CDATA_SECTION || type == NODE_ATTRIBUTE) {
    return ValueOf(node);
  }
  Bstr text;
  Check(node->get_text(text.Out()), "reading a node's text");
  return ReplaceAll(text.Text(), "\r\n", "\n");
}

void Node::SetText(std::string_view text) const {
  const ComNode& node = Adapter::Com(*this, "SetText");
  RefuseForbidden(text, NameOf(node));
  switch (TypeOf(node)) {
    case NODE_ELEMENT:
      ClearChildren(node);
      if (!text.empty()) {
        AppendTextNode(node, text);
      }
      return;
    case NODE_ATTRIBUTE:
    case NODE_TEXT:
    case NODE_CDATA_SECTION:
      Check(node->put_nodeValue(TextVariant(text).Get()), "setting a value");
      return;
    default:
      RefuseCall("the text of " + NameOf(node) + " cannot be set");
  }
}

std::optional<std::string> Node::Attribute(std::string_view name) const {
  const ComElement element = AsElement(Adapter::Com(*this, "Attribute"));
  Variant value;
  const Bstr asked(name);
  if (!element || name.empty() || element->getAttribute(asked.Get(), value.Out()) != S_OK ||
      V_VT(&value.Get()) != VT_BSTR) {
    return std::nullopt;
  }
  return windows::TextOf(V_BSTR(&value.Get()));
}

void Node::SetAttribute(std::string_view name, std::string_view value) const {
  const ComNode& node = Adapter::Com(*this, "SetAttribute");
  const ComElement element = AsElement(node);
  if (!element) {
    RefuseCall("the node " + NameOf(node) + " cannot have the attribute " + Quoted(name));
  }
  RefuseAttributeName(node, name);
  RefuseForbidden(value, "the attribute " + Quoted(name) + " of " + NameOf(node));
  const Bstr set(name);
  Check(element->setAttribute(set.Get(), TextVariant(value).Get()), "setting an attribute");
}

std::string Node::Xml() const {
  Bstr markup;
  Check(Adapter::Com(*this, "Xml")->get_xml(markup.Out()), "reading markup");
  return markup.Text();
}

Node Node::First(std::string_view xpath) const {
  const ComNode& node = Adapter::Com(*this, "First");
  const SelectingByXPath language(node);
  const Bstr expression(xpath);
  ComNode found;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : node->selectSingleNode(expression.Get(), found.Out());
  if (FAILED(result)) {
    RefuseCall("the XPath expression " + Quoted(xpath) + " cannot select nodes");
  }
  return Adapter::HandleOn(std::move(found));
}

std::vector<Node> Node::All(std::string_view xpath) const {
  const ComNode& node = Adapter::Com(*this, "All");
  const SelectingByXPath language(node);
  const Bstr expression(xpath);
  ComPointer<IXMLDOMNodeList> list;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : node->selectNodes(expression.Get(), list.Out());
  if (FAILED(result)) {
    RefuseCall("the XPath expression " + Quoted(xpath) + " cannot select nodes");
  }
  std::vector<Node> nodes;
  ComNode next;
  while (list->nextNode(next.Out()) == S_OK && next) {
    nodes.push_back(Adapter::HandleOn(next));
  }
  return nodes;
}

Node Node::Parent() const {
  const ComNode& node = Adapter::Com(*this, "Parent");
  return TypeOf(node) == NODE_ATTRIBUTE ? Node() : Adapter::HandleOn(ParentOf(node));
}

Node Node::FirstChild() const {
  const ComNode& node = Adapter::Com(*this, "FirstChild");
  return TypeOf(node) == NODE_ATTRIBUTE ? Node() : Adapter::HandleOn(FirstChildOf(node));
}

Node Node::NextSibling() const { return Adapter::HandleOn(NextOf(Adapter::Com(*this, "NextSibling"))); }

Node Node::Child(std::string_view name) const {
  return Adapter::HandleOn(FirstNamed(FirstChildOf(Adapter::Com(*this, "Child")), name));
}

Node Node::Next(std::string_view name) const {
  return Adapter::HandleOn(FirstNamed(NextOf(Adapter::Com(*this, "Next")), name));
}

Node Node::Descendant(std::string_view name) const {
  const ComNode& top = Adapter::Com(*this, "Descendant");
  std::vector<ComNode> open;  // the nodes whose following siblings are still to be looked at
  for (ComNode node = FirstChildOf(top); node || !open.empty();) {
    if (!node) {
      node = NextOf(open.back());
      open.pop_back();
      continue;
    }
    if (TypeOf(node) == NODE_ELEMENT && NameOf(node) == name) {
      Bstr space;
      node->get_namespaceURI(space.Out());
      if (space.Text().empty()) {
        return Adapter::HandleOn(std::move(node));
      }
    }
    open.push_back(node);
    node = FirstChildOf(node);
  }
  return {};
}

Node Node::Append(const Node& child) const {
  const ComNode& parent = Adapter::Com(*this, "Append");
  const ComNode& moved = Adapter::Com(child, "Append");
  RefuseAppend(parent, moved);
  ComNode appended;
  if (FAILED(parent->appendChild(moved.Get(), appended.Out()))) {
    Adapter::PutInPlace(child, MoveByCopy(moved, parent));
  }
  return child;
}

void Node::Remove() const {
  const ComNode& node = Adapter::Com(*this, "Remove");
  const DOMNodeType type = TypeOf(node);
  if (type == NODE_ATTRIBUTE || type == NODE_DOCUMENT) {
    RefuseCall("the node " + NameOf(node) + " cannot be removed");
  }
  if (const ComNode parent = ParentOf(node)) {
    ComNode removed;
    Check(parent->removeChild(node.Get(), removed.Out()), "taking out a node");
  }
}

Node Node::Clone() const {
  ComNode copy;
  Check(Adapter::Com(*this, "Clone")->cloneNode(VARIANT_TRUE, copy.Out()), "copying a node");
  return Adapter::HandleOn(std::move(copy));
}

Document Node::Owner() const { return Adapter::DocumentOn(DocumentOf(Adapter::Com(*this, "Owner"))); }

Document Document::New() { return Adapter::DocumentOn(NewComDocument()); }

Document Document::Parse(std::string_view text) {
  const ComDocument com = NewComDocument();
  Document document = Adapter::DocumentOn(com);
  std::string refusal = windows::RefusedMarkup(text);
  if (refusal.empty()) {
    const windows::NeutralMarkup neutral = windows::WithoutEncoding(text);
    LoadText(com, neutral.text);
    if (!neutral.declaration.empty()) {
      SetDeclaration(com, neutral.declaration);
    }
  }
  Adapter::BoxOf(document)->refusal = std::move(refusal);
  return document;
}

Document Document::Load(std::string_view bytes) {
  std::string refusal;
  const std::string text = windows::DecodeMarkup(bytes, refusal);
  if (refusal.empty()) {
    return Parse(text);
  }
  Document document = New();
  Adapter::BoxOf(document)->refusal = std::move(refusal);
  return document;
}

std::string Document::ParseError() const {
  const ComDocument com = DocumentOf(Adapter::Com(node_, "ParseError"));
  if (!Adapter::BoxOf(*this)->refusal.empty()) {
    return Adapter::BoxOf(*this)->refusal;
  }
  ComPointer<IXMLDOMParseError> error;
  long code = 0;
  if (FAILED(com->get_parseError(error.Out())) || FAILED(error->get_errorCode(&code)) || code == 0) {
    return {};
  }
  long line = 0;
  long column = 0;
  Bstr reason;
  error->get_line(&line);
  error->get_linepos(&column);
  error->get_reason(reason.Out());
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + reason.Text() + " (" +
         Hex(static_cast<std::uint32_t>(code)) + ")";
}

bool Document::IsEmpty() const { return !RootOf(DocumentOf(Adapter::Com(node_, "IsEmpty"))); }

Node Document::Root() const {
  const ComElement root = RootOf(DocumentOf(Adapter::Com(node_, "Root")));
  return Adapter::HandleOn(ComNode::Share(root.Get()));
}

Node Document::CreateElement(std::string_view name) const {
  const ComDocument com = DocumentOf(Adapter::Com(node_, "CreateElement"));
  if (!IsPlainName(name)) {
    RefuseCall(Quoted(name) + " cannot be the name of an element");
  }
  const Bstr tag(name);
  ComElement made;
  Check(com->createElement(tag.Get(), made.Out()), "making an element");
  return Adapter::HandleOn(ComNode::Share(made.Get()));
}

Node Document::CreateCData(std::string_view text) const {
  const ComDocument com = DocumentOf(Adapter::Com(node_, "CreateCData"));
  RefuseForbidden(text, "a CDATA section");
  const Bstr value(text);
  ComPointer<IXMLDOMCDATASection> made;
  Check(com->createCDATASection(value.Get(), made.Out()), "making a CDATA section");
  return Adapter::HandleOn(ComNode::Share(made.Get()));
}

Node Document::Append(const Node& child) const {
  const Node root = Root();
  return root ? root.Append(child) : node_.Append(child);
}

std::string Document::Bytes() const {
  const ComNode& node = Adapter::Com(node_, "Bytes");
  ComNode first;
  node->get_firstChild(first.Out());
  const bool isDeclared = first && TypeOf(first) == NODE_PROCESSING_INSTRUCTION && NameOf(first) == "xml";
  return windows::EncodeMarkup(node_.Xml(), isDeclared ? ValueOf(first) : std::string());
}

}  // namespace parvex::xml
