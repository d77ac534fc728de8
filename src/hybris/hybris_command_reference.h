#pragma once

#include "protocol/command_reference.h"

namespace parvex {

// What the export commands and the way back take and give. Their steps: docs/commands/export.md and rebuild-tag.md.

extern const CommandReference kGetHybrisXmlReference;
extern const CommandReference kGetHybrisXmlNoUiReference;
extern const CommandReference kReturnTagReference;

}  // namespace parvex
