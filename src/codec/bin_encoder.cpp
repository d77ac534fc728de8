#include "codec/bin_encoder.h"

#include "codec/base64_kernels.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

// 1000 above the base of the errors that objects define themselves. Scripts compare number, source and text.
AutomationError FileAlreadyExists() { return {0x800403E8, "Base64.DecodeToFile", "File already exists."}; }

}  // namespace

std::string EncodeBase64(std::string_view bytes) { return base64::Encode(bytes, base64::BestKernels()); }

std::string DecodeBase64(std::string_view text) { return base64::Decode(text, base64::BestKernels()); }

std::string cBinEncoder::Decode(std::string_view base64) { return codePage_.FromAnsi(DecodeArr(base64)); }

std::string cBinEncoder::DecodeArr(std::string_view base64) { return DecodeBase64(base64); }

void cBinEncoder::DecodeToFile(std::string_view base64, std::string_view fileName) {
  try {
    files_.CreateNew(fileName, DecodeArr(base64));
  } catch (const AutomationError& error) {
    const bool nameTaken = error.RuntimeNumber() == static_cast<std::uint16_t>(RuntimeError::FileExists);
    if (nameTaken && files_.IsFile(fileName)) {
      throw FileAlreadyExists();
    }
    throw;
  }
}

std::string cBinEncoder::Encode(std::string_view text) { return EncodeArr(codePage_.ToAnsi(text)); }

std::string cBinEncoder::EncodeArr(std::string_view bytes) { return EncodeBase64(bytes); }

std::string cBinEncoder::EncodeFromFile(std::string_view fileName) {
  const std::string bytes = files_.ReadAll(fileName);
  if (bytes.empty()) {
    // The legacy codec counts a buffer from 0 to the length minus 1, which an empty file does not have.
    throw MakeRuntimeError(RuntimeError::SubscriptOutOfRange, FailureText("cannot encode", fileName, "it is empty"));
  }
  return EncodeArr(bytes);
}

}  // namespace parvex
