#pragma once

#include <string>
#include <string_view>

#include "adapters/msxml/handle_box.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {

// What the seam refuses though the component would do it, or would refuse it without saying why: each raises "invalid
// call" and changes nothing. What an error says is asked for and put together when it is raised.

[[noreturn]] void RefuseCall(const std::string& description);
/// A text that XML cannot carry from that byte on; `where` says what it was for.
[[noreturn]] void RefuseForbiddenAt(std::string_view text, std::size_t offset, const std::string& where);

/// A text that XML cannot carry; `where()` says what it is for.
template <typename Where>
void RefuseForbidden(std::string_view text, Where where) {
  const std::size_t offset = FindForbidden(text);
  if (offset != std::string_view::npos) {
    RefuseForbiddenAt(text, offset, where());
  }
}

/// What is no name, a prefix that is not declared at the element, a namespace declaration.
void RefuseAttributeName(const ComNode& node, std::string_view name);
/// A child that its parent cannot have.
void RefuseAppend(Box& parent, Box& child);

}  // namespace parvex::xml
