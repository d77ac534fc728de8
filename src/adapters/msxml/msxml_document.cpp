#include "adapters/msxml/msxml_document.h"

#include "adapters/msxml/component_nodes.h"
#include "adapters/msxml/handle_box.h"
#include "seams/automation_error.h"

namespace parvex::windows {

xml::Document AdoptDocument(IUnknown* unknown) {
  if (unknown == nullptr) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, "no command document was given");
  }
  ComPointer<IXMLDOMDocument2> document;
  if (FAILED(unknown->QueryInterface(xml::kDomDocument2, reinterpret_cast<void**>(document.Out())))) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "the object given is no MSXML document");
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
