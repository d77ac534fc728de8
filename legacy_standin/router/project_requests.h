#pragma once

#include "legacy_standin/router/router.h"

namespace parvex::standin {

/// The requests about projects and their archives (docs/standin.md: parameters, answers, what is refused).
RequestTable ProjectRequests();

}  // namespace parvex::standin
