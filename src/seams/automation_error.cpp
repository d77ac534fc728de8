#include "seams/automation_error.h"

namespace parvex {

AutomationError MakeRuntimeError(RuntimeError error, const std::string& description) {
  return AutomationError(0x800A0000u + static_cast<std::uint16_t>(error), kErrorSource, description);
}

}  // namespace parvex
