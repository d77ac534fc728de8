#pragma once

#include <oaidl.h>

#include <string>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// Conversions for objects that are implemented here and driven from outside. An object from outside becomes a wrapped
/// reference named `name`; an object of this system goes out as the dispatch interface it was wrapped from, or behind a
/// dispatch interface of its own. A keyed collection goes out as an object with Count, Item, Add, Remove and an
/// enumerator.
automation::Value FromVariant(const VARIANT& value, const std::string& name);
Variant ToVariant(const automation::Value& value);

}  // namespace parvex::windows
