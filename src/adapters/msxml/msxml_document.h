#pragma once

#include <msxml2.h>
#include <windows.h>

#include <string>

#include "adapters/windows/com_pointer.h"
#include "seams/xml.h"

namespace parvex::windows {

/// A document that somebody else made, as a handle of the XML seam; changes go into that document, and its selection
/// language is its owner's. `unknown` is asked for the document interface, which documents of every version of MSXML,
/// of every threading model and of other apartments have; an object without it is a type mismatch (13), null is "object
/// not set" (91).
xml::Document AdoptDocument(IUnknown* unknown);

/// Which documents can be adopted, as the end of an error's text.
std::string ExpectedDocument();

/// The document behind a handle, with a reference of its own; null for a null handle. One of before MSXML 3 is a type
/// mismatch (13).
ComPointer<IXMLDOMDocument2> ComDocument(const xml::Document& document);

}  // namespace parvex::windows
