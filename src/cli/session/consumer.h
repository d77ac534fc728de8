#pragma once

#include "seams/automation.h"

namespace parvex::cli {

/// What the builder is told of as its consumer: this program's instance, as a named object. It has no members; the
/// builder only notes it.
automation::ObjectRef MakeConsumer();

}  // namespace parvex::cli
