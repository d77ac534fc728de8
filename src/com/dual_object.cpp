#include "com/dual_object.h"

#include "platform/automation_error.h"
#include "platform/windows/system_error.h"

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

ReadArguments::ReadArguments(const DISPPARAMS& parameters)
    : values_(parameters.cArgs), passed_(parameters.cArgs), parameters_(parameters) {
  for (UINT i = 0; i < parameters.cArgs; ++i) {
    if (V_VT(&parameters.rgvarg[i]) == (VT_BYREF | VT_VARIANT)) {
      values_[i] = ReadThrough(parameters.rgvarg[i]);
      passed_[i] = values_[i].Get();
    } else {
      passed_[i] = parameters.rgvarg[i];
    }
  }
  parameters_.rgvarg = passed_.data();
}

}  // namespace parvex::com
