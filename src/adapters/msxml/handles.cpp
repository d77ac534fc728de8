// The XML seam over MSXML 3.

#include <msxml2.h>
#include <windows.h>

#include <memory>
#include <utility>

#include "adapters/msxml/markup_encoding.h"
#include "adapters/msxml/msxml_document.h"
#include "adapters/windows/com_pointer.h"
#include "adapters/windows/system_error.h"
#include "formats/text/text.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::xml {
namespace {

using windows::Bstr;
using windows::ComPointer;
using windows::Hex;
using windows::Variant;

// The import library of the compiler knows neither.
constexpr CLSID kDomDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr IID kDomDocument2 = {0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID kDomElement = {0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

using ComNode = ComPointer<IXMLDOMNode>;

/// What a handle points to: one reference to the component's node. The component gives a node another address each time
/// it is asked for, so two handles mean the same box only when one was copied from the other.
struct Box {
  ComNode node;
  std::string refusal;  // of a document: why its text was not even given to the component
  unsigned handles = 1;
};

[[noreturn]] void RefuseCall(const std::string& description) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, description);
}

void Check(HRESULT result, const char* doing) {
  if (FAILED(result)) {
    throw AutomationError(static_cast<std::uint32_t>(result), kErrorSource,
                          std::string(doing) + " failed in MSXML with " + Hex(static_cast<std::uint32_t>(result)));
  }
}

DOMNodeType TypeOf(const ComNode& node) {
  DOMNodeType type = NODE_INVALID;
  Check(node->get_nodeType(&type), "reading a node's type");
  return type;
}

std::string NameOf(const ComNode& node) {
  Bstr name;
  Check(node->get_nodeName(name.Out()), "reading a node's name");
  return name.Text();
}

// The value of an attribute, text, section or comment as it stands.
std::string ValueOf(const ComNode& node) {
  Variant value;
  Check(node->get_nodeValue(value.Out()), "reading a node's value");
  return V_VT(&value.Get()) == VT_BSTR ? windows::TextOf(V_BSTR(&value.Get())) : std::string();
}

Variant TextVariant(std::string_view text) {
  Variant variant;
  V_VT(&variant.Get()) = VT_BSTR;
  V_BSTR(&variant.Get()) = Bstr(text).Detach();
  return variant;
}

void RefuseForbidden(std::string_view text, const std::string& where) {
  const std::size_t offset = FindForbidden(text);
  if (offset != std::string_view::npos) {
    RefuseCall("the text for " + where + " holds at byte " + std::to_string(offset) + " what XML cannot carry");
  }
}

// The component shows a document's declaration as its first node; here it is none.
ComNode SkipDeclaration(ComNode node) {
  while (node && TypeOf(node) == NODE_PROCESSING_INSTRUCTION && NameOf(node) == "xml") {
    ComNode next;
    node->get_nextSibling(next.Out());
    node = next;
  }
  return node;
}

ComNode FirstChildOf(const ComNode& node) {
  ComNode child;
  node->get_firstChild(child.Out());
  return SkipDeclaration(std::move(child));
}

ComNode NextOf(const ComNode& node) {
  ComNode next;
  node->get_nextSibling(next.Out());
  return next;
}

ComNode FirstNamed(ComNode node, std::string_view name) {
  while (node && !(TypeOf(node) == NODE_ELEMENT && NameOf(node) == name)) {
    node = NextOf(node);
  }
  return node;
}

ComNode ParentOf(const ComNode& node) {
  ComNode parent;
  node->get_parentNode(parent.Out());
  return parent;
}

ComPointer<IXMLDOMElement> AsElement(const ComNode& node) { return node.As<IXMLDOMElement>(kDomElement); }

ComPointer<IXMLDOMDocument2> DocumentOf(const ComNode& node) {
  if (TypeOf(node) == NODE_DOCUMENT) {
    return node.As<IXMLDOMDocument2>(kDomDocument2);
  }
  ComPointer<IXMLDOMDocument> owner;
  Check(node->get_ownerDocument(owner.Out()), "finding a node's document");
  return owner.As<IXMLDOMDocument2>(kDomDocument2);
}

ComPointer<IXMLDOMElement> RootOf(const ComPointer<IXMLDOMDocument2>& document) {
  ComPointer<IXMLDOMElement> root;
  document->get_documentElement(root.Out());
  return root;
}

void SelectByXPath(const ComPointer<IXMLDOMDocument2>& document) {
  const Bstr name("SelectionLanguage");
  Check(document->setProperty(name.Get(), TextVariant("XPath").Get()), "choosing XPath");
}

ComPointer<IXMLDOMDocument2> NewComDocument() {
  ComPointer<IXMLDOMDocument2> document;
  const HRESULT result = CoCreateInstance(kDomDocument30, nullptr, CLSCTX_INPROC_SERVER, kDomDocument2,
                                          reinterpret_cast<void**>(document.Out()));
  if (FAILED(result)) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject,
                           "MSXML 3 cannot be created: " + Hex(static_cast<std::uint32_t>(result)));
  }
  document->put_async(VARIANT_FALSE);
  document->put_validateOnParse(VARIANT_FALSE);
  document->put_resolveExternals(VARIANT_FALSE);
  SelectByXPath(document);
  return document;
}

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

