#pragma once

#include <oaidl.h>
#include <windows.h>

#include <functional>

namespace parvex::com {

/// The object of a script engine that stands for an array: it has a number `length` and members named "0", "1" and so
/// on. Null for a value that holds no object.
IDispatch* ScriptArrayIn(const VARIANT& value);

/// How many elements such an array may have at most.
inline constexpr LONG kMostScriptElements = 1L << 24;

/// Gives each element with its index, in order; one that the array lacks as an empty value. Refused with a type
/// mismatch (13) that names the parameter: an object without `length`, a length that is no number, negative or above
/// kMostScriptElements, an element that cannot be read.
void ForEachScriptElement(IDispatch* array, const char* parameter,
                          const std::function<void(LONG index, const VARIANT& element)>& take);

}  // namespace parvex::com
