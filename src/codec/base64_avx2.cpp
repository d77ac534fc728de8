#include "codec/base64_kernels.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

#define PARVEX_AVX2 __attribute__((target("avx2,popcnt")))

namespace parvex::base64 {
namespace {

constexpr std::size_t kBlock = 32;

PARVEX_AVX2 inline __m256i Load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }

PARVEX_AVX2 inline void Store(void* to, __m256i block) { _mm256_storeu_si256(static_cast<__m256i*>(to), block); }

// The same 16-byte table in both halves, as the byte shuffle wants it.
PARVEX_AVX2 inline __m256i Table(const std::array<std::int8_t, 16>& entries) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(entries.data())));
}

// --- Encoding ---

// From 24 bytes in two halves of 12 to 32 values: every three bytes b0 b1 b2 are laid out as b1 b0 b2 b1, so that each
// 16-bit half holds two of the four values; multiplications shift each to its place.
PARVEX_AVX2 inline __m256i ValuesOfBytes(__m256i bytes) {
  const __m256i groups = _mm256_shuffle_epi8(bytes, Table({1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10}));
  const __m256i firstAndThird =
      _mm256_mulhi_epu16(_mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
  const __m256i secondAndFourth =
      _mm256_mullo_epi16(_mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
  return _mm256_or_si256(firstAndThird, secondAndFourth);
}

// The distance from a value to its character depends on its range: 0 for 26..51, 1 to 12 for 52..63, 13 for 0..25.
PARVEX_AVX2 inline __m256i CharactersOfValues(__m256i values) {
  const __m256i distances = Table({'a' - 26, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, '+' - 62, '/' - 63, 'A', 0, 0});
  const __m256i above = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
  const __m256i capital = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
  const __m256i range = _mm256_or_si256(above, _mm256_and_si256(capital, _mm256_set1_epi8(13)));
  return _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, range));
}

PARVEX_AVX2 void Encode(std::string_view bytes, char* text) {
  constexpr std::size_t kTaken = 24;
  constexpr std::size_t kRead = 28;  // the second half is read with four bytes too many
  while (bytes.size() >= kRead) {
    const auto* at = reinterpret_cast<const __m128i*>(bytes.data());
    const auto* second = reinterpret_cast<const __m128i*>(bytes.data() + kTaken / 2);
    const __m256i block =
        _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(at)), _mm_loadu_si128(second), 1);
    Store(text, CharactersOfValues(ValuesOfBytes(block)));
    bytes.remove_prefix(kTaken);
    text += kBlock;
  }
  PortableKernels().encode(bytes, text);
}

// --- Decoding ---

struct ClassifiedBlock {
  __m256i values;         // 0 for every byte outside the alphabet
  std::uint32_t outside;  // one bit for each such byte
};

// A byte belongs to the alphabet when the set of its low half and the set of its high half share a bit: 1 stands for
// the row of "+" and "/", 2 for the digits, 4 for "A" to "O" and "a" to "o", 8 for "P" to "Z" and "p" to "z".
PARVEX_AVX2 inline ClassifiedBlock Classify(__m256i block) {
  const __m256i lowSets = Table({2 | 8, 2 | 4 | 8, 2 | 4 | 8, 2 | 4 | 8, 2 | 4 | 8, 2 | 4 | 8, 2 | 4 | 8, 2 | 4 | 8,
                                 2 | 4 | 8, 2 | 4 | 8, 4 | 8, 1 | 4, 4, 4, 4, 1 | 4});
  const __m256i highSets = Table({0, 0, 1, 2, 4, 8, 4, 8, 0, 0, 0, 0, 0, 0, 0, 0});
  // From a character to its value, by the high half; "/" borrows the entry below that of its row.
  const __m256i distances =
      Table({0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0});

  const __m256i high = _mm256_and_si256(_mm256_srli_epi16(block, 4), _mm256_set1_epi8(0x0F));
  const __m256i shared = _mm256_and_si256(_mm256_shuffle_epi8(lowSets, block), _mm256_shuffle_epi8(highSets, high));
  const __m256i outside = _mm256_cmpeq_epi8(shared, _mm256_setzero_si256());
  const __m256i row = _mm256_add_epi8(high, _mm256_cmpeq_epi8(block, _mm256_set1_epi8('/')));
  const __m256i values = _mm256_add_epi8(block, _mm256_shuffle_epi8(distances, row));
  return {_mm256_andnot_si256(outside, values), static_cast<std::uint32_t>(_mm256_movemask_epi8(outside))};
}