void RefuseAttributeName(const ComNode& node, std::string_view name) {
  const std::size_t colon = name.find(':');
  const bool isDeclaration = name == "xmlns" || name.starts_with("xmlns:");
  if (!IsNameOrPrefixedName(name) || isDeclaration ||
      (colon != std::string_view::npos && !IsDeclaredAt(node, name.substr(0, colon)))) {
    RefuseCall("\"" + std::string(name) + "\" is no name for an attribute of " + NameOf(node));
  }
}

// Whether `node` stands at or above `below`. Nodes have no identity to be compared by, so an attribute marks it.
bool IsAtOrAbove(const ComNode& node, ComNode below) {
  const ComPointer<IXMLDOMElement> element = AsElement(node);
  if (!element) {
    return false;
  }
  const Bstr mark("parvex-mark");
  element->setAttribute(mark.Get(), TextVariant("1").Get());
  bool found = false;
  for (; below && TypeOf(below) == NODE_ELEMENT && !found; below = ParentOf(below)) {
    Variant value;
    found = AsElement(below)->getAttribute(mark.Get(), value.Out()) == S_OK;
  }
  element->removeAttribute(mark.Get());
  return found;
}

bool MayBeChild(DOMNodeType type) {
  return type == NODE_ELEMENT || type == NODE_TEXT || type == NODE_CDATA_SECTION || type == NODE_COMMENT ||
         type == NODE_PROCESSING_INSTRUCTION;
}

void RefuseAppend(const ComNode& parent, const ComNode& child) {
  const DOMNodeType parentType = TypeOf(parent);
  const DOMNodeType childType = TypeOf(child);
  const std::string attempt = NameOf(child) + " cannot become a child of " + NameOf(parent);
  if (!MayBeChild(childType) || (parentType != NODE_ELEMENT && parentType != NODE_DOCUMENT)) {
    RefuseCall(attempt);
  }
  if (parentType == NODE_DOCUMENT) {
    const bool isText = childType == NODE_TEXT || childType == NODE_CDATA_SECTION;
    if (isText || (childType == NODE_ELEMENT && RootOf(DocumentOf(parent)))) {
      RefuseCall(attempt + (isText ? ": text outside the root" : ": it has a root"));
    }
  } else if (IsAtOrAbove(child, parent)) {
    RefuseCall(attempt + ": it stands above it");
  }
}

void ClearChildren(const ComNode& node) {
  for (ComNode child = FirstChildOf(node); child; child = FirstChildOf(node)) {
    ComNode removed;
    Check(node->removeChild(child.Get(), removed.Out()), "taking out a child");
  }
}

void AppendTextNode(const ComNode& element, std::string_view text) {
  ComPointer<IXMLDOMText> made;
  const Bstr value(text);
  Check(DocumentOf(element)->createTextNode(value.Get(), made.Out()), "making a text");
  ComNode appended;
  Check(element->appendChild(made.Get(), appended.Out()), "appending a text");
}

void LoadText(const ComPointer<IXMLDOMDocument2>& document, std::string_view text) {
  const Bstr wide(text);
  VARIANT_BOOL loaded = VARIANT_FALSE;
  Check(document->loadXML(wide.Get(), &loaded), "loading a text");
}

}  // namespace

struct Adapter {
  static const ComNode& Com(const Node& node, const char* asked) {
    if (node.handle_ == nullptr) {
      throw MakeRuntimeError(RuntimeError::ObjectNotSet, std::string(asked) + " of a missing node");
    }
    return static_cast<Box*>(node.handle_)->node;
  }

