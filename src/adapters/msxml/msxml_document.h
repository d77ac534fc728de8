#pragma once

#include <msxml2.h>
#include <windows.h>

#include "adapters/windows/com_pointer.h"
#include "seams/xml.h"

namespace parvex::windows {

/// A document that somebody else made, as a handle of the XML seam; changes go into that document. Its selection
/// language is set to XPath. `unknown` is asked for the document interface; an object that has none is a type mismatch
/// (13), null is "object not set" (91).
xml::Document AdoptDocument(IUnknown* unknown);

/// The document behind a handle, with a reference of its own; null for a null handle.
ComPointer<IXMLDOMDocument2> ComDocument(const xml::Document& document);

}  // namespace parvex::windows
