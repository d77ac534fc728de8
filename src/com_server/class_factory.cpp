#include "com_server/class_factory.h"

#include <algorithm>

#include "adapters/windows/com_object.h"
#include "com_server/failures.h"
#include "com_server/type_library.h"

// Destructors of thread-local objects are kept by the C runtime's own list, which lets them go with the thread or the
// module, whichever goes first. The one of the C++ library would hold the module in memory for each of them, so that it
// never unloads from a living thread, and would let go of it from within when the thread ends: code that is unloaded
// while it runs.
extern "C" int __mingw_cxa_thread_atexit(void (*destroy)(void*), void* object, void* module);
extern "C" int __cxa_thread_atexit(void (*destroy)(void*), void* object, void* module) noexcept {
  return __mingw_cxa_thread_atexit(destroy, object, module);
}

namespace parvex::com {
namespace {

class ClassFactory : public windows::ComObject<IClassFactory, ISupportErrorInfo> {
 public:
  explicit ClassFactory(const ComClass& made) : made_(made) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    return Guarded(IID_IClassFactory, [&] { return made_.create()->QueryInterface(id, object); });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      windows::ModuleUse::Lock();
    } else {
      windows::ModuleUse::Unlock();
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == IID_IClassFactory ? S_OK : S_FALSE;
  }

 private:
  const ComClass& made_;
};

}  // namespace

HRESULT GetClassFactory(std::span<const ComClass> classes, REFCLSID classId, REFIID interfaceId, void** factory) {
  if (factory == nullptr) {
    return E_POINTER;
  }
  *factory = nullptr;
  const auto found = std::find_if(classes.begin(), classes.end(), [&](const ComClass& c) { return c.id == classId; });
  if (found == classes.end()) {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  return Guarded(IID_IClassFactory,
                 [&] { return windows::MakeCom<ClassFactory>(*found)->QueryInterface(interfaceId, factory); });
}

HRESULT CanUnloadNow() {
  if (windows::ModuleUse::Count() != 0) {
    return S_FALSE;
  }
  DropTypeInfos();
  return S_OK;
}

}  // namespace parvex::com
