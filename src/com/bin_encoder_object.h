#pragma once

#include <optional>

#include "adapters/windows/ansi_text.h"
#include "adapters/windows/system_files.h"
#include "codec/bin_encoder.h"
#include "com_server/dual_object.h"
#include "parvex_idl.h"

namespace parvex::com {

/// The class Parvex.cBinEncoder.
class BinEncoderObject : public DualObject<IcBinEncoder> {
 public:
  HRESULT STDMETHODCALLTYPE Decode(BSTR base64, BSTR* text) override;
  HRESULT STDMETHODCALLTYPE DecodeArr(BSTR base64, SAFEARRAY** bytes) override;
  HRESULT STDMETHODCALLTYPE DecodeToFile(BSTR base64, BSTR fileName) override;
  HRESULT STDMETHODCALLTYPE Encode(BSTR text, BSTR* base64) override;
  HRESULT STDMETHODCALLTYPE EncodeArr(SAFEARRAY** bytes, BSTR* base64) override;
  HRESULT STDMETHODCALLTYPE EncodeFromFile(BSTR fileName, BSTR* base64) override;

 protected:
  /// EncodeArr, which also takes the arrays of variants that script hosts make.
  std::optional<HRESULT> Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) override;

 private:
  windows::SystemCodePage codePage_;
  windows::SystemFiles files_;
  cBinEncoder encoder_{codePage_, files_};
};

}  // namespace parvex::com
