#include <utility>

#include "adapters/libxml2/adoption.h"
#include "adapters/libxml2/attributes.h"
#include "adapters/libxml2/encoding.h"
#include "adapters/libxml2/folding.h"
#include "adapters/libxml2/markup.h"
#include "adapters/libxml2/names.h"
#include "adapters/libxml2/node_text.h"
#include "adapters/libxml2/nodes.h"
#include "adapters/libxml2/parse.h"
#include "adapters/libxml2/refusals.h"
#include "adapters/libxml2/select.h"
#include "adapters/libxml2/tree.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::xml {

// The one door between handles and trees.
struct Adapter {
  static Node HandleOn(xmlNode* node) {
    Node handle;
    if (node != nullptr) {
      Hold(node);
      handle.handle_ = node;
    }
    return handle;
  }

  static Document HandleOn(UnheldDocument document) { return HandleOn(document.release()); }
  static Document HandleOn(xmlDoc* document) {
    Document handle;
    handle.node_ = HandleOn(AsNode(document));
    return handle;
  }

  static xmlNode* Tree(const Node& node, const char* asked) {
    if (!node) {
      throw MakeRuntimeError(RuntimeError::ObjectNotSet, std::string(asked) + " was asked of a missing node");
    }
    return static_cast<xmlNode*>(node.handle_);
  }

  // For what looks at the node's children.
  static xmlNode* Unfolded(const Node& node, const char* asked) {
    xmlNode* tree = Tree(node, asked);
    Unfold(tree);
    return tree;
  }

  // For what looks at everything below the node.
  static xmlNode* UnfoldedTree(const Node& node, const char* asked) {
    xmlNode* tree = Tree(node, asked);
    UnfoldTree(tree);
    return tree;
  }

  // For an expression, which may look anywhere in the document.
  static xmlNode* ForSearch(const Node& node, const char* asked) {
    xmlNode* tree = Tree(node, asked);
    UnfoldForSearch(tree->doc);
    return tree;
  }

  static xmlDoc* Tree(const Document& document, const char* asked) {
    if (!document) {
      throw MakeRuntimeError(RuntimeError::ObjectNotSet, std::string(asked) + " was asked of a missing node");
    }
    return static_cast<xmlNode*>(document.node_.handle_)->doc;
  }
};

namespace {

xmlNode* FirstNamed(xmlNode* node, std::string_view name) {
  const auto [prefix, local] = Split(name);
  for (; node != nullptr; node = node->next) {
    if (IsElement(node) && View(node->name) == local &&
        (node->ns == nullptr ? std::string_view{} : View(node->ns->prefix)) == prefix) {
      return node;
    }
  }
  return nullptr;
}

const xmlChar* NameOfNewElement(xmlDoc* document, std::string_view name) {
  const xmlChar* interned = PlainName(document, name);
  if (interned == nullptr) {
    Refuse(Quoted(name) + " cannot be the name of an element");
  }
  return interned;
}

}  // namespace

Node::Node(const Node& other) noexcept : handle_(other.handle_) {
  if (handle_ != nullptr) {
    Hold(static_cast<xmlNode*>(handle_));
  }
}

