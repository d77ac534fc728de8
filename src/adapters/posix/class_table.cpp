#include "adapters/posix/class_table.h"

#include <utility>

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::posix {

void ClassTable::Register(const std::string& programmaticId, Factory factory) {
  factories_[ToUpper(programmaticId)] = std::move(factory);
}

automation::ObjectRef ClassTable::Create(std::string_view programmaticId) {
  const auto found = factories_.find(ToUpper(programmaticId));
  if (found == factories_.end()) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject,
                           "no component is registered as \"" + std::string(programmaticId) + "\"");
  }
  return found->second();
}

}  // namespace parvex::posix
