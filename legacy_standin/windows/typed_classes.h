#pragma once

#include <unknwn.h>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::standin {

// Classes of the substitute behind their interfaces of its type library.

windows::ComPointer<IUnknown> ExposeBuilder(automation::ObjectRef builder);
windows::ComPointer<IUnknown> ExposeReportServer(automation::ObjectRef server);
windows::ComPointer<IUnknown> ExposeScheduleRequest(automation::ObjectRef request);

}  // namespace parvex::standin
