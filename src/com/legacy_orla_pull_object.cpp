#include "com/legacy_orla_pull_object.h"

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

// The instance as the consumer that the builder is told of, for the time of one command: held longer, it would keep
// itself alive.
class OfferedAsConsumer {
 public:
  OfferedAsConsumer(parvex::LegacyORLAPull& pull, IDispatch* instance) : pull_(pull) {
    pull_.SetConsumer(windows::WrapDispatch(ComPointer<IDispatch>::Share(instance), "Parvex.LegacyORLAPull"));
  }
  ~OfferedAsConsumer() { pull_.SetConsumer(nullptr); }
  OfferedAsConsumer(const OfferedAsConsumer&) = delete;
  OfferedAsConsumer& operator=(const OfferedAsConsumer&) = delete;

 private:
  parvex::LegacyORLAPull& pull_;
};

IUnknown* ObjectArgument(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return V_UNKNOWN(&value);
    case VT_EMPTY:
      return nullptr;
    default:
      throw MakeRuntimeError(RuntimeError::TypeMismatch,
                             "command: no document was given (variant type " + std::to_string(V_VT(&value)) + ")");
  }
}

}  // namespace

LegacyORLAPullObject::LegacyORLAPullObject() : pull_(machine_.AsPlatform()) {}

ComPointer<IXMLDOMDocument2> LegacyORLAPullObject::ReplyTo(IUnknown* command) {
  const OfferedAsConsumer consumer(pull_, this);
  return windows::ComDocument(pull_.Pull(windows::AdoptDocument(command)));
}

std::string LegacyORLAPullObject::ReplyTo(std::string_view commandXml) {
  const OfferedAsConsumer consumer(pull_, this);
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
