#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "adapters/posix/machine.h"
#include "cli/host/machine_look.h"
#include "legacy_standin/late_bound/late_bound_class.h"

namespace parvex::cli {

/// A look at a machine folder, in which the substitute offers `classes`. `workflow` is its program. `machine` outlives
/// the result.
std::unique_ptr<MachineLook> LookAtFolder(posix::Machine& machine, std::vector<standin::LateBoundClass> classes,
                                          const std::filesystem::path& workflow);

}  // namespace parvex::cli
