#pragma once

#include <oaidl.h>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// Puts an object of this system behind a dispatch interface. Members are named to it as they come; its errors become
/// exceptions of the automation protocol. An object from outside goes out as the dispatch interface that it was wrapped
/// from.
ComPointer<IDispatch> ExposeObject(automation::ObjectRef object);

}  // namespace parvex::windows
