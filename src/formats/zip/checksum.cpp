#include "formats/zip/checksum.h"

#include <zlib.h>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace parvex {
namespace {

std::uint32_t Plain(std::string_view bytes, std::uint32_t before) {
  uLong checksum = before;
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, 1u << 30);
    checksum = crc32(checksum, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(piece.size()));
    bytes.remove_prefix(piece.size());
  }
  return static_cast<std::uint32_t>(checksum);
}

#if defined(__x86_64__) || defined(__i386__)

#define PARVEX_CARRYLESS __attribute__((target("sse2,pclmul")))

constexpr std::size_t kBlock = 16;
constexpr std::size_t kBlocksAtOnce = 4;
constexpr std::size_t kWorthIt = 2 * kBlocksAtOnce * kBlock;

PARVEX_CARRYLESS inline __m128i Load(const char* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

// A block moved behind the blocks whose distance the two factors stand for, and joined with the one that is there.
PARVEX_CARRYLESS inline __m128i Fold(__m128i block, __m128i factors, __m128i onto) {
  const __m128i low = _mm_clmulepi64_si128(block, factors, 0x00);
  const __m128i high = _mm_clmulepi64_si128(block, factors, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), onto);
}

// The checksum is the remainder of a polynomial, and a remainder stays the same when 16 bytes are replaced by their
// product with x^n mod P, n bits further on. So all bytes are folded into the last 16 whole ones; those, and the few
// behind them, are left to zlib. Bits are reflected: the factors are x^(n+32) and x^(n-32) mod P for n of 512 and 128.
PARVEX_CARRYLESS std::uint32_t Folded(std::string_view bytes, std::uint32_t before) {
  const __m128i byFour = _mm_set_epi64x(0x1C6E41596, 0x154442BD4);
  const __m128i byOne = _mm_set_epi64x(0x0CCAA009E, 0x1751997D0);
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  __m128i blocks[kBlocksAtOnce];
  for (__m128i& block : blocks) {
    block = Load(at);
    at += kBlock;
  }
  blocks[0] = _mm_xor_si128(blocks[0], _mm_cvtsi32_si128(static_cast<int>(~before)));
  for (; static_cast<std::size_t>(end - at) >= kBlocksAtOnce * kBlock; at += kBlocksAtOnce * kBlock) {
    for (std::size_t i = 0; i < kBlocksAtOnce; ++i) {
      blocks[i] = Fold(blocks[i], byFour, Load(at + i * kBlock));
    }
  }
  __m128i last = blocks[0];
  for (std::size_t i = 1; i < kBlocksAtOnce; ++i) {
    last = Fold(last, byOne, blocks[i]);
  }
  for (; static_cast<std::size_t>(end - at) >= kBlock; at += kBlock) {
    last = Fold(last, byOne, Load(at));
  }
  char rest[kBlock];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), last);
  constexpr std::uint32_t kNothingBefore = 0xFFFFFFFF;  // what came before is in the block already
  return Plain({at, static_cast<std::size_t>(end - at)}, Plain({rest, kBlock}, kNothingBefore));
}

bool FoldsHere() {
  static const bool folds = __builtin_cpu_supports("pclmul");
  return folds;
}

#else

constexpr std::size_t kWorthIt = 0;
std::uint32_t Folded(std::string_view bytes, std::uint32_t before) { return Plain(bytes, before); }
bool FoldsHere() { return false; }

#endif

}  // namespace

std::uint32_t ChecksumOf(std::string_view bytes, std::uint32_t before) {
  return FoldsHere() && bytes.size() >= kWorthIt ? Folded(bytes, before) : Plain(bytes, before);
}

}  // namespace parvex
