#pragma once

#include <oaidl.h>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// Puts a keyed collection behind the interface of a runtime's own collection, with its type information: Item (the
/// default member), Add, Count, Remove and an enumerator, early and late bound, by position and by name. What is added
/// or removed there is added to and removed from `items`. An item by reference goes out as its value: a reference into
/// the collection would outlive it.
ComPointer<IDispatch> ExposeCollection(automation::CollectionRef items);

}  // namespace parvex::windows
