#pragma once

#include <msxml2.h>
#include <windows.h>

#include <string_view>

#include "adapters/windows/com_pointer.h"

namespace parvex::bench {

using Element = windows::ComPointer<IXMLDOMElement>;

/// The fewest calls that make a document of MSXML element by element: texts are UTF-16 already, nothing is checked, and
/// nothing is asked.
class PlainCalls {
 public:
  explicit PlainCalls(windows::ComPointer<IXMLDOMDocument> document) : document_(std::move(document)) {}

  Element Append(IXMLDOMNode* parent, std::wstring_view name, std::wstring_view text = {}) const {
    Element element;
    document_->createElement(Wide(name).text, element.Out());
    if (!text.empty()) {
      element->put_text(Wide(text).text);
    }
    windows::ComPointer<IXMLDOMNode> appended;
    parent->appendChild(element.Get(), appended.Out());
    return element;
  }

  void AppendCData(const Element& parent, std::wstring_view text) const {
    windows::ComPointer<IXMLDOMCDATASection> section;
    document_->createCDATASection(Wide(text).text, section.Out());
    windows::ComPointer<IXMLDOMNode> appended;
    parent->appendChild(section.Get(), appended.Out());
  }

  static void Set(const Element& element, std::wstring_view name, std::wstring_view value) {
    const Wide wide(value);
    VARIANT variant;
    V_VT(&variant) = VT_BSTR;
    V_BSTR(&variant) = wide.text;
    element->setAttribute(Wide(name).text, variant);
  }

 private:
  struct Wide {
    explicit Wide(std::wstring_view from) : text(SysAllocStringLen(from.data(), static_cast<UINT>(from.size()))) {}
    ~Wide() { SysFreeString(text); }
    Wide(const Wide&) = delete;
    Wide& operator=(const Wide&) = delete;
    BSTR text;
  };

  windows::ComPointer<IXMLDOMDocument> document_;
};

}  // namespace parvex::bench
