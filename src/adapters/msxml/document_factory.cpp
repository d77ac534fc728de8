#include "adapters/msxml/document_factory.h"

#include <memory>

#include "adapters/windows/com_pointer.h"
#include "seams/xml.h"

namespace parvex::xml {
namespace {

/// The thread's class factory, locked, so that its module stays loaded; null when it could not be had. Nothing lets it
/// go at the end of a thread, when its apartment is gone: those who expect documents do.
thread_local IClassFactory* factory = nullptr;
thread_local unsigned expecting = 0;

void KeepFactory() {
  if (SUCCEEDED(CoGetClassObject(kDomDocument30, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                 reinterpret_cast<void**>(&factory)))) {
    factory->LockServer(TRUE);
  }
}

void LetFactoryGo() {
  if (factory != nullptr) {
    factory->LockServer(FALSE);
    factory->Release();
    factory = nullptr;
  }
}

}  // namespace

HRESULT CreateDocument30(ComDocument& document) {
  auto** made = reinterpret_cast<void**>(document.Out());
  return factory != nullptr ? factory->CreateInstance(nullptr, kDomDocument, made)
                            : CoCreateInstance(kDomDocument30, nullptr, CLSCTX_INPROC_SERVER, kDomDocument, made);
}

std::shared_ptr<void> ExpectManyDocuments() {
  if (expecting++ == 0) {
    KeepFactory();
  }
  return {nullptr, [](void*) {
            if (--expecting == 0) {
              LetFactoryGo();
            }
          }};
}

}  // namespace parvex::xml
