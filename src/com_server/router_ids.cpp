#include "com_server/router_ids.h"

#include <optional>

#include "com_server/type_library.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::ComPointer;

struct Attributes {
  explicit Attributes(ITypeInfo* described) : info(described) { info->GetTypeAttr(&read); }
  ~Attributes() {
    if (read != nullptr) {
      info->ReleaseTypeAttr(read);
    }
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  ITypeInfo* info;
  TYPEATTR* read = nullptr;
};

std::string IdText(REFGUID id) {
  wchar_t text[40];
  StringFromGUID2(id, text, 40);
  return windows::Narrow(text);
}

bool HasRequestMethod(ITypeInfo* info) {
  std::wstring name = L"SendRequestMessage";
  LPOLESTR names = name.data();
  MEMBERID member = 0;
  return SUCCEEDED(info->GetIDsOfNames(&names, 1, &member));
}

// The identifier of the interface of a class that takes requests.
std::optional<std::string> RequestInterfaceOf(ITypeInfo* classInfo, const TYPEATTR& attributes) {
  std::optional<std::string> ofDefault;
  for (UINT i = 0; i < attributes.cImplTypes; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ComPointer<ITypeInfo> info;
    if (FAILED(classInfo->GetRefTypeOfImplType(i, &reference)) ||
        FAILED(classInfo->GetRefTypeInfo(reference, info.Out())) || FAILED(classInfo->GetImplTypeFlags(i, &flags)) ||
        !HasRequestMethod(info.Get())) {
      continue;
    }
    const std::string id = IdText(Attributes(info.Get()).read->guid);
    if ((flags & IMPLTYPEFLAG_FDEFAULT) == 0) {
      return id;
    }
    ofDefault = id;
  }
  return ofDefault;
}

}  // namespace

RouterIds ReadRouterIds(const std::wstring& path) {
  const ComPointer<ITypeLib> library = LoadTypeLibrary(path);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPointer<ITypeInfo> info;
    if (FAILED(library->GetTypeInfo(i, info.Out()))) {
      continue;
    }
    const Attributes attributes(info.Get());
    if (attributes.read == nullptr || attributes.read->typekind != TKIND_COCLASS) {
      continue;
    }
    if (const std::optional<std::string> interfaceId = RequestInterfaceOf(info.Get(), *attributes.read)) {
      return {IdText(attributes.read->guid), *interfaceId};
    }
  }
  throw MakeRuntimeError(RuntimeError::InvalidCall,
                         windows::Narrow(path) + ": no class in it has an interface with SendRequestMessage");
}

}  // namespace parvex::com
