#pragma once

#include <oaidl.h>

#include <vector>

#include "adapters/windows/com_pointer.h"

namespace parvex::windows {

/// An enumerator over these values. They are its own: a collection that changes meanwhile changes nothing here.
ComPointer<IUnknown> EnumerateItems(std::vector<Variant> items);

}  // namespace parvex::windows
