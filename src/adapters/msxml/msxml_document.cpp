#include "adapters/msxml/msxml_document.h"

#include "adapters/msxml/component_nodes.h"
#include "adapters/msxml/handle_box.h"
#include "seams/automation_error.h"

namespace parvex::windows {

xml::Document AdoptDocument(IUnknown* unknown) {
  if (unknown == nullptr) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, "no command document was given");
  }
  ComPointer<IXMLDOMDocument> document;
  if (FAILED(unknown->QueryInterface(xml::kDomDocument, reinterpret_cast<void**>(document.Out())))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "the object given is no MSXML document: " + ExpectedDocument());
  }
  return xml::Adapter::DocumentOn(document);
}

std::string ExpectedDocument() {
  return "a DOMDocument of MSXML 3, or of another version that has its interface IXMLDOMDocument, is expected";
}

ComPointer<IXMLDOMDocument2> ComDocument(const xml::Document& document) {
  if (!document) {
    return {};
  }
  auto com = xml::DocumentOf(xml::Adapter::BoxOf(document, "ComDocument")).As<IXMLDOMDocument2>(xml::kDomDocument2);
  if (!com) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "the document has no interface IXMLDOMDocument2");
  }
  return com;
}

}  // namespace parvex::windows