Node::Node(Node&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Node& Node::operator=(const Node& other) noexcept {
  Node copy(other);
  std::swap(handle_, copy.handle_);
  return *this;
}

Node& Node::operator=(Node&& other) noexcept {
  Node moved(std::move(other));
  std::swap(handle_, moved.handle_);
  return *this;
}

Node::~Node() {
  if (handle_ != nullptr) {
    Release(static_cast<xmlNode*>(handle_));
  }
}

bool Node::IsElement() const { return xml::IsElement(Adapter::Tree(*this, "IsElement")); }

std::string Node::Name() const { return NameOf(Adapter::Tree(*this, "Name")); }

std::string Node::Text() const { return TextOf(Adapter::UnfoldedTree(*this, "Text")); }

void Node::SetText(std::string_view text) const {
  xmlNode* node = Adapter::Unfolded(*this, "SetText");
  if (!CanCarry(text)) {
    RefuseText(text, NameOf(node));
  }
  switch (node->type) {
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE:
      ClearChildren(node);
      if (!text.empty()) {
        AppendText(node, text);
      }
      break;
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
      SetContent(node, text);
      break;
    default:
      Refuse("the text of " + NameOf(node) + " cannot be set");
  }
}

std::optional<std::string> Node::Attribute(std::string_view name) const {
  const xmlNode* element = Adapter::Tree(*this, "Attribute");
  if (!xml::IsElement(element)) {
    return std::nullopt;
  }
  const SplitName split = Split(name);
  if (IsDeclarationName(name)) {
    const xmlNs* space = FindDeclaration(element, split.prefix.empty() ? std::string_view{} : split.local);
    return space == nullptr ? std::nullopt : std::optional<std::string>(View(space->href));
  }
  const xmlAttr* attribute = FindAttribute(element, split);
  return attribute == nullptr ? std::nullopt : std::optional<std::string>(ValueOf(attribute));
}

void Node::SetAttribute(std::string_view name, std::string_view value) const {
  xmlNode* element = Adapter::Tree(*this, "SetAttribute");
  if (!xml::IsElement(element)) {
    Refuse("the node " + NameOf(element) + " cannot have the attribute " + Quoted(name));
  }
  if (IsDeclarationName(name)) {
    Refuse("the namespace declaration " + Quoted(name) + " cannot be set at " + NameOf(element));
  }
  if (!CanCarry(value)) {
    RefuseText(value, "the attribute " + Quoted(name) + " of " + NameOf(element));
  }
  xmlAttr* attribute = AttributeFor(element, name);
  ClearChildren(AsNode(attribute));
  if (!value.empty()) {
    AppendText(AsNode(attribute), value);
  }
}

std::string Node::Xml() const { return MarkupOf(Adapter::Tree(*this, "Xml")); }

void Document::WriteXml(const std::function<void(std::string_view piece)>& take) const {
  WriteMarkup(Adapter::Tree(node_, "WriteXml"), take);
}

Node Node::First(std::string_view xpath) const {
  const std::vector<xmlNode*> found = Select(Adapter::ForSearch(*this, "First"), xpath);
  return found.empty() ? Node() : Adapter::HandleOn(found.front());
}

std::vector<Node> Node::All(std::string_view xpath) const {
  const std::vector<xmlNode*> found = Select(Adapter::ForSearch(*this, "All"), xpath);
  std::vector<Node> nodes;
  nodes.reserve(found.size());
  for (xmlNode* node : found) {
    nodes.push_back(Adapter::HandleOn(node));
  }
  return nodes;
}

Node Node::Parent() const {
  xmlNode* node = Adapter::Tree(*this, "Parent");
  const bool hasNone = IsDocument(node) || IsAttribute(node) || IsParentless(node);
  return hasNone ? Node() : Adapter::HandleOn(node->parent);
}

Node Node::FirstChild() const {
  xmlNode* node = Adapter::Unfolded(*this, "FirstChild");
  const bool canHave = xml::IsElement(node) || IsDocument(node) || IsAttribute(node);
  return canHave ? Adapter::HandleOn(node->children) : Node();
}

Node Node::NextSibling() const {
  xmlNode* node = Adapter::Tree(*this, "NextSibling");
  const bool hasNone = IsDocument(node) || IsAttribute(node) || IsParentless(node);
  return hasNone ? Node() : Adapter::HandleOn(node->next);
}

Node Node::Child(std::string_view name) const {
  xmlNode* node = Adapter::Unfolded(*this, "Child");
  const bool canHave = xml::IsElement(node) || IsDocument(node);
  return canHave ? Adapter::HandleOn(FirstNamed(node->children, name)) : Node();
}

Node Node::Next(std::string_view name) const {
  xmlNode* node = Adapter::Tree(*this, "Next");
  const bool hasNone = IsDocument(node) || IsAttribute(node) || IsParentless(node);
  return hasNone ? Node() : Adapter::HandleOn(FirstNamed(node->next, name));
}

Node Node::Descendant(std::string_view name) const {
  xmlNode* top = Adapter::UnfoldedTree(*this, "Descendant");
  for (xmlNode* node = NextInTree(top, top); node != nullptr; node = NextInTree(node, top)) {
    if (xml::IsElement(node) && node->ns == nullptr && View(node->name) == name) {
      return Adapter::HandleOn(node);
    }
  }
  return Node();
}

Node Node::Append(const Node& child) const {
  xmlNode* parent = Adapter::Unfolded(*this, "Append");
  xmlNode* node = Adapter::Tree(child, "Append");
  CheckAppend(node, parent);
  Move(node, parent);
  return child;
}

Node AppendElement(const Node& parent, std::string_view name, std::string_view text) {
  xmlNode* above = Adapter::Unfolded(parent, "AppendElement");
  const Node element = IsElement(above) ? Adapter::HandleOn(AppendElement(above, NameOfNewElement(above->doc, name)))
                                        : parent.Append(parent.Owner().CreateElement(name));
  if (!text.empty()) {
    element.SetText(text);
  }
  return element;
}

void Node::Remove() const {
  xmlNode* node = Adapter::Tree(*this, "Remove");
  if (!IsMovable(node)) {
    Refuse("the node " + NameOf(node) + " cannot be removed");
  }
  if (!IsParentless(node)) {
    Unlink(node);
  }
}

Node Node::Clone() const {
  xmlNode* node = Adapter::UnfoldedTree(*this, "Clone");
  if (!IsMovable(node)) {
    Refuse("the node " + NameOf(node) + " cannot be cloned");
  }
  return Adapter::HandleOn(NewClone(node));
}

void Node::Fold() const { xml::Fold(Adapter::Tree(*this, "Fold")); }

Document Node::Owner() const { return Adapter::HandleOn(Adapter::Tree(*this, "Owner")->doc); }

std::shared_ptr<void> ExpectManyDocuments() { return nullptr; }

Document Document::New() { return Adapter::HandleOn(NewDocument()); }

Document Document::Parse(std::string_view text) { return Adapter::HandleOn(ParseText(text)); }

Document Document::Load(std::string_view bytes) {
  const Decoded decoded = Decode(bytes);
  return Adapter::HandleOn(decoded.error.empty() ? ParseText(decoded.text) : FailedDocument(decoded.error));
}

std::string Document::ParseError() const { return StateOf(Adapter::Tree(*this, "ParseError")).parseError; }

bool Document::IsEmpty() const { return RootOf(Adapter::Tree(*this, "IsEmpty")) == nullptr; }

Node Document::Root() const { return Adapter::HandleOn(RootOf(Adapter::Tree(*this, "Root"))); }

Node Document::CreateElement(std::string_view name) const {
  xmlDoc* document = Adapter::Tree(*this, "CreateElement");
  return Adapter::HandleOn(NewElement(document, NameOfNewElement(document, name)));
}

Node Document::CreateCData(std::string_view text) const {
  xmlDoc* document = Adapter::Tree(*this, "CreateCData");
  if (!CanCarry(text)) {
    RefuseText(text, "a CDATA section");
  }
  return Adapter::HandleOn(NewCData(document, text));
}

Node Document::Append(const Node& child) const {
  xmlDoc* document = Adapter::Tree(*this, "Append");
  xmlNode* root = RootOf(document);
  return root == nullptr ? node_.Append(child) : Adapter::HandleOn(root).Append(child);
}

std::string Document::Bytes() const {
  xmlDoc* document = Adapter::Tree(*this, "Bytes");
  const std::string& declared = StateOf(document).encoding;
  std::unique_ptr<Encoding> encoding = Encoding::Named(declared);
  const bool isKnown = encoding != nullptr;
  if (!isKnown) {
    encoding = Encoding::Named("UTF-8");
  }
  if (!encoding->IsUnicode()) {
    UnfoldTree(xml::AsNode(document));
  }
  std::optional<std::string> bytes = encoding->Encode(MarkupFor(document, *encoding, isKnown ? declared : "UTF-8"));
  if (!bytes) {
    Refuse("a name, comment or processing instruction of the document cannot be written in the encoding " +
           Quoted(declared));
  }
  return *std::move(bytes);
}

}  // namespace parvex::xml
