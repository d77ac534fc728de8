#include "formats/jet/format.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "formats/text/text.h"

namespace parvex::jet {

namespace {

constexpr std::uint16_t kHiddenFlag = 0x8000;
constexpr std::uint16_t kPointerFlag = 0x4000;
constexpr std::uint16_t kOffsetMask = 0x1FFF;

constexpr std::size_t kSlotCountAt = 12;
constexpr std::size_t kSlotsAt = 14;

constexpr std::string_view kCompressedMark = "\xFF\xFE";
/// Texts of more characters are stored as they are.
constexpr std::size_t kLongestCompressed = 1024;

constexpr std::size_t kMaskedFrom = 0x18;
constexpr std::size_t kMaskedLength = 128;
constexpr std::array<std::uint8_t, 4> kMaskKey{0xC7, 0xDA, 0x39, 0x6B};

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) { return static_cast<std::uint8_t>(bytes[at]); }

/// The compressed form: the mark FF FE, then one byte a character up to U+00FF; a zero byte switches to two bytes a
/// character and back. Nothing when a character has a low byte of zero, which would read as a switch.
std::optional<std::string> Compress(std::string_view utf16) {
  std::string compressed(kCompressedMark);
  bool single = true;
  for (std::size_t i = 0; i < utf16.size(); i += 2) {
    if (utf16[i] == 0) return std::nullopt;
    const bool fits = utf16[i + 1] == 0;
    if (fits != single) compressed += '\0';
    single = fits;
    compressed += utf16.substr(i, fits ? 1 : 2);
  }
  return compressed;
}

std::size_t NullMaskSize(std::size_t columnCount) { return (columnCount + 7) / 8; }

std::size_t FixedEnd(const RowShape& shape) {
  std::size_t end = 2;
  for (const Column& column : shape.columns) {
    if (!column.fixed || column.type == ColumnType::Boolean) continue;
    end = std::max<std::size_t>(end, 2u + column.fixedOffset + column.size);
  }
  return end;
}

}  // namespace

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

std::string Utf16Bytes(std::string_view utf8) {
  std::string bytes;
  for (const char16_t unit : ToUtf16(utf8)) Append16(bytes, unit);
  return bytes;
}

std::string Utf8FromUtf16Bytes(std::string_view bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) units += static_cast<char16_t>(Get16(bytes, i));
  return FromUtf16(units);
}

std::string EncodeText(std::string_view utf8, bool compress) {
  std::string plain = Utf16Bytes(utf8);
  // A text that itself begins with the mark would be taken for a compressed one.
  const bool misleading = plain.starts_with(kCompressedMark);
  if (!misleading && (!compress || plain.size() / 2 > kLongestCompressed)) return plain;
  const std::optional<std::string> compressed = Compress(plain);
  return compressed && (misleading || compressed->size() < plain.size()) ? *compressed : plain;
}

std::string DecodeText(std::string_view stored) {
  if (!stored.starts_with(kCompressedMark)) return Utf8FromUtf16Bytes(stored);
  std::string plain;
  bool single = true;
  for (std::size_t at = kCompressedMark.size(); at < stored.size();) {
    if (stored[at] == '\0') {
      single = !single;
      ++at;
      continue;
    }
    plain += stored.substr(at, single ? 1 : 2);
    if (single) plain += '\0';
    at += single ? 1 : 2;
  }
  return Utf8FromUtf16Bytes(plain);
}

std::string EncodeMemo(std::string_view utf8, bool compress) {
  constexpr std::uint32_t kInsideRow = 0x80000000u;
  const std::string text = EncodeText(utf8, compress);
  std::string bytes;
  Append32(bytes, kInsideRow | static_cast<std::uint32_t>(text.size()));
  bytes.append(8, '\0');
  return bytes + text;
}

std::string EncodeRow(const RowShape& shape, const StoredValues& values) {
  std::string row(FixedEnd(shape), '\0');
  Put16(row, 0, shape.columnCount);
  std::string nullMask(NullMaskSize(shape.columnCount), '\0');
  std::vector<const std::string*> variable(shape.variableCount, nullptr);
  for (std::size_t i = 0; i < shape.columns.size(); ++i) {
    const Column& column = shape.columns[i];
    if (!values[i]) continue;
    nullMask[column.number / 8] = static_cast<char>(nullMask[column.number / 8] | 1 << column.number % 8);
    if (column.type == ColumnType::Boolean) continue;
    if (column.fixed) {
      row.replace(2u + column.fixedOffset, column.size, *values[i]);
    } else {
      variable[column.variableNumber] = &*values[i];
    }
  }
  if (shape.variableCount > 0) {
    std::vector<std::uint16_t> offsets;
    for (const std::string* value : variable) {
      offsets.push_back(static_cast<std::uint16_t>(row.size()));
      if (value != nullptr) row += *value;
    }
    offsets.push_back(static_cast<std::uint16_t>(row.size()));
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) Append16(row, *offset);
    Append16(row, shape.variableCount);
  }
  return row + nullMask;
}

