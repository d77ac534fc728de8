#pragma once

#include "protocol/command_reference.h"

namespace parvex {

// What the option commands take and give. Their steps: docs/commands/options.md.

extern const CommandReference kGetOptionsReference;
extern const CommandReference kSetOptionsReference;

}  // namespace parvex
