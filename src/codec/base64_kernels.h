#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The machinery behind EncodeBase64 and DecodeBase64 (codec/bin_encoder.h), with a choice of the code that does the
// work. Every choice gives the same results.
//
// Decoding has two steps that alternate over a piece of text small enough to stay in the processor's first cache: the
// characters that count become 6-bit values, one a byte ("staging"), and the staged values become bytes ("packing").
// Whatever a text holds between its good characters costs time in the first step only.
namespace parvex::base64 {

inline constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Staging stops at the first step that reaches this many values; a step adds at most kStageSlack.
inline constexpr std::size_t kStageValues = 4096;
inline constexpr std::size_t kStageSlack = 32;

/// Values on their way to bytes, each below 64.
struct Stage {
  std::uint8_t values[kStageValues + kStageSlack];
  std::size_t count = 0;
};

/// Packing may write this many bytes behind those that it announces.
inline constexpr std::size_t kPackSlack = 8;

struct Kernels {
  /// Writes the text of `bytes`, the padding of a last short group included, to `text`: four characters for every three
  /// bytes begun.
  void (*encode)(std::string_view bytes, char* text);
  /// Takes characters off the front of `text` and adds their values to the stage, until the text is used up or the
  /// stage holds kStageValues. Takes at least one character.
  void (*stageCharacters)(std::string_view& text, Stage& stage);
  /// Writes three bytes for every four of `count` values (a multiple of four).
  void (*pack)(const std::uint8_t* values, std::size_t count, char* bytes);
};

/// Tables only; runs everywhere.
const Kernels& PortableKernels();
/// 256-bit vectors; null when this processor or system lacks them.
const Kernels* Avx2Kernels();
/// The fastest that runs here.
const Kernels& BestKernels();

std::string Encode(std::string_view bytes, const Kernels& kernels);
std::string Decode(std::string_view text, const Kernels& kernels);

/// Staging by tables of the part of `text` in front of `end` (a character that begins there is taken as a whole). The
/// vector code uses it for what it does not do itself.
void StageByTable(std::string_view& text, const char* end, Stage& stage);

}  // namespace parvex::base64
