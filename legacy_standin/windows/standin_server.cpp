// The substitute legacy application as an in-process server: its message router, and its late-bound classes behind
// their interfaces.

#include <array>
#include <deque>
#include <filesystem>
#include <mutex>

#include "adapters/windows/com_object.h"
#include "adapters/windows/machine.h"
#include "adapters/windows/wide_text.h"
#include "com_server/failures.h"
#include "com_server/server.h"
#include "legacy_standin/standin.h"
#include "legacy_standin/windows/typed_classes.h"
#include "seams/automation_error.h"
#include "standin_idl.h"

namespace parvex::standin {
namespace {

using com::ComClass;
using windows::Bstr;
using windows::ComPointer;

// The application as it is installed at the moment, misbehaving as the standin.json in its root says.
struct Installation {
  windows::Machine machine;
  Standin standin{MakeApplication()};

  Application MakeApplication() {
    Application application = {
        machine.GetRegistry(), machine.GetFiles(), machine.GetProjectDatabases(), machine.GetCodePage(), {}};
    application.settings = ReadStandinSettings(std::filesystem::path(windows::Widen(application.Root())));
    return application;
  }
};

// Its objects use it for as long as they live, which is not known here: it is kept until the server is unloaded.
// Objects are made on many threads.
Installation& MakeInstallation() {
  static std::mutex mutex;
  static std::deque<Installation> installations;
  const std::lock_guard lock(mutex);
  return installations.emplace_back();
}

// Late binding reaches the default interface only, which has no members.
class RouterObject : public windows::ComObject<IMessageRouter, IRequestRouter, ISupportErrorInfo> {
 public:
  RouterObject() : router_(MakeInstallation().standin.Routers().Create()) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == __uuidof(IRequestRouter) ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  HRESULT STDMETHODCALLTYPE SendRequestMessage(BSTR* request, BSTR* response, VARIANT_BOOL* result) override {
    return com::Guarded(__uuidof(IRequestRouter), [&] {
      std::string answer;
      *result = router_->SendRequestMessage(windows::TextOf(*request), answer) ? VARIANT_TRUE : VARIANT_FALSE;
      SysFreeString(*response);
      *response = Bstr(answer).Detach();
    });
  }

 private:
  std::unique_ptr<MessageRouter> router_;
};

ComPointer<IUnknown> MakeRouter() { return windows::MakeCom<RouterObject>().As<IUnknown>(IID_IUnknown); }

using Expose = ComPointer<IUnknown> (*)(automation::ObjectRef);

ComPointer<IUnknown> MakeLateBound(const std::string& programmaticId, Expose expose) {
  for (const LateBoundClass& offered : MakeInstallation().standin.Classes()) {
    if (offered.programmaticId == programmaticId) {
      return expose(offered.create());
    }
  }
  throw MakeRuntimeError(RuntimeError::CannotCreateObject, programmaticId + " is told to be missing");
}

ComClass LateBound(const CLSID& id, const std::string& programmaticId, Expose expose) {
  return {id, windows::Widen(programmaticId), L"Substitute legacy application",
          [programmaticId, expose] { return MakeLateBound(programmaticId, expose); }};
}

std::span<const ComClass> Classes() {
  static const std::array kClasses = {
      ComClass{CLSID_MessageRouter, L"KorvaneSubstitute.MessageRouter", L"Substitute message router", MakeRouter},
      LateBound(CLSID_CKDBuilder, "KDQU470.CKDBuilder", ExposeBuilder),
      LateBound(CLSID_CKDScheduleRequest, "KDQU470.CKDScheduleRequest", ExposeScheduleRequest),
      LateBound(CLSID_CRemoteInterface, "KDRPTSV47.CRemoteInterface", ExposeReportServer)};
  return kClasses;
}

}  // namespace
}  // namespace parvex::standin

parvex::com::Server parvex::com::ThisServer() { return {standin::Classes(), &LIBID_KorvaneSubstitute}; }
