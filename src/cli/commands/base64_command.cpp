#include "cli/commands/base64_command.h"

#include "cli/terminal/standard_streams.h"
#include "codec/bin_encoder.h"

namespace parvex::cli {

void EncodeToOutput(const std::string& fileName) {
  const std::string text = EncodeBase64(ReadInput(fileName));
  WriteDocument(text.empty() ? text : text + "\n");
}

void DecodeToOutput(const std::string& fileName) { WriteDocument(DecodeBase64(ReadInput(fileName))); }

}  // namespace parvex::cli
