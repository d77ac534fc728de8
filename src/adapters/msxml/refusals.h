#pragma once

#include <string>
#include <string_view>

#include "adapters/msxml/component_nodes.h"

namespace parvex::xml {

// What the seam refuses though the component would do it, or would refuse it without saying why: each raises "invalid
// call" and changes nothing.

[[noreturn]] void RefuseCall(const std::string& description);

/// A text that XML cannot carry; `where` says what it is for.
void RefuseForbidden(std::string_view text, const std::string& where);
/// What is no name, a prefix that is not declared at the element, a namespace declaration.
void RefuseAttributeName(const ComNode& node, std::string_view name);
/// A child that its parent cannot have.
void RefuseAppend(const ComNode& parent, const ComNode& child);

}  // namespace parvex::xml
