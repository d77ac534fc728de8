#pragma once

#include <string_view>

#include "legacy_standin/installation/application.h"

namespace parvex::standin {

/// What the user of the builder's windows might do, by the command line that the windows are opened with:
///
///   \\GROUP\PROJECT                     a new tag of the group
///   \\\GROUP\TAG\NUMBER\PROJECT\ID      the tag gets a quantity that is higher by one and the version of its tool
///   \\:PROJECT                          every tag gets the version of its tool
///
/// A command line that is none of these, and one that names an unknown project or tag, changes nothing: the windows
/// show it to their user, not to the caller.
void RunBuilderWorkflow(const Application& application, std::string_view commandLine);

}  // namespace parvex::standin
