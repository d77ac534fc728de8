#include "com_server/type_library.h"

#include <cstring>
#include <map>
#include <mutex>

#include "adapters/windows/system_error.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::ComPointer;

struct ById {
  bool operator()(const IID& a, const IID& b) const { return std::memcmp(&a, &b, sizeof(IID)) < 0; }
};

std::mutex infosMutex;
std::map<IID, ComPointer<ITypeInfo>, ById> infos;

AutomationError NoTypeLibrary(const std::wstring& path, HRESULT result) {
  return AutomationError(static_cast<std::uint32_t>(result), kErrorSource,
                         "no type library can be read from " + windows::Narrow(path) + " (" +
                             windows::Hex(static_cast<std::uint32_t>(result)) + ")");
}

}  // namespace

ComPointer<ITypeLib> LoadTypeLibrary(const std::wstring& path) {
  ComPointer<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Out());
  if (FAILED(result)) {
    throw NoTypeLibrary(path, result);
  }
  return library;
}

ComPointer<ITypeInfo> TypeInfoOf(REFIID interfaceId) {
  const std::lock_guard lock(infosMutex);
  ComPointer<ITypeInfo>& info = infos[interfaceId];
  if (!info) {
    const std::wstring path = ThisModulePath();
    const HRESULT result = LoadTypeLibrary(path)->GetTypeInfoOfGuid(interfaceId, info.Out());
    if (FAILED(result)) {
      throw NoTypeLibrary(path, result);
    }
  }
  return info;
}

void DropTypeInfos() {
  const std::lock_guard lock(infosMutex);
  infos.clear();
}

}  // namespace parvex::com
