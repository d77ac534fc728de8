// The entry points of an in-process server.

#include "com_server/failures.h"
#include "com_server/registration.h"
#include "com_server/server.h"
#include "com_server/type_library.h"

using namespace parvex::com;

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** factory) {
  return Guarded(IID_IClassFactory,
                 [&] { return GetClassFactory(ThisServer().classes, classId, interfaceId, factory); });
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return CanUnloadNow(); }

HRESULT STDAPICALLTYPE DllRegisterServer() {
  return Guarded(IID_NULL, [] {
    const Server server = ThisServer();
    if (server.checkBeforeRegistering != nullptr) {
      server.checkBeforeRegistering();
    }
    RegisterModule(server.classes, ThisModulePath(), server.libraryId);
  });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return Guarded(IID_NULL, [] {
    const Server server = ThisServer();
    UnregisterModule(server.classes, ThisModulePath(), server.libraryId);
  });
}

}  // extern "C"
