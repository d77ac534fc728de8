#pragma once

#include <optional>

#include "adapters/windows/machine.h"
#include "adapters/windows/native_system.h"
#include "com_server/dual_object.h"
#include "interface/legacy_orla_pull.h"
#include "parvex_idl.h"
#include "recording/recorder.h"

namespace parvex::com {

/// The class Parvex.LegacyORLAPull: the command interface on this Windows.
class LegacyORLAPullObject : public DualObject<ILegacyORLAPull> {
 public:
  /// Creates the message router; its AutomationError when it cannot be created.
  LegacyORLAPullObject();

  /// `command` is asked for the document interface, whatever was given, and changed in place; the reply is the
  /// handler's document itself, null where the handler answers with none.
  HRESULT STDMETHODCALLTYPE Pull(domDocument** command, domDocument** reply) override;
  HRESULT STDMETHODCALLTYPE PullNGORLA(BSTR* commandXml, BSTR* replyXml) override;

 protected:
  std::optional<HRESULT> Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) override;

 private:
  windows::ComPointer<IXMLDOMDocument2> ReplyTo(IUnknown* command);
  std::string ReplyTo(std::string_view commandXml);

  windows::Machine machine_;
  windows::NativeSystem system_;
  recording::Recorder recorder_{system_, &machine_.GetOwnSettings()};
  parvex::LegacyORLAPull pull_;
};

}  // namespace parvex::com