std::optional<StoredValues> DecodeRow(const RowShape& shape, std::string_view row) {
  if (row.size() < 2) return std::nullopt;
  // Rows older than a column of the table have no place for it: it is null there.
  const std::size_t columnCount = Get16(row, 0);
  const std::size_t maskSize = NullMaskSize(columnCount);
  if (columnCount == 0 || columnCount > shape.columnCount || row.size() < 2 + maskSize) return std::nullopt;
  const std::size_t maskAt = row.size() - maskSize;

  std::size_t fixedEnd = maskAt;
  std::size_t variableCount = 0;
  std::vector<std::size_t> offsets;
  if (shape.variableCount > 0) {
    if (maskAt < 4) return std::nullopt;
    variableCount = Get16(row, maskAt - 2);
    const std::size_t tableSize = 2 * (variableCount + 2);
    if (variableCount > shape.variableCount || maskAt < 2 + tableSize) return std::nullopt;
    for (std::size_t i = 0; i <= variableCount; ++i) offsets.push_back(Get16(row, maskAt - 4 - 2 * i));
    if (!std::is_sorted(offsets.begin(), offsets.end()) || offsets.front() < 2 || offsets.back() > maskAt - tableSize) {
      return std::nullopt;
    }
    fixedEnd = offsets.front();
  }

  StoredValues values;
  for (const Column& column : shape.columns) {
    // A Boolean is in the null mask alone, and yet has a place in the fixed part that nobody may follow out of the row.
    const bool known = column.number < columnCount;
    if (known && column.fixed && 2u + column.fixedOffset + column.size > row.size()) return std::nullopt;
    const bool present = known && (ByteAt(row, maskAt + column.number / 8) >> column.number % 8 & 1) != 0;
    if (!present || (!column.fixed && column.variableNumber >= variableCount)) {
      values.push_back(std::nullopt);
    } else if (column.type == ColumnType::Boolean) {
      values.push_back("\1");
    } else if (column.fixed) {
      if (2u + column.fixedOffset + column.size > fixedEnd) return std::nullopt;
      values.push_back(std::string(row.substr(2u + column.fixedOffset, column.size)));
    } else {
      const std::size_t from = offsets[column.variableNumber];
      values.push_back(std::string(row.substr(from, offsets[column.variableNumber + 1] - from)));
    }
  }
  return values;
}

std::ptrdiff_t DataPage::FreeBytes() const {
  const std::size_t used = std::accumulate(slots.begin(), slots.end(), kSlotsAt, [](std::size_t sum, const Slot& slot) {
    return sum + 2 + slot.bytes.size();
  });
  return static_cast<std::ptrdiff_t>(kPageSize) - static_cast<std::ptrdiff_t>(used);
}

bool DataPage::HasRoom(std::size_t rowLength) const {
  return slots.size() < kMostRows && FreeBytes() >= static_cast<std::ptrdiff_t>(rowLength + 2);
}

std::optional<DataPage> DecodeDataPage(std::string_view page) {
  if (page.size() != kPageSize || ByteAt(page, 0) != static_cast<std::uint8_t>(PageType::Data)) return std::nullopt;
  DataPage decoded{.owner = Get32(page, 4), .slots = {}};
  const std::size_t count = Get16(page, kSlotCountAt);
  const std::size_t rowsFrom = kSlotsAt + 2 * count;
  std::size_t end = kPageSize;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t entry = Get16(page, kSlotsAt + 2 * i);
    const std::size_t from = entry & kOffsetMask;
    if (from < rowsFrom || from > end) return std::nullopt;
    decoded.slots.push_back({.hidden = (entry & kHiddenFlag) != 0,
                             .pointer = (entry & kPointerFlag) != 0,
                             .bytes = std::string(page.substr(from, end - from))});
    end = from;
  }
  return decoded;
}

std::string EncodeDataPage(const DataPage& decoded) {
  std::string page(kPageSize, '\0');
  page[0] = static_cast<char>(PageType::Data);
  page[1] = 1;
  Put16(page, 2, static_cast<std::uint16_t>(decoded.FreeBytes()));
  Put32(page, 4, decoded.owner);
  Put16(page, kSlotCountAt, static_cast<std::uint16_t>(decoded.slots.size()));
  std::size_t end = kPageSize;
  for (std::size_t i = 0; i < decoded.slots.size(); ++i) {
    const DataPage::Slot& slot = decoded.slots[i];
    end -= slot.bytes.size();
    page.replace(end, slot.bytes.size(), slot.bytes);
    const int flags = (slot.hidden ? kHiddenFlag : 0) | (slot.pointer ? kPointerFlag : 0);
    Put16(page, kSlotsAt + 2 * i, static_cast<std::uint16_t>(end | static_cast<std::size_t>(flags)));
  }
  return page;
}

void ToggleHeaderMask(std::string& databasePage) {
  // RC4 with a key that every database shares: it hides, it does not protect.
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
    j = (j + state[i] + kMaskKey[i % kMaskKey.size()]) % state.size();
    std::swap(state[i], state[j]);
  }
  std::size_t j = 0;
  for (std::size_t n = 0; n < kMaskedLength; ++n) {
    const std::size_t i = (n + 1) % state.size();
    j = (j + state[i]) % state.size();
    std::swap(state[i], state[j]);
    databasePage[kMaskedFrom + n] =
        static_cast<char>(ByteAt(databasePage, kMaskedFrom + n) ^ state[(state[i] + state[j]) % state.size()]);
  }
}

}  // namespace parvex::jet
