#include "com/bin_encoder_object.h"

#include "com/values.h"

namespace parvex::com {
namespace {

using windows::TextOf;

constexpr DISPID kEncodeArr = 5;

}  // namespace

HRESULT BinEncoderObject::Decode(BSTR base64, BSTR* text) {
  return Guard([&] { GiveText(text, encoder_.Decode(TextOf(base64))); });
}

HRESULT BinEncoderObject::DecodeArr(BSTR base64, SAFEARRAY** bytes) {
  return Guard([&] {
    RequirePointer(bytes, "the result");
    *bytes = MakeByteArray(encoder_.DecodeArr(TextOf(base64)));
  });
}

HRESULT BinEncoderObject::DecodeToFile(BSTR base64, BSTR fileName) {
  return Guard([&] { encoder_.DecodeToFile(TextOf(base64), TextOf(fileName)); });
}

HRESULT BinEncoderObject::Encode(BSTR text, BSTR* base64) {
  return Guard([&] { GiveText(base64, encoder_.Encode(TextOf(text))); });
}

HRESULT BinEncoderObject::EncodeArr(SAFEARRAY** bytes, BSTR* base64) {
  return Guard([&] {
    RequirePointer(bytes, "bytes");
    GiveText(base64, encoder_.EncodeArr(BytesOf(*bytes, "bytes")));
  });
}

HRESULT BinEncoderObject::EncodeFromFile(BSTR fileName, BSTR* base64) {
  return Guard([&] { GiveText(base64, encoder_.EncodeFromFile(TextOf(fileName))); });
}

std::optional<HRESULT> BinEncoderObject::Serve(DISPID member, WORD kind, DISPPARAMS& parameters, VARIANT* result) {
  if (member != kEncodeArr || (kind & DISPATCH_METHOD) == 0) {
    return std::nullopt;
  }
  if (parameters.cArgs != 1) {
    return DISP_E_BADPARAMCOUNT;
  }
  const std::string base64 = encoder_.EncodeArr(BytesArgument(parameters.rgvarg[0], "bytes"));
  if (result != nullptr) {
    VariantInit(result);
    GiveText(&V_BSTR(result), base64);
    V_VT(result) = VT_BSTR;
  }
  return S_OK;
}

}  // namespace parvex::com
