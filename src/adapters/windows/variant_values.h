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

/// What passes `value` by reference: a reference of the value's own type (a text goes as a reference to a text), or to
/// the variant where it is empty. It owns nothing; what it refers to is `value`'s, also after the called member has
/// replaced it.
VARIANT ReferenceTo(VARIANT& value);

/// Replaces what a by-reference variant refers to, in the type that it has there; what was there is freed. A value that
/// does not become that type is an AutomationError (13) that begins with `name`. A reference to an array is left alone.
void WriteThrough(VARIANT& reference, const automation::Value& value, const std::string& name);

}  // namespace parvex::windows
