#include "com/legacy_orla_pull_object.h"

#include <utility>

#include "adapters/msxml/msxml_document.h"
#include "adapters/windows/dispatch_object.h"
#include "com/values.h"
#include "seams/automation_error.h"

namespace parvex::com {
namespace {

using windows::ComPointer;
using windows::Variant;

constexpr DISPID kPull = 1;
constexpr DISPID kPullNGORLA = 2;

// One call of an instance: it keeps the instance alive until it has returned, whatever a message of the host releases
// meanwhile, and offers it as the consumer that the builder is told of. A nested call gives the consumer back as it
// found it; held longer than a call, it would keep the instance alive for ever.
class RunningCall {
 public:
  RunningCall(parvex::LegacyORLAPull& pull, IDispatch* instance)
      : instance_(ComPointer<IDispatch>::Share(instance)),
        pull_(pull),
        former_(pull.SetConsumer(windows::WrapDispatch(instance_, "Parvex.LegacyORLAPull"))) {}
  ~RunningCall() { pull_.SetConsumer(std::move(former_)); }
  RunningCall(const RunningCall&) = delete;
  RunningCall& operator=(const RunningCall&) = delete;

 private:
  const ComPointer<IDispatch> instance_;
  parvex::LegacyORLAPull& pull_;
  automation::ObjectRef former_;
};

IUnknown* ObjectArgument(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return V_UNKNOWN(&value);
    case VT_EMPTY:
      return nullptr;
    default:
      throw MakeRuntimeError(RuntimeError::TypeMismatch, "command: no document was given (variant type " +
                                                             std::to_string(V_VT(&value)) + "); " +
                                                             windows::ExpectedDocument());
  }
}

}  // namespace

LegacyORLAPullObject::LegacyORLAPullObject() : pull_(machine_.AsPlatform(), &recorder_) {}

ComPointer<IXMLDOMDocument2> LegacyORLAPullObject::ReplyTo(IUnknown* command) {
  const RunningCall running(pull_, this);
  return windows::ComDocument(pull_.Pull(windows::AdoptDocument(command)));
}

std::string LegacyORLAPullObject::ReplyTo(std::string_view commandXml) {
  const RunningCall running(pull_, this);
  return pull_.PullNGORLA(commandXml);
}

HRESULT LegacyORLAPullObject::Pull(domDocument** command, domDocument** reply) {
  return Guard([&] {
    RequirePointer(command, "command");
    RequirePointer(reply, "reply");
    *reply = nullptr;
    *reply = reinterpret_cast<domDocument*>(ReplyTo(reinterpret_cast<IUnknown*>(*command)).Detach());
  });
}

HRESULT LegacyORLAPullObject::PullNGORLA(BSTR* commandXml, BSTR* replyXml) {
  return Guard([&] {
    RequirePointer(commandXml, "commandXml");
    RequirePointer(replyXml, "replyXml");
    *replyXml = nullptr;
    GiveText(replyXml, ReplyTo(windows::TextOf(*commandXml)));
  });
}

// Both take what a script passes: a value or a variable, which arrives as a by-reference variant that the type
// information would refuse for a typed parameter.
std::optional<HRESULT> LegacyORLAPullObject::Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) {
  if ((member != kPull && member != kPullNGORLA) || (kind & DISPATCH_METHOD) == 0) {
    return std::nullopt;
  }
  if (parameters.cArgs != 1) {
    return DISP_E_BADPARAMCOUNT;
  }
  Variant answer;
  if (member == kPull) {
    const Variant command = ReadThrough(parameters.rgvarg[0]);
    V_DISPATCH(&answer.Get()) = ReplyTo(ObjectArgument(command.Get())).Detach();
    V_VT(&answer.Get()) = VT_DISPATCH;
  } else {
    GiveText(&V_BSTR(&answer.Get()), ReplyTo(TextArgument(parameters.rgvarg[0], "commandXml")));
    V_VT(&answer.Get()) = VT_BSTR;
  }
  if (result != nullptr) {
    std::swap(*result, answer.Get());
    VariantInit(&answer.Get());
  }
  return S_OK;
}

}  // namespace parvex::com
