// The XML seam over MSXML 3.

#include <cstdint>
#include <utility>

#include "adapters/msxml/component_nodes.h"
#include "adapters/msxml/handle_box.h"
#include "adapters/msxml/markup_encoding.h"
#include "adapters/msxml/markup_stream.h"
#include "adapters/msxml/refusals.h"
#include "adapters/msxml/transplant.h"
#include "adapters/windows/system_error.h"
#include "formats/text/text.h"
#include "formats/text/xml_characters.h"
#include "seams/xml.h"

namespace parvex::xml {

using windows::Bstr;
using windows::Hex;
using windows::Variant;

namespace {

/// What the boxes of two nodes know after the one was appended to the other.
void NoteAppended(Box& parent, Box& child) {
  const ComDocument from = KnownDocument(child);
  const ComDocument to = KnownDocument(parent);
  const bool haveOneDocument = from && from.Get() == to.Get();
  if (!haveOneDocument && !child.isFresh) {
    ForgetDocuments();
  }
  child.document = haveOneDocument ? to : ComDocument();
  child.isFresh = false;
  parent.isFresh = false;
}

}  // namespace

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

bool Node::IsElement() const { return TypeOf(Adapter::BoxOf(*this, "IsElement")) == NODE_ELEMENT; }

std::string Node::Name() const { return NameOf(Adapter::BoxOf(*this, "Name").node); }

std::string Node::Text() const {
  Box& box = Adapter::BoxOf(*this, "Text");
  const DOMNodeType type = TypeOf(box);
  if (type == NODE_COMMENT || type == NODE_CDATA_SECTION || type == NODE_ATTRIBUTE) {
    return ValueOf(box.node);
  }
  Bstr text;
  Check(box.node->get_text(text.Out()), "reading a node's text");
  return ReplaceAll(text.Text(), "\r\n", "\n");
}

void Node::SetText(std::string_view text) const {
  Box& box = Adapter::BoxOf(*this, "SetText");
  RefuseForbidden(text, [&] { return NameOf(box.node); });
  switch (TypeOf(box)) {
    case NODE_ELEMENT:
      if (!box.isFresh) {
        ClearChildren(box.node);
      }
      if (!text.empty()) {
        box.isFresh = false;
        Check(box.node->put_text(Bstr(text).Get()), "setting a text");
      }
      return;
    case NODE_ATTRIBUTE:
    case NODE_TEXT:
    case NODE_CDATA_SECTION:
      Check(box.node->put_nodeValue(TextVariant(text).Get()), "setting a value");
      return;
    default:
      RefuseCall("the text of " + NameOf(box.node) + " cannot be set");
  }
}

std::optional<std::string> Node::Attribute(std::string_view name) const {
  const ComElement& element = ElementOf(Adapter::BoxOf(*this, "Attribute"));
  Variant value;
  if (!element || name.empty() || element->getAttribute(Bstr(name).Get(), value.Out()) != S_OK ||
      V_VT(&value.Get()) != VT_BSTR) {
    return std::nullopt;
  }
  return windows::TextOf(V_BSTR(&value.Get()));
}

void Node::SetAttribute(std::string_view name, std::string_view value) const {
  Box& box = Adapter::BoxOf(*this, "SetAttribute");
  const ComElement& element = ElementOf(box);
  if (!element) {
    RefuseCall("the node " + NameOf(box.node) + " cannot have the attribute " + Quoted(name));
  }
  RefuseAttributeName(box.node, name);
  RefuseForbidden(value, [&] { return "the attribute " + Quoted(name) + " of " + NameOf(box.node); });
  Check(element->setAttribute(Bstr(name).Get(), TextVariant(value).Get()), "setting an attribute");
}

void Document::WriteXml(const std::function<void(std::string_view piece)>& take) const {
  if (const std::string text = Xml(); !text.empty()) {
    take(text);
  }
}

std::string Node::Xml() const {
  const Box& box = Adapter::BoxOf(*this, "Xml");
  if (box.isOurs) {
    const ComNode first = FirstChildOf(box.node);
    if (first && !IsDeclaration(first)) {
      if (auto markup = MarkupByStream(box.document)) {
        return std::move(*markup);
      }
    }
  }
  Bstr markup;
  Check(box.node->get_xml(markup.Out()), "reading markup");
  return markup.Text();
}

Node Node::First(std::string_view xpath) const {
  Box& box = Adapter::BoxOf(*this, "First");
  const SelectingByXPath language(DocumentOf(box));
  box.isFresh = false;
  ComNode found;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : box.node->selectSingleNode(Bstr(xpath).Get(), found.Out());
  if (FAILED(result)) {
    RefuseCall("the XPath expression " + Quoted(xpath) + " cannot select nodes");
  }
  return Adapter::HandleOn(std::move(found), box.document);
}

std::vector<Node> Node::All(std::string_view xpath) const {
  Box& box = Adapter::BoxOf(*this, "All");
  const SelectingByXPath language(DocumentOf(box));
  box.isFresh = false;
  MsxmlPointer<IXMLDOMNodeList> list;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : box.node->selectNodes(Bstr(xpath).Get(), list.Out());
  if (FAILED(result)) {
    RefuseCall("the XPath expression " + Quoted(xpath) + " cannot select nodes");
  }
  std::vector<Node> nodes;
  ComNode next;
  while (list->nextNode(next.Out()) == S_OK && next) {
    nodes.push_back(Adapter::HandleOn(next, box.document));
  }
  return nodes;
}

Node Node::Parent() const {
  Box& box = Adapter::BoxOf(*this, "Parent");
  return TypeOf(box) == NODE_ATTRIBUTE ? Node() : Adapter::HandleOn(ParentOf(box.node), KnownDocument(box));
}

Node Node::FirstChild() const {
  Box& box = Adapter::BoxOf(*this, "FirstChild");
  switch (TypeOf(box)) {
    case NODE_ATTRIBUTE:
      return {};
    case NODE_DOCUMENT:
      return Adapter::HandleOn(FirstChildOfDocument(box.node), box.document);
    default:
      return Adapter::HandleOn(FirstChildOf(box.node), KnownDocument(box));
  }
}

Node Node::NextSibling() const {
  const Box& box = Adapter::BoxOf(*this, "NextSibling");
  return Adapter::HandleOn(NextOf(box.node), KnownDocument(box));
}

Node Node::Child(std::string_view name) const {
  const Box& box = Adapter::BoxOf(*this, "Child");
  return Adapter::HandleOn(FirstNamed(FirstChildOf(box.node), name), KnownDocument(box), NODE_ELEMENT);
}

Node Node::Next(std::string_view name) const {
  const Box& box = Adapter::BoxOf(*this, "Next");
  return Adapter::HandleOn(FirstNamed(NextOf(box.node), name), KnownDocument(box), NODE_ELEMENT);
}

Node Node::Descendant(std::string_view name) const {
  const Box& box = Adapter::BoxOf(*this, "Descendant");
  std::vector<ComNode> open;  // the nodes whose following siblings are still to be looked at
  for (ComNode node = FirstChildOf(box.node); node || !open.empty();) {
    if (!node) {
      node = NextOf(open.back());
      open.pop_back();
      continue;
    }
    if (NameOf(node) == name && TypeOf(node) == NODE_ELEMENT) {
      Bstr space;
      node->get_namespaceURI(space.Out());
      if (space.Text().empty()) {
        return Adapter::HandleOn(std::move(node), KnownDocument(box), NODE_ELEMENT);
      }
    }
    open.push_back(node);
    node = FirstChildOf(node);
  }
  return {};
}

Node Node::Append(const Node& child) const {
  Box& parent = Adapter::BoxOf(*this, "Append");
  Box& moved = Adapter::BoxOf(child, "Append");
  RefuseAppend(parent, moved);
  ComNode appended;
  if (FAILED(parent.node->appendChild(moved.node.Get(), appended.Out()))) {
    moved.node = MoveByCopy(moved.node, parent.node);
    moved.element = {};
  }
  NoteAppended(parent, moved);
  return child;
}

void Node::Remove() const {
  Box& box = Adapter::BoxOf(*this, "Remove");
  const DOMNodeType type = TypeOf(box);
  if (type == NODE_ATTRIBUTE || type == NODE_DOCUMENT) {
    RefuseCall("the node " + NameOf(box.node) + " cannot be removed");
  }
  if (const ComNode parent = ParentOf(box.node)) {
    ComNode removed;
    Check(parent->removeChild(box.node.Get(), removed.Out()), "taking out a node");
  }
}

Node Node::Clone() const {
  const Box& box = Adapter::BoxOf(*this, "Clone");
  ComNode copy;
  Check(box.node->cloneNode(VARIANT_TRUE, copy.Out()), "copying a node");
  return Adapter::HandleOn(std::move(copy), KnownDocument(box), box.type);
}

Node AppendElement(const Node& parent, std::string_view name, std::string_view text) {
  Adapter::BoxOf(parent, "AppendElement");
  const Node element = parent.Append(parent.Owner().CreateElement(name));
  if (!text.empty()) {
    element.SetText(text);
  }
  return element;
}

void Node::Fold() const { Adapter::BoxOf(*this, "Fold"); }

Document Node::Owner() const { return Adapter::DocumentOn(DocumentOf(Adapter::BoxOf(*this, "Owner"))); }

Document Document::New() {
  Document document = Adapter::DocumentOn(NewComDocument());
  Adapter::BoxOf(document, "New").isOurs = true;
  return document;
}

Document Document::Parse(std::string_view text) {
  Document document = New();
  const ComDocument& com = Adapter::BoxOf(document, "Parse").document;
  std::string refusal = windows::RefusedMarkup(text);
  if (refusal.empty()) {
    const windows::NeutralMarkup neutral = windows::WithoutEncoding(text);
    LoadText(com, neutral.text);
    if (!neutral.declaration.empty()) {
      SetDeclaration(com, neutral.declaration);
    }
  }
  Adapter::BoxOf(document, "Parse").refusal = std::move(refusal);
  return document;
}

Document Document::Load(std::string_view bytes) {
  std::string refusal;
  const std::string text = windows::DecodeMarkup(bytes, refusal);
  if (refusal.empty()) {
    return Parse(text);
  }
  Document document = New();
  Adapter::BoxOf(document, "Parse").refusal = std::move(refusal);
  return document;
}

std::string Document::ParseError() const {
  Box& box = Adapter::BoxOf(*this, "ParseError");
  if (!box.refusal.empty()) {
    return box.refusal;
  }
  MsxmlPointer<IXMLDOMParseError> error;
  long code = 0;
  if (FAILED(DocumentOf(box)->get_parseError(error.Out())) || FAILED(error->get_errorCode(&code)) || code == 0) {
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

bool Document::IsEmpty() const { return !RootOf(DocumentOf(Adapter::BoxOf(*this, "IsEmpty"))); }

Node Document::Root() const {
  const ComDocument& document = DocumentOf(Adapter::BoxOf(*this, "Root"));
  return Adapter::HandleOnElement(RootOf(document), document);
}

Node Document::CreateElement(std::string_view name) const {
  const ComDocument& document = DocumentOf(Adapter::BoxOf(*this, "CreateElement"));
  if (!IsPlainName(name)) {
    RefuseCall(Quoted(name) + " cannot be the name of an element");
  }
  ComElement made;
  Check(document->createElement(Bstr(name).Get(), made.Out()), "making an element");
  return Adapter::Fresh(Adapter::HandleOnElement(std::move(made), document));
}

Node Document::CreateCData(std::string_view text) const {
  const ComDocument& document = DocumentOf(Adapter::BoxOf(*this, "CreateCData"));
  RefuseForbidden(text, [] { return std::string("a CDATA section"); });
  MsxmlPointer<IXMLDOMCDATASection> made;
  Check(document->createCDATASection(Bstr(text).Get(), made.Out()), "making a CDATA section");
  return Adapter::Fresh(Adapter::HandleOn(ComNode::Share(made.Get()), document, NODE_CDATA_SECTION));
}

Node Document::Append(const Node& child) const {
  const Node root = Root();
  return root ? root.Append(child) : node_.Append(child);
}

std::string Document::Bytes() const {
  const ComNode first = FirstChildOf(Adapter::BoxOf(*this, "Bytes").node);
  return windows::EncodeMarkup(node_.Xml(), IsDeclaration(first) ? ValueOf(first) : std::string());
}

}  // namespace parvex::xml
