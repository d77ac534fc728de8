#pragma once

#include "protocol/command_reference.h"

namespace parvex {

// What the report commands take and give. Their steps: docs/commands/reports.md.

extern const CommandReference kGetReportReference;
extern const CommandReference kGetReportsReference;
extern const CommandReference kGetSubmittalReference;
extern const CommandReference kGetAvailableReportsReference;

}  // namespace parvex