  static Node HandleOn(ComNode com) {
    Node node;
    if (com) {
      node.handle_ = new Box{std::move(com), {}};
    }
    return node;
  }

  static Document DocumentOn(const ComPointer<IXMLDOMDocument2>& com) {
    Document document;
    document.node_ = HandleOn(ComNode::Share(com.Get()));
    return document;
  }

  static Box* BoxOf(const Document& document) { return static_cast<Box*>(document.node_.handle_); }
};

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
  const ComPointer<IXMLDOMElement> element = AsElement(Adapter::Com(*this, "Attribute"));
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
  const ComPointer<IXMLDOMElement> element = AsElement(node);
  if (!element) {
    RefuseCall(NameOf(node) + " can have no attributes");
  }
  RefuseAttributeName(node, name);
  RefuseForbidden(value, "attribute " + std::string(name) + " of " + NameOf(node));
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
  const Bstr expression(xpath);
  ComNode found;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : node->selectSingleNode(expression.Get(), found.Out());
  if (FAILED(result)) {
    RefuseCall("the expression \"" + std::string(xpath) + "\" cannot be used to select nodes");
  }
  return Adapter::HandleOn(std::move(found));
}

std::vector<Node> Node::All(std::string_view xpath) const {
  const ComNode& node = Adapter::Com(*this, "All");
  const Bstr expression(xpath);
  ComPointer<IXMLDOMNodeList> list;
  const HRESULT result = xpath.empty() ? E_INVALIDARG : node->selectNodes(expression.Get(), list.Out());
  if (FAILED(result)) {
    RefuseCall("the expression \"" + std::string(xpath) + "\" cannot be used to select nodes");
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
  const ComNode& moved = Adapter::Com(child, "Being appended");
  RefuseAppend(parent, moved);
  ComNode appended;
  Check(parent->appendChild(moved.Get(), appended.Out()), "appending a node");
  return child;
}

void Node::Remove() const {
  const ComNode& node = Adapter::Com(*this, "Remove");
  const DOMNodeType type = TypeOf(node);
  if (type == NODE_ATTRIBUTE || type == NODE_DOCUMENT) {
    RefuseCall(NameOf(node) + " cannot be taken out");
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
  const ComPointer<IXMLDOMDocument2> com = NewComDocument();
  Document document = Adapter::DocumentOn(com);
  std::string refusal = windows::RefusedMarkup(text);
  if (refusal.empty()) {
    LoadText(com, text);
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
  const ComPointer<IXMLDOMDocument2> com = DocumentOf(Adapter::Com(node_, "ParseError"));
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
  const ComPointer<IXMLDOMElement> root = RootOf(DocumentOf(Adapter::Com(node_, "Root")));
  return Adapter::HandleOn(ComNode::Share(root.Get()));
}

Node Document::CreateElement(std::string_view name) const {
  const ComPointer<IXMLDOMDocument2> com = DocumentOf(Adapter::Com(node_, "CreateElement"));
  if (!IsPlainName(name)) {
    RefuseCall("\"" + std::string(name) + "\" is no name for an element");
  }
  const Bstr tag(name);
  ComPointer<IXMLDOMElement> made;
  Check(com->createElement(tag.Get(), made.Out()), "making an element");
  return Adapter::HandleOn(ComNode::Share(made.Get()));
}

Node Document::CreateCData(std::string_view text) const {
  const ComPointer<IXMLDOMDocument2> com = DocumentOf(Adapter::Com(node_, "CreateCData"));
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

namespace parvex::windows {

xml::Document AdoptDocument(IUnknown* unknown) {
  if (unknown == nullptr) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, "No command document was given");
  }
  ComPointer<IXMLDOMDocument2> document;
  if (FAILED(unknown->QueryInterface(xml::kDomDocument2, reinterpret_cast<void**>(document.Out())))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "The object given is no MSXML document");
  }
  xml::SelectByXPath(document);
  return xml::Adapter::DocumentOn(document);
}

ComPointer<IXMLDOMDocument2> ComDocument(const xml::Document& document) {
  if (!document) {
    return {};
  }
  return xml::DocumentOf(xml::Adapter::Com(document.AsNode(), "ComDocument"));
}

}  // namespace parvex::windows
