#pragma once

#include <oaidl.h>

#include <string>

#include "seams/automation.h"

namespace parvex::windows {

/// A value from outside that is only kept and given back: of a type that values of this system have it is such a value,
/// else an object without members that ToVariant turns back into the variant as it was (an array, a date, a small
/// number). References are read through. An AutomationError (13) that begins with `name` where that fails.
automation::Value KeepVariant(const VARIANT& value, const std::string& name);

/// What an object of KeepVariant keeps; null for every other object.
const VARIANT* KeptVariant(const automation::Object& object);

}  // namespace parvex::windows
