#include "com_server/dual_object.h"

#include "adapters/windows/system_error.h"
#include "seams/automation_error.h"

namespace parvex::com {

using windows::Variant;

Variant ReadThrough(const VARIANT& value) {
  Variant read;
  const HRESULT result = VariantCopyInd(read.Out(), const_cast<VARIANT*>(&value));
  if (FAILED(result)) {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "an argument that cannot be read (" +
                                                           windows::Hex(static_cast<std::uint32_t>(result)) + ")");
  }
  return read;
}

}  // namespace parvex::com
