#pragma once

#include <oaidl.h>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// Puts a keyed collection behind a dispatch interface with Count, Item, Add, Remove and an enumerator, the members of
/// the runtime's own collection object.
ComPointer<IDispatch> ExposeCollection(automation::CollectionRef items);

}  // namespace parvex::windows
