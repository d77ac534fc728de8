#include "formats/jet/engine_error.h"

#include "seams/automation_error.h"

namespace parvex::jet {

void Fail(EngineError error, const std::string& description) {
  throw AutomationError(0x800A0000u + static_cast<std::uint16_t>(error), kErrorSource, description);
}

}  // namespace parvex::jet
