// The entry points of an in-process server.

#include "com/failures.h"
#include "com/registration.h"
#include "com/server.h"
#include "com/type_library.h"

using namespace parvex::com;

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** factory) {
  return GetClassFactory(ThisServer().classes, classId, interfaceId, factory);
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
