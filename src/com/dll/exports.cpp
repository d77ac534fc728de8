// The four entry points of Parvex.dll.

#include "com/failures.h"
#include "com/parvex_classes.h"
#include "com/registration.h"
#include "com/type_library.h"
#include "parvex_idl.h"

using namespace parvex::com;

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** factory) {
  return GetClassFactory(ParvexClasses(), classId, interfaceId, factory);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return CanUnloadNow(); }

HRESULT STDAPICALLTYPE DllRegisterServer() {
  return Guarded(IID_NULL, [] { RegisterModule(ParvexClasses(), ThisModulePath(), &LIBID_Parvex); });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return Guarded(IID_NULL, [] { UnregisterModule(ParvexClasses(), ThisModulePath(), &LIBID_Parvex); });
}

}  // extern "C"
