#include <string>
#include <string_view>
#include <vector>

#include "codec/base64_kernels.h"
#include "codec/bin_encoder.h"
#include "formats/text/unicode.h"
#include "fuzz/fuzz_input.h"

// The codec on every path of code against the plainest one imaginable; the input serves as bytes and as text.

namespace parvex {
namespace {

using fuzz::Require;

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Bit by bit.
std::string PlainEncode(std::string_view bytes) {
  std::string text;
  for (std::size_t bit = 0; bit < 8 * bytes.size(); bit += 6) {
    int value = 0;
    for (std::size_t i = bit; i < bit + 6; ++i) {
      const int one = i < 8 * bytes.size() ? static_cast<unsigned char>(bytes[i / 8]) >> (7 - i % 8) & 1 : 0;
      value = value * 2 + one;
    }
    text += kAlphabet[static_cast<std::size_t>(value)];
  }
  while (text.size() % 4 != 0) {
    text += '=';
  }
  return text;
}

std::string PlainDecode(std::string_view text) {
  const std::u16string units = ToUtf16(text, LoneSurrogates::Kept);
  std::string bits;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (units[i] == u'=') {
      continue;
    }
    if (units[i] == u'\r' && i + 1 < units.size() && units[i + 1] == u'\n') {
      ++i;
      continue;
    }
    const std::size_t found = kAlphabet.find(static_cast<char>(units[i] & 0xFF));
    const std::size_t value = found == std::string_view::npos ? 0 : found;
    for (int bit = 5; bit >= 0; --bit) {
      bits += (value >> bit & 1) != 0 ? '1' : '0';
    }
  }
  std::string bytes;
  for (std::size_t at = 0; at + 8 <= bits.size(); at += 8) {
    int byte = 0;
    for (std::size_t i = at; i < at + 8; ++i) {
      byte = byte * 2 + (bits[i] == '1' ? 1 : 0);
    }
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  // Long texts cross the pieces that the codec works in: a short input is repeated.
  fuzz::Input input(data, size);
  const std::uint8_t repeated = input.TakeByte() % 8;
  const std::size_t times = repeated == 7 ? 2000 : std::size_t{1} + repeated;
  const std::string_view piece = input.TakeRest();
  std::string text;
  for (std::size_t i = 0; i < times && text.size() < 9'000; ++i) {
    text += piece;
  }

  const std::string encoded = PlainEncode(text);
  const std::string decoded = PlainDecode(text);
  std::vector<const base64::Kernels*> paths = {&base64::PortableKernels(), &base64::BestKernels()};
  if (const base64::Kernels* vectors = base64::Avx2Kernels()) {
    paths.push_back(vectors);
  }
  for (const base64::Kernels* kernels : paths) {
    fuzz::Require(base64::Encode(text, *kernels) == encoded, "every path encodes like the plain one");
    fuzz::Require(base64::Decode(text, *kernels) == decoded, "every path decodes like the plain one");
  }
  fuzz::Require(EncodeBase64(text) == encoded, "the codec encodes like the plain one");
  fuzz::Require(DecodeBase64(text) == decoded, "the codec decodes like the plain one");
  fuzz::Require(DecodeBase64(encoded) == text, "what was encoded decodes");
  return 0;
}
