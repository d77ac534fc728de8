#include "adapters/windows/system_message_router.h"

#include <oaidl.h>
#include <windows.h>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/system_error.h"
#include "seams/automation_error.h"

namespace parvex::windows {

// The legacy interface: what is used of it is the first method behind the automation methods. It stands outside the
// unnamed namespace, where the compiler would conclude that nobody can implement it.
struct IRequestRouter : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE SendRequestMessage(BSTR* request, BSTR* response, VARIANT_BOOL* result) = 0;
};

namespace {

class SystemMessageRouter : public MessageRouter {
 public:
  explicit SystemMessageRouter(ComPointer<IRequestRouter> router) : router_(std::move(router)) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override {
    Bstr asked(request);
    Bstr answered("");
    BSTR askedText = asked.Detach();
    BSTR answeredText = answered.Detach();
    VARIANT_BOOL success = VARIANT_FALSE;
    const HRESULT result = router_->SendRequestMessage(&askedText, &answeredText, &success);
    response = TextOf(answeredText);
    SysFreeString(askedText);
    SysFreeString(answeredText);
    if (FAILED(result)) {
      throw Failure(result);
    }
    return success != VARIANT_FALSE;
  }

 private:
  static AutomationError Failure(HRESULT result) {
    ComPointer<IErrorInfo> info;
    std::string source = kErrorSource;
    std::string description =
        "the message router's SendRequestMessage failed with " + Hex(static_cast<std::uint32_t>(result));
    if (GetErrorInfo(0, info.Out()) == S_OK) {
      Bstr text;
      if (SUCCEEDED(info->GetSource(text.Out())) && !text.Text().empty()) {
        source = text.Text();
      }
      if (SUCCEEDED(info->GetDescription(text.Out())) && !text.Text().empty()) {
        description += ": " + text.Text();
      }
    }
    return AutomationError(static_cast<std::uint32_t>(result), source, description);
  }

  ComPointer<IRequestRouter> router_;
};

IID ParsedId(const wchar_t* text) {
  IID id;
  if (FAILED(IIDFromString(text, &id))) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject,
                           "the build's identifier of the message router is none: " + Narrow(text));
  }
  return id;
}

}  // namespace

std::unique_ptr<MessageRouter> SystemMessageRouters::Create() {
  constexpr const wchar_t* kClass = L"" PARVEX_ROUTER_CLSID;
  constexpr const wchar_t* kInterface = L"" PARVEX_ROUTER_IID;
  const auto refuse = [](const char* doing, HRESULT result) {
    return MakeRuntimeError(RuntimeError::CannotCreateObject,
                            std::string(doing) + ": " + Hex(static_cast<std::uint32_t>(result)));
  };
  ComPointer<IUnknown> object;
  HRESULT result = CoCreateInstance(ParsedId(kClass), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                                    reinterpret_cast<void**>(object.Out()));
  if (FAILED(result)) {
    throw refuse("the legacy application's message router " PARVEX_ROUTER_CLSID " cannot be created", result);
  }
  ComPointer<IRequestRouter> router;
  result = object->QueryInterface(ParsedId(kInterface), reinterpret_cast<void**>(router.Out()));
  if (FAILED(result)) {
    throw refuse("the message router has no interface " PARVEX_ROUTER_IID, result);
  }
  return std::make_unique<SystemMessageRouter>(std::move(router));
}

}  // namespace parvex::windows
