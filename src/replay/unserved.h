#pragma once

#include <string_view>

#include "seams/automation_error.h"

namespace parvex::replay {

/// What a call gets that asks the outside for something that its record has not.
inline AutomationError NotInRecord(std::string_view what) {
  return MakeRuntimeError(RuntimeError::InvalidCall,
                          FailureText("cannot answer for", what, "the record has no such step"));
}

}  // namespace parvex::replay
