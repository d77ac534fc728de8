#include <algorithm>
#include <optional>
#include <string>

#include "cli/host/exit_status.h"
#include "cli/open/content.h"
#include "fuzz/fuzz_input.h"

// Whatever lies in a file is told, as text and as JSON, or refused. The input: the bytes of the file.

namespace parvex {
namespace {

using fuzz::Require;

void Look(const cli::Content& content, std::size_t bytes) {
  const std::string text = cli::ContentAsText(content, "a file", bytes);
  const auto isControl = [](char c) { return c != '\n' && (static_cast<unsigned char>(c) < 0x20 || c == '\x7F'); };
  Require(std::none_of(text.begin(), text.end(), isControl), "what is told holds no control characters");
  const Json all = Json::parse(cli::ContentAsJson(content, "a file", bytes), nullptr, false);
  Require(all.is_object() && all["kind"] == content.kind, "the JSON of a file is JSON");
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  cli::Looking looking;
  fuzz::MayBeRefused([&] {
    try {
      if (const std::optional<cli::Content> content = cli::ContentOf(input.TakeRest(), "a file", looking)) {
        Look(*content, size);
      }
    } catch (const cli::UsageError&) {
      // A quote of more than is shown.
    }
  });
  return 0;
}
