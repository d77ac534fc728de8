#pragma once

#include <span>

#include "com_server/class_factory.h"

namespace parvex::com {

/// The public classes of Parvex.
std::span<const ComClass> ParvexClasses();

}  // namespace parvex::com
