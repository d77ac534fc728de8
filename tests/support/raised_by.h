#pragma once

#include "seams/automation_error.h"

namespace parvex::test {

/// The runtime's error number that `action` raises; 0 when it raises none.
template <typename Action>
int RaisedBy(Action action) {
  try {
    action();
    return 0;
  } catch (const AutomationError& error) {
    return error.RuntimeNumber();
  }
}

}  // namespace parvex::test
