#pragma once

#include <memory>

#include "cli/host/machine_look.h"
#include "seams/files.h"

namespace parvex::cli {

/// A look at this Windows, whose files these are. They outlive the result.
std::unique_ptr<MachineLook> LookAtSystem(Files& files);

}  // namespace parvex::cli
