#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "adapters/windows/com_pointer.h"
#include "seams/automation_error.h"

namespace parvex::com {

/// A type mismatch (13) that names the parameter and says why.
AutomationError Mismatch(const char* name, const std::string& why);

/// Gives `text` to the caller of a method, who frees it. A null result pointer is an AutomationError (5), lack of
/// memory std::bad_alloc.
void GiveText(BSTR* result, std::string_view text);

/// Raises an AutomationError (5) that names the pointer when it is null.
void RequirePointer(const void* pointer, const char* name);

/// Text of a late-bound argument, converted as the automation runtime does; a type mismatch (13) that names it when it
/// cannot be.
std::string TextArgument(const VARIANT& value, const char* name);

/// A number that a late-bound argument gives as an index; a type mismatch (13) that names it when it is none.
LONG IndexArgument(const VARIANT& value, const char* name);

/// Bytes of an array; one of another type than bytes, with several dimensions, or with more elements than indexes of a
/// LONG, is a type mismatch (13). A null array has none.
std::string BytesOf(SAFEARRAY* array, const char* name);
/// Bytes of a late-bound array argument: an array of bytes, or one of variants, or a script engine's own, whose
/// elements are numbers from 0 to 255.
std::string BytesArgument(const VARIANT& value, const char* name);
/// A new array of bytes from index 0.
SAFEARRAY* MakeByteArray(std::string_view bytes);

/// An array of references to objects of one interface, as a caller gave it: its lower bound, and its elements, which
/// may be null.
struct ReferenceArray {
  LONG lowerBound = 0;
  std::vector<windows::ComPointer<IDispatch>> elements;
};

/// Reads an array whose elements are objects or variants that hold objects. Refused with a type mismatch (13) that
/// names the array and the element's index: an element that does not have the interface `elementId`. A null array has
/// no elements.
ReferenceArray ReadReferences(SAFEARRAY* array, REFIID elementId, const char* name);
/// The same for a late-bound argument, which may be a script engine's own array, too. An element that it lacks is a
/// null reference.
ReferenceArray ReferencesArgument(const VARIANT& value, REFIID elementId, const char* name);
/// A new array of references of that interface, for early-bound callers.
SAFEARRAY* MakeReferences(const ReferenceArray& array, REFIID elementId);
/// A new array of variants that hold the objects, which is the only array that script hosts can index.
SAFEARRAY* MakeVariants(const ReferenceArray& array);

}  // namespace parvex::com
