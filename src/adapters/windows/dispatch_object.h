#pragma once

#include <oaidl.h>

#include <string>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// An automation object that somebody else made, by the name that errors and the journal give it.
automation::ObjectRef WrapDispatch(ComPointer<IDispatch> dispatch, std::string name);

/// The dispatch interface that an object was wrapped from; null for an object of this system.
ComPointer<IDispatch> WrappedDispatch(const automation::Object& object);

}  // namespace parvex::windows
