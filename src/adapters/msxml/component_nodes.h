#pragma once

#include <msxml2.h>
#include <windows.h>

#include <string>
#include <string_view>

#include "adapters/msxml/msxml_pointer.h"
#include "adapters/windows/com_pointer.h"

namespace parvex::xml {

// Nodes and documents of MSXML 3, asked and changed without its result codes: a call that the component refuses raises
// its code.

using ComNode = MsxmlPointer<IXMLDOMNode>;
using ComElement = MsxmlPointer<IXMLDOMElement>;
/// Its second interface, which has the selection language, is asked for where it is wanted: documents of before MSXML 3
/// lack it.
using ComDocument = MsxmlPointer<IXMLDOMDocument>;

// The import library of the compiler knows none of them.
inline constexpr IID kDomDocument = {0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
inline constexpr IID kDomDocument2 = {0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
inline constexpr IID kDomElement = {0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

inline constexpr IID kDomAttribute = {0x2933BF85, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

/// Raises a failed result; `doing` says what was tried.
void Check(HRESULT result, const char* doing);

windows::Variant TextVariant(std::string_view text);

DOMNodeType TypeOf(const ComNode& node);
std::string NameOf(const ComNode& node);
/// The value of an attribute, text, section or comment as it stands.
std::string ValueOf(const ComNode& node);

/// Whether it is a document's declaration, which the component shows as its first node. Null is none.
bool IsDeclaration(const ComNode& node);

ComNode FirstChildOf(const ComNode& node);
/// The same of a document, whose declaration is no node here.
ComNode FirstChildOfDocument(const ComNode& node);
ComNode NextOf(const ComNode& node);
ComNode ParentOf(const ComNode& node);
/// The node itself or the next of its siblings that is an element of that name; null when there is none.
ComNode FirstNamed(ComNode node, std::string_view name);

/// Null for a node that is no element.
ComElement AsElement(const ComNode& node);
ComDocument DocumentOf(const ComNode& node);
/// Null for an empty document.
ComElement RootOf(const ComDocument& document);

/// A new, empty document of MSXML 3.
ComDocument NewComDocument();

/// While it lives, a node's document selects by XPath; then it has again the language that it had, which its owner may
/// have chosen. So no expression ever goes out as a pattern: a malformed one ends the process of some versions.
/// A document without a language to choose keeps its own.
class SelectingByXPath {
 public:
  explicit SelectingByXPath(const ComDocument& document);
  ~SelectingByXPath();
  SelectingByXPath(const SelectingByXPath&) = delete;
  SelectingByXPath& operator=(const SelectingByXPath&) = delete;

 private:
  MsxmlPointer<IXMLDOMDocument2> changed_;  // null when there is nothing to put back
  windows::Variant former_;
};

/// Leaves the document empty, with its own parse error, when the text does not parse.
void LoadText(const ComDocument& document, std::string_view text);

/// Gives the document's declaration, if it has one, this content.
void SetDeclaration(const ComDocument& document, std::string_view content);

/// Takes the children of an element out one by one, so that handles on them stay valid.
void ClearChildren(const ComNode& node);

}  // namespace parvex::xml
