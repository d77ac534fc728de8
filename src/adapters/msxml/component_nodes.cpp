#include "adapters/msxml/component_nodes.h"

#include <cstdint>
#include <utility>

#include "adapters/msxml/document_factory.h"
#include "adapters/windows/system_error.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

using windows::Bstr;
using windows::Hex;
using windows::Variant;

constexpr std::string_view kLanguage = "SelectionLanguage";
constexpr std::string_view kXPath = "XPath";

// The component shows a document's declaration as its first node; here it is none.
ComNode SkipDeclaration(ComNode node) {
  while (IsDeclaration(node)) {
    ComNode next;
    node->get_nextSibling(next.Out());
    node = next;
  }
  return node;
}

}  // namespace

bool IsDeclaration(const ComNode& node) {
  return node && TypeOf(node) == NODE_PROCESSING_INSTRUCTION && NameOf(node) == "xml";
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

ComNode FirstChildOf(const ComNode& node) {
  ComNode child;
  node->get_firstChild(child.Out());
  return child;
}

ComNode FirstChildOfDocument(const ComNode& node) { return SkipDeclaration(FirstChildOf(node)); }

ComNode NextOf(const ComNode& node) {
  ComNode next;
  node->get_nextSibling(next.Out());
  return next;
}

ComNode FirstNamed(ComNode node, std::string_view name) {
  // The name first, which tells most of them; a processing instruction can have it, too.
  while (node && !(NameOf(node) == name && TypeOf(node) == NODE_ELEMENT)) {
    node = NextOf(node);
  }
  return node;
}

ComNode ParentOf(const ComNode& node) {
  ComNode parent;
  node->get_parentNode(parent.Out());
  return parent;
}

ComElement AsElement(const ComNode& node) { return node.As<IXMLDOMElement>(kDomElement); }

ComDocument DocumentOf(const ComNode& node) {
  if (TypeOf(node) == NODE_DOCUMENT) {
    return node.As<IXMLDOMDocument>(kDomDocument);
  }
  ComDocument owner;
  Check(node->get_ownerDocument(owner.Out()), "finding a node's document");
  return owner;
}

ComElement RootOf(const ComDocument& document) {
  ComElement root;
  document->get_documentElement(root.Out());
  return root;
}

SelectingByXPath::SelectingByXPath(const ComDocument& anyVersion) {
  const auto document = anyVersion.As<IXMLDOMDocument2>(kDomDocument2);
  if (!document) {
    return;
  }
  const Bstr name(kLanguage);
  Check(document->getProperty(name.Get(), former_.Out()), "reading the selection language");
  if (V_VT(&former_.Get()) == VT_BSTR && windows::TextOf(V_BSTR(&former_.Get())) == kXPath) {
    return;
  }
  Check(document->setProperty(name.Get(), TextVariant(kXPath).Get()), "choosing XPath");
  changed_ = document;
}

SelectingByXPath::~SelectingByXPath() {
  if (changed_) {
    changed_->setProperty(Bstr(kLanguage).Get(), former_.Get());
  }
}

ComDocument NewComDocument() {
  ComDocument document;
  const HRESULT result = CreateDocument30(document);
  if (FAILED(result)) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject,
                           "MSXML 3 cannot be created: " + Hex(static_cast<std::uint32_t>(result)));
  }
  document->put_async(VARIANT_FALSE);
  document->put_validateOnParse(VARIANT_FALSE);
  document->put_resolveExternals(VARIANT_FALSE);
  return document;
}

void ClearChildren(const ComNode& node) {
  for (ComNode child = FirstChildOf(node); child; child = FirstChildOf(node)) {
    ComNode removed;
    Check(node->removeChild(child.Get(), removed.Out()), "taking out a child");
  }
}

void LoadText(const ComDocument& document, std::string_view text) {
  const Bstr wide(text);
  VARIANT_BOOL loaded = VARIANT_FALSE;
  Check(document->loadXML(wide.Get(), &loaded), "loading a text");
}

void SetDeclaration(const ComDocument& document, std::string_view content) {
  ComNode former;
  document->get_firstChild(former.Out());
  if (!IsDeclaration(former)) {
    return;
  }
  MsxmlPointer<IXMLDOMProcessingInstruction> made;
  Check(document->createProcessingInstruction(Bstr("xml").Get(), Bstr(content).Get(), made.Out()),
        "making a declaration");
  ComNode replaced;
  Check(document->replaceChild(made.Get(), former.Get(), replaced.Out()), "replacing the declaration");
}

}  // namespace parvex::xml
