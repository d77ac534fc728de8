// The Base64 codec beside what it is measured against: a plain table loop (clean input only), a plain lenient loop (the
// same rules, one byte at a time) and memcpy. Every case runs all of them in one process; compare within one run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "codec/base64_kernels.h"
#include "codec/bin_encoder.h"

namespace {

using namespace parvex;

struct PlainTables {
  unsigned char value[256] = {};
  PlainTables() {
    for (std::size_t i = 0; i < base64::kAlphabet.size(); ++i) {
      value[static_cast<unsigned char>(base64::kAlphabet[i])] = static_cast<unsigned char>(i);
    }
  }
};

const PlainTables kTables;

std::string PlainEncode(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* out = text.data();
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  std::size_t left = bytes.size();
  for (; left >= 3; left -= 3, in += 3) {
    *out++ = base64::kAlphabet[in[0] >> 2];
    *out++ = base64::kAlphabet[(in[0] & 3) << 4 | in[1] >> 4];
    *out++ = base64::kAlphabet[(in[1] & 15) << 2 | in[2] >> 6];
    *out++ = base64::kAlphabet[in[2] & 63];
  }
  if (left > 0) {
    const unsigned second = left == 2 ? in[1] : 0;
    *out++ = base64::kAlphabet[in[0] >> 2];
    *out++ = base64::kAlphabet[(in[0] & 3) << 4 | second >> 4];
    if (left == 2) {
      *out = base64::kAlphabet[(second & 15) << 2];
    }
  }
  return text;
}

// For text that holds nothing but whole groups of the alphabet.
std::string PlainCleanDecode(std::string_view text) {
  std::string bytes(text.size() / 4 * 3, '\0');
  char* out = bytes.data();
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* value = kTables.value;
  for (std::size_t groups = text.size() / 4; groups > 0; --groups, in += 4) {
    *out++ = static_cast<char>(value[in[0]] << 2 | value[in[1]] >> 4);
    *out++ = static_cast<char>((value[in[1]] & 15) << 4 | value[in[2]] >> 2);
    *out++ = static_cast<char>((value[in[2]] & 3) << 6 | value[in[3]]);
  }
  return bytes;
}

bool Continues(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// All the rules, one character at a time.
std::string PlainLenientDecode(std::string_view text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  char* out = bytes.data();
  unsigned bits = 0;
  unsigned count = 0;
  const auto add = [&](unsigned code) {
    bits = bits << 6 | kTables.value[code & 0xFF];
    if (++count == 4) {
      *out++ = static_cast<char>(bits >> 16);
      *out++ = static_cast<char>(bits >> 8);
      *out++ = static_cast<char>(bits);
      bits = count = 0;
    }
  };
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  const auto* const end = in + text.size();
  while (in < end) {
    const unsigned lead = *in;
    if (lead == '=') {
      ++in;
    } else if (lead == '\r' && in + 1 < end && in[1] == '\n') {
      in += 2;
    } else if (lead < 0x80) {
      add(lead);
      ++in;
    } else if (lead >= 0xC2 && lead < 0xE0 && end - in >= 2 && Continues(in[1])) {
      add(lead << 6 | (in[1] & 63u));
      in += 2;
    } else if (lead >= 0xE0 && lead < 0xF0 && end - in >= 3 && Continues(in[1]) && Continues(in[2])) {
      const unsigned code = (lead & 15) << 12 | (in[1] & 63u) << 6 | (in[2] & 63u);
      add(code >= 0x800 ? code : 0);
      in += 3;
    } else if (lead >= 0xF0 && lead < 0xF5 && end - in >= 4 && Continues(in[1]) && Continues(in[2]) &&
               Continues(in[3])) {
      const unsigned code = (lead & 7) << 18 | (in[1] & 63u) << 12 | (in[2] & 63u) << 6 | (in[3] & 63u);
      if (code >= 0x10000 && code < 0x110000) {
        add((code - 0x10000) >> 10);
        add(code);
      } else {
        add(0);
      }
      in += 4;
    } else {
      add(0);
      ++in;
    }
  }
  if (count >= 2) {
    bits <<= 6 * (4 - count);
    *out++ = static_cast<char>(bits >> 16);
    if (count == 3) {
      *out++ = static_cast<char>(bits >> 8);
    }
  }
  bytes.resize(static_cast<std::size_t>(out - bytes.data()));
  return bytes;
}

std::string PortableEncode(std::string_view bytes) { return base64::Encode(bytes, base64::PortableKernels()); }
std::string PortableDecode(std::string_view text) { return base64::Decode(text, base64::PortableKernels()); }

std::string CopyInto(std::string_view from) {
  static std::string to;
  to.resize(std::max(to.size(), from.size()));
  std::memcpy(to.data(), from.data(), from.size());
  benchmark::DoNotOptimize(to.data());
  return {};
}

constexpr std::size_t kMegabyte = 1 << 20;

std::string Repeat(std::string_view piece, std::size_t atLeast) {
  std::string text;
  while (text.size() < atLeast) {
    text += piece;
  }
  return text;
}

std::string RandomBytes(std::size_t length) {
  std::mt19937 random(1);
  std::string bytes(length, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  return bytes;
}

std::string CleanText(std::size_t length) { return PlainEncode(RandomBytes(length / 4 * 3)); }

std::string Lines(std::size_t width, std::string_view lineEnd) {
  const std::string clean = CleanText(kMegabyte);
  std::string text;
  for (std::size_t from = 0; from < clean.size(); from += width) {
    text.append(clean, from, width).append(lineEnd);
  }
  return text;
}

// Every character is one of the pieces, in random order.
std::string Mix(const std::vector<std::string>& pieces) {
  std::mt19937 random(2);
  std::string text;
  while (text.size() < kMegabyte) {
    text += pieces[random() % pieces.size()];
  }
  return text;
}

void Register(const std::string& name, const std::string& input, std::string (*run)(std::string_view)) {
  benchmark::RegisterBenchmark(name.c_str(), [input, run](benchmark::State& state) {
    for (auto _ : state) {
      benchmark::DoNotOptimize(run(input));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
  });
}

void RegisterDecoding(const std::string& name, const std::string& text) {
  if (DecodeBase64(text) != PlainLenientDecode(text) || PortableDecode(text) != PlainLenientDecode(text)) {
    throw std::logic_error("the codec and the plain loop do not agree on " + name);
  }
  Register("decode/" + name + "/codec", text, DecodeBase64);
  Register("decode/" + name + "/portable", text, PortableDecode);
  Register("decode/" + name + "/plain_lenient_loop", text, PlainLenientDecode);
}

void RegisterAll() {
  for (const std::size_t size : {std::size_t{64}, std::size_t{4096}, kMegabyte, 16 * kMegabyte}) {
    const std::string name = std::to_string(size);
    const std::string bytes = RandomBytes(size);
    const std::string text = CleanText(size);
    Register("encode/" + name + "/codec", bytes, EncodeBase64);
    Register("encode/" + name + "/portable", bytes, PortableEncode);
    Register("encode/" + name + "/plain_loop", bytes, PlainEncode);
    Register("encode/" + name + "/memcpy", bytes, CopyInto);
    RegisterDecoding("clean_" + name, text);
    Register("decode/clean_" + name + "/plain_loop", text, PlainCleanDecode);
    Register("decode/clean_" + name + "/memcpy", text, CopyInto);
  }
  RegisterDecoding("lines_of_76", Lines(76, "\r\n"));
  RegisterDecoding("lines_of_64", Lines(64, "\r\n"));
  RegisterDecoding("lines_of_75", Lines(75, "\r\n"));
  RegisterDecoding("lines_of_76_lf_only", Lines(76, "\n"));
  RegisterDecoding("break_after_every_second", Lines(2, "\r\n"));
  RegisterDecoding("break_after_every_character", Lines(1, "\r\n"));
  RegisterDecoding("only_breaks", Repeat("\r\n", kMegabyte));
  RegisterDecoding("only_lone_cr", Repeat("\r", kMegabyte));
  RegisterDecoding("only_padding", Repeat("=", kMegabyte));
  RegisterDecoding("padding_after_every_character", Lines(1, "="));
  RegisterDecoding("random_cr_lf_padding_letters", Mix({"\r", "\n", "=", "\r\n", "A", "z"}));
  RegisterDecoding("random_bytes", RandomBytes(kMegabyte));
  RegisterDecoding("random_ascii", [] {
    std::string text = RandomBytes(kMegabyte);
    for (char& c : text) {
      c &= 0x7F;
    }
    return text;
  }());
  RegisterDecoding("two_byte_characters", Repeat("\xC5\x82", kMegabyte));
  RegisterDecoding("three_byte_characters", Repeat("\xE4\xB9\xA1", kMegabyte));
  RegisterDecoding("four_byte_characters", Repeat("\xF0\x9F\x91\x82", kMegabyte));
  RegisterDecoding("random_beyond_ascii", Mix({"\xC5\x82", "\xE4\xB9\xA1", "\xF0\x9F\x91\x82", "A", "\r\n"}));
  RegisterDecoding("one_beyond_ascii_in_33", Repeat("AbCdEfGhIjKlMnOpQrStUvWxYz012345\xC5\x82", kMegabyte));
  RegisterDecoding("one_beyond_ascii_in_65", Repeat(CleanText(64) + "\xC5\x82", kMegabyte));
  RegisterDecoding("stray_bytes", Repeat("\x82", kMegabyte));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterAll();
  benchmark::RunSpecifiedBenchmarks();
}