PARVEX_AVX2 inline std::uint32_t Where(__m256i block, char byte) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(block, _mm256_set1_epi8(byte))));
}

// For every set of bytes to drop out of eight, the order that moves the others together.
constexpr std::array<std::array<std::uint8_t, 8>, 256> MakeCompactions() {
  std::array<std::array<std::uint8_t, 8>, 256> compactions{};
  for (std::size_t dropped = 0; dropped < compactions.size(); ++dropped) {
    std::size_t kept = 0;
    for (std::uint8_t i = 0; i < 8; ++i) {
      if ((dropped >> i & 1) == 0) {
        compactions[dropped][kept++] = i;
      }
    }
  }
  return compactions;
}

constexpr std::array<std::array<std::uint8_t, 8>, 256> kCompactions = MakeCompactions();

// Puts eight of a block's values to `out`, without the dropped ones. Returns where the next value goes.
PARVEX_AVX2 inline std::uint8_t* PutEight(__m128i values, std::uint32_t dropped, std::uint8_t* out) {
  const __m128i order = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kCompactions[dropped].data()));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(values, order));
  return out + 8 - _mm_popcnt_u32(dropped);
}

PARVEX_AVX2 inline std::uint8_t* PutKept(__m256i values, std::uint32_t dropped, std::uint8_t* out) {
  const __m128i low = _mm256_castsi256_si128(values);
  const __m128i high = _mm256_extracti128_si256(values, 1);
  out = PutEight(low, dropped & 0xFF, out);
  out = PutEight(_mm_srli_si128(low, 8), dropped >> 8 & 0xFF, out);
  out = PutEight(high, dropped >> 16 & 0xFF, out);
  return PutEight(_mm_srli_si128(high, 8), dropped >> 24, out);
}

// Stages blocks of ASCII characters until one holds others, the stage is full or less than a block and a byte is left:
// a CR that ends the block may be half of a line break.
PARVEX_AVX2 void StageAscii(std::string_view& text, Stage& stage) {
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint8_t* out = stage.values + stage.count;
  const std::uint8_t* const full = stage.values + kStageValues;
  while (end - at > static_cast<std::ptrdiff_t>(kBlock) && out < full) {
    const __m256i block = Load(at);
    const ClassifiedBlock classified = Classify(block);
    if (classified.outside == 0) {
      Store(out, classified.values);
      out += kBlock;
      at += kBlock;
      continue;
    }
    if (_mm256_movemask_epi8(block) != 0) {
      break;
    }
    const std::uint32_t lineBreaks = Where(block, '\r') & Where(Load(at + 1), '\n');
    out = PutKept(classified.values, Where(block, '=') | lineBreaks | lineBreaks << 1, out);
    at += kBlock + (lineBreaks >> 31);
  }
  stage.count = static_cast<std::size_t>(out - stage.values);
  text.remove_prefix(static_cast<std::size_t>(at - text.data()));
}

void StageCharacters(std::string_view& text, Stage& stage) {
  // What stops the blocks goes through the tables, in longer and longer stretches as long as the blocks get nowhere.
  std::size_t stretch = kBlock;
  while (!text.empty() && stage.count < kStageValues) {
    const std::size_t before = text.size();
    StageAscii(text, stage);
    stretch = text.size() == before ? std::min(stretch * 2, kStageValues) : kBlock;
    StageByTable(text, text.data() + std::min(stretch, text.size()), stage);
  }
}

PARVEX_AVX2 void Pack(const std::uint8_t* values, std::size_t count, char* bytes) {
  const __m256i topDown = Table({2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1});
  const __m256i together = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);
  for (; count >= kBlock; count -= kBlock, values += kBlock, bytes += kBlock / 4 * 3) {
    const __m256i pairs = _mm256_maddubs_epi16(Load(values), _mm256_set1_epi16(0x0140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    Store(bytes, _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(groups, topDown), together));
  }
  PortableKernels().pack(values, count, bytes);
}

}  // namespace

const Kernels* Avx2Kernels() {
  static constexpr Kernels kernels{Encode, StageCharacters, Pack};
  static const bool runsHere = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt");
  return runsHere ? &kernels : nullptr;
}

}  // namespace parvex::base64

#else

namespace parvex::base64 {

const Kernels* Avx2Kernels() { return nullptr; }

}  // namespace parvex::base64

#endif
