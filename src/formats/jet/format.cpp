#include "formats/jet/format.h"

#include <array>
#include <numeric>

namespace parvex::jet {

namespace {

constexpr std::size_t kMaskedFrom = 0x18;
constexpr std::array<std::uint8_t, 4> kMaskKey{0xC7, 0xDA, 0x39, 0x6B};

}  // namespace

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) { return static_cast<std::uint8_t>(bytes[at]); }

bool IsLongValue(ColumnType type) { return type == ColumnType::Memo || type == ColumnType::LongBinary; }

bool IsText(ColumnType type) { return type == ColumnType::Text || type == ColumnType::Memo; }

std::uint16_t Get16(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint16_t>(ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8);
}

std::uint32_t Get32(std::string_view bytes, std::size_t at) {
  return Get16(bytes, at) | static_cast<std::uint32_t>(Get16(bytes, at + 2)) << 16;
}

RowPlace GetPlace(std::string_view bytes, std::size_t at) {
  const std::uint32_t stored = Get32(bytes, at);
  return {stored >> 8, static_cast<std::uint8_t>(stored & 0xFF)};
}

void Put16(std::string& bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<char>(value & 0xFF);
  bytes[at + 1] = static_cast<char>(value >> 8);
}

void Put32(std::string& bytes, std::size_t at, std::uint32_t value) {
  Put16(bytes, at, static_cast<std::uint16_t>(value & 0xFFFF));
  Put16(bytes, at + 2, static_cast<std::uint16_t>(value >> 16));
}

void PutPlace(std::string& bytes, std::size_t at, RowPlace place) { Put32(bytes, at, place.page << 8 | place.row); }

void Append16(std::string& bytes, std::uint16_t value) {
  bytes.append(2, '\0');
  Put16(bytes, bytes.size() - 2, value);
}

void Append32(std::string& bytes, std::uint32_t value) {
  bytes.append(4, '\0');
  Put32(bytes, bytes.size() - 4, value);
}

std::string Bytes16(std::uint16_t value) {
  std::string bytes;
  Append16(bytes, value);
  return bytes;
}

std::string Bytes32(std::uint32_t value) {
  std::string bytes;
  Append32(bytes, value);
  return bytes;
}

std::string BytesOfPlace(RowPlace place) {
  std::string bytes(4, '\0');
  PutPlace(bytes, 0, place);
  return bytes;
}

void ToggleHeaderMask(std::string& databasePage, Version version) {
  const std::size_t maskedLength = version == Version::Jet3 ? 126 : 128;
  // RC4 with a key that every database shares: it hides, it does not protect.
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
    j = (j + state[i] + kMaskKey[i % kMaskKey.size()]) % state.size();
    std::swap(state[i], state[j]);
  }
  std::size_t j = 0;
  for (std::size_t n = 0; n < maskedLength; ++n) {
    const std::size_t i = (n + 1) % state.size();
    j = (j + state[i]) % state.size();
    std::swap(state[i], state[j]);
    databasePage[kMaskedFrom + n] =
        static_cast<char>(ByteAt(databasePage, kMaskedFrom + n) ^ state[(state[i] + state[j]) % state.size()]);
  }
}

}  // namespace parvex::jet
