#pragma once

#include <string>
#include <string_view>

namespace parvex::xml {

/// Why a text is refused for the tree that it would become, with line and column: elements in each other, namespace
/// declarations, names, memory (markup_bounds.h). Empty when it is not; of text that does not parse it is either. For
/// a parser that tells nothing while it makes the tree. Cost: linear in the text.
std::string BeyondTreeBounds(std::string_view text);

}  // namespace parvex::xml
