#include "adapters/windows/system_automation.h"

#include <utility>

#include "adapters/windows/dispatch_object.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {

using automation::ObjectRef;

ObjectRef SystemAutomation::Create(std::string_view programmaticId) {
  const auto refuse = [&](const char* doing, HRESULT result) {
    return MakeRuntimeError(RuntimeError::CannotCreateObject, std::string(doing) + " \"" + std::string(programmaticId) +
                                                                  "\": " + Hex(static_cast<std::uint32_t>(result)));
  };
  CLSID classId;
  HRESULT result = CLSIDFromProgID(Widen(programmaticId).c_str(), &classId);
  if (FAILED(result)) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject, "no component is registered as " + Quoted(programmaticId));
  }
  ComPointer<IDispatch> dispatch;
  result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                            reinterpret_cast<void**>(dispatch.Out()));
  if (FAILED(result)) {
    throw refuse("cannot create", result);
  }
  return WrapDispatch(std::move(dispatch), std::string(programmaticId));
}

}  // namespace parvex::windows
