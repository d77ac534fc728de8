#include <array>
#include <bit>
#include <cstring>

#include "codec/base64_kernels.h"
#include "formats/text/unicode.h"

namespace parvex::base64 {
namespace {

// What a byte of the text means: its value, or one of these, which kValueMask makes the value 0.
constexpr std::uint8_t kValueMask = 0x3F;
constexpr std::uint8_t kOutside = 0x40;  // a character outside the alphabet, or a byte that cannot begin one
constexpr std::uint8_t kLook = 0x80;     // "=", CR and the bytes that can begin a UTF-8 sequence need a closer look

constexpr std::array<std::uint8_t, 256> MakeMeanings() {
  std::array<std::uint8_t, 256> meanings{};
  for (std::size_t code = 0; code < meanings.size(); ++code) {
    meanings[code] = code >= 0xC2 && code <= 0xF4 ? kLook : kOutside;
  }
  for (std::size_t value = 0; value < kAlphabet.size(); ++value) {
    meanings[static_cast<unsigned char>(kAlphabet[value])] = static_cast<std::uint8_t>(value);
  }
  meanings['='] = kLook;
  meanings['\r'] = kLook;
  return meanings;
}

constexpr std::array<std::uint8_t, 256> kMeanings = MakeMeanings();

std::uint8_t Meaning(char byte) { return kMeanings[static_cast<unsigned char>(byte)]; }

// The value that a UTF-16 unit counts with: only the low 8 bits of its code are looked up. Codes beyond ASCII that end
// like a letter count as that letter, and none of them is a line break or a padding.
std::uint8_t ValueOfUnit(std::uint32_t unit) { return kMeanings[unit & 0xFF] & kValueMask; }

bool BeginsSequence(char byte) { return static_cast<unsigned char>(byte) >= 0xC2; }

struct Position {
  const char* at;
  std::uint8_t* out;
};

// Takes the character that a byte above 0xC1 begins and puts the values of its one or two units to `out`. What is no
// character is U+FFFD, whose value is 0; half of a surrogate pair is a unit like any other.
Position StageBeyondAscii(Position position, const char* textEnd) {
  const auto [at, out] = position;
  const Utf8Character character = FirstCharacter({at, static_cast<std::size_t>(textEnd - at)});
  const char* const behind = at + character.bytes;
  if (character.code < 0x10000) {
    *out = ValueOfUnit(character.code);
    return {behind, out + 1};
  }
  out[0] = ValueOfUnit((character.code - 0x10000) >> 10);
  out[1] = ValueOfUnit(character.code);
  return {behind, out + 2};
}

void StageAll(std::string_view& text, Stage& stage) { StageByTable(text, text.data() + text.size(), stage); }

// The eight bytes of a word with the first one in memory on top, or back.
std::uint64_t FirstOnTop(std::uint64_t word) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

// Eight values at a time: neighbours are joined to 12, 24 and 48 bits.
void PackPortably(const std::uint8_t* values, std::size_t count, char* bytes) {
  for (; count >= 8; count -= 8, values += 8, bytes += 6) {
    std::uint64_t word;
    std::memcpy(&word, values, sizeof word);
    word = FirstOnTop(word);
    word = (word & 0x3F003F003F003F00u) >> 2 | (word & 0x003F003F003F003Fu);
    word = (word & 0x0FFF00000FFF0000u) >> 4 | (word & 0x00000FFF00000FFFu);
    word = (word & 0x00FFFFFF00000000u) >> 8 | (word & 0x0000000000FFFFFFu);
    word = FirstOnTop(word << 16);
    std::memcpy(bytes, &word, sizeof word);
  }
  if (count == 4) {
    bytes[0] = static_cast<char>(values[0] << 2 | values[1] >> 4);
    bytes[1] = static_cast<char>((values[1] & 15) << 4 | values[2] >> 2);
    bytes[2] = static_cast<char>((values[2] & 3) << 6 | values[3]);
  }
}

void EncodePortably(std::string_view bytes, char* text) {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  std::size_t left = bytes.size();
  for (; left >= 3; left -= 3, at += 3, text += 4) {
    text[0] = kAlphabet[at[0] >> 2];
    text[1] = kAlphabet[(at[0] & 3) << 4 | at[1] >> 4];
    text[2] = kAlphabet[(at[1] & 15) << 2 | at[2] >> 6];
    text[3] = kAlphabet[at[2] & 63];
  }
  if (left > 0) {
    const unsigned second = left == 2 ? at[1] : 0;
    text[0] = kAlphabet[at[0] >> 2];
    text[1] = kAlphabet[(at[0] & 3) << 4 | second >> 4];
    text[2] = left == 2 ? kAlphabet[(second & 15) << 2] : '=';
    text[3] = '=';
  }
}

}  // namespace

void StageByTable(std::string_view& text, const char* end, Stage& stage) {
  const char* at = text.data();
  const char* const textEnd = at + text.size();
  std::uint8_t* out = stage.values + stage.count;
  const std::uint8_t* const full = stage.values + kStageValues;
  while (at < end && out < full) {
    const std::uint8_t meaning = Meaning(*at);
    if (meaning < kLook) {
      *out++ = meaning & kValueMask;
      ++at;
    } else if (BeginsSequence(*at)) {
      const Position behind = StageBeyondAscii({at, out}, textEnd);
      at = behind.at;
      out = behind.out;
    } else if (*at == '=') {
      while (++at < end && *at == '=') {
      }
    } else {
      // Line breaks are taken out before paddings: a CR and an LF with a "=" between them are no line break, and count.
      const bool lineBreak = at + 1 < textEnd && at[1] == '\n';
      *out = 0;
      out += lineBreak ? 0 : 1;
      at += lineBreak ? 2 : 1;
    }
  }
  stage.count = static_cast<std::size_t>(out - stage.values);
  text.remove_prefix(static_cast<std::size_t>(at - text.data()));
}

const Kernels& PortableKernels() {
  static constexpr Kernels kernels{EncodePortably, StageAll, PackPortably};
  return kernels;
}

}  // namespace parvex::base64
