#pragma once

#include "adapters/msxml/handle_box.h"

namespace parvex::xml {

/// Whether an element is another one, or stands above it. Nearly always told by reading alone: a fresh element is above
/// nothing, and what is above has its name. Where names do not tell, `element` is taken out of its place for a moment,
/// and is not put back when the answer is no: only who moves it next asks.
bool IsAtOrAbove(Box& element, Box& below);

}  // namespace parvex::xml
