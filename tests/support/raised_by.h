#pragma once

#include <string>

#include "seams/automation_error.h"

namespace parvex {

/// An error may be expected by its name, too.
inline bool operator==(int number, RuntimeError error) { return number == static_cast<int>(error); }

namespace test {

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

/// The description of the error that `action` raises; empty when it raises none.
template <typename Action>
std::string DescriptionOfErrorIn(Action action) {
  try {
    action();
    return {};
  } catch (const AutomationError& error) {
    return error.Description();
  }
}

/// "number description" of the error that `action` raises; empty when it raises none.
template <typename Action>
std::string ErrorIn(Action action) {
  try {
    action();
    return {};
  } catch (const AutomationError& error) {
    return std::to_string(error.RuntimeNumber()) + " " + error.Description();
  }
}

}  // namespace test
}  // namespace parvex
