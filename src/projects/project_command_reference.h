#pragma once

#include "protocol/command_reference.h"

namespace parvex {

// What the project commands take and give. Their steps: docs/commands/projects.md.

extern const CommandReference kGetProjectListReference;
extern const CommandReference kGetProjectPropertiesReference;
extern const CommandReference kSetProjectPropertiesReference;
extern const CommandReference kAddProjectReference;
extern const CommandReference kDeleteProjectReference;
extern const CommandReference kCopyProjectReference;
extern const CommandReference kRenameProjectReference;
extern const CommandReference kArchiveProjectReference;
extern const CommandReference kRetrieveProjectReference;

}  // namespace parvex
