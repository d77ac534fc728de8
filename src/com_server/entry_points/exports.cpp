// The entry points of an in-process server.

#include "com_server/failures.h"
#include "com_server/registration.h"
#include "com_server/server.h"
#include "com_server/type_library.h"

using namespace parvex::com;

namespace {

void Register(const RegistrationKind& kind) {
  const Server server = ThisServer();
  if (server.checkBeforeRegistering != nullptr) {
    server.checkBeforeRegistering();
  }
  RegisterModule(server.classes, ThisModulePath(), server.libraryId, kind);
}

void Unregister(RegistrationKind kind) {
  const Server server = ThisServer();
  kind.surrogate = server.applicationId;  // whether it was asked for or not
  UnregisterModule(server.classes, ThisModulePath(), server.libraryId, kind);
}

}  // namespace

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** factory) {
  return Guarded(IID_IClassFactory,
                 [&] { return GetClassFactory(ThisServer().classes, classId, interfaceId, factory); });
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return CanUnloadNow(); }

HRESULT STDAPICALLTYPE DllRegisterServer() {
  return Guarded(IID_NULL, [] { Register({}); });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return Guarded(IID_NULL, [] { Unregister({}); });
}

// Words of the command line: "user" for the current user only, "surrogate" for a surrogate process; none is
// DllRegisterServer.
HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR commandLine) {
  return Guarded(IID_NULL, [&] {
    const RegistrationKind kind =
        ReadRegistrationKind(commandLine == nullptr ? L"" : commandLine, ThisServer().applicationId);
    if (install) {
      Register(kind);
    } else {
      Unregister(kind);
    }
  });
}

}  // extern "C"
