#pragma once

#include "legacy_standin/router/router.h"

namespace parvex::standin {

/// The requests about tags of projects (docs/standin.md: parameters, answers, what is refused).
RequestTable TagRequests();

}  // namespace parvex::standin
