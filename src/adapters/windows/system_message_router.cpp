#include "adapters/windows/system_message_router.h"

#include <oaidl.h>
#include <windows.h>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "formats/router_ids/router_ids.h"
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
  SystemMessageRouter(ComPointer<IRequestRouter> router, REFIID interfaceId)
      : router_(std::move(router)), interfaceId_(interfaceId) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override {
    Bstr asked(request);
    Bstr answered("");
    BSTR askedText = asked.Detach();
    BSTR answeredText = answered.Detach();
    VARIANT_BOOL success = VARIANT_FALSE;
    SetErrorInfo(0, nullptr);  // what an earlier failure left on this thread is not the router's
    const HRESULT result = router_->SendRequestMessage(&askedText, &answeredText, &success);
    *asked.Out() = askedText;  // owned again, whoever made them
    *answered.Out() = answeredText;
    if (FAILED(result)) {
      throw Failure(result);
    }
    response = answered.Text();
    return success != VARIANT_FALSE;
  }

 private:
  AutomationError Failure(HRESULT result) const {
    ComPointer<IErrorInfo> info;
    std::string source = kErrorSource;
    std::string description =
        "the message router's SendRequestMessage failed with " + Hex(static_cast<std::uint32_t>(result));
    // Taken before anything else is called, which may clear it.
    if (GetErrorInfo(0, info.Out()) == S_OK && TellsOfErrors()) {
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

  // Another router's error information would be somebody else's, left by an object that it used.
  bool TellsOfErrors() const {
    const auto support = router_.As<ISupportErrorInfo>(IID_ISupportErrorInfo);
    return support && support->InterfaceSupportsErrorInfo(interfaceId_) == S_OK;
  }

  ComPointer<IRequestRouter> router_;
  const IID interfaceId_;
};

// Of an identifier that was found well-formed.
IID ParsedId(const std::string& text) {
  IID id = {};
  IIDFromString(Widen(text).c_str(), &id);
  return id;
}

}  // namespace

std::unique_ptr<MessageRouter> SystemMessageRouters::Create() {
  const auto [ids, place] = RouterIdsInForce(settings_);
  const auto refuse = [&place = place](const std::string& doing, HRESULT result) {
    return MakeRuntimeError(RuntimeError::CannotCreateObject,
                            doing + " (which " + place + " names): " + Hex(static_cast<std::uint32_t>(result)));
  };
  ComPointer<IUnknown> object;
  HRESULT result = CoCreateInstance(ParsedId(ids.classId), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                    IID_IUnknown, reinterpret_cast<void**>(object.Out()));
  if (FAILED(result)) {
    throw refuse("the legacy application's message router " + ids.classId + " cannot be created", result);
  }
  ComPointer<IRequestRouter> router;
  const IID interfaceId = ParsedId(ids.interfaceId);
  result = object->QueryInterface(interfaceId, reinterpret_cast<void**>(router.Out()));
  if (FAILED(result)) {
    throw refuse("the message router " + ids.classId + " has no interface " + ids.interfaceId, result);
  }
  return std::make_unique<SystemMessageRouter>(std::move(router), interfaceId);
}

}  // namespace parvex::windows
