#include "formats/jet/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "formats/jet/engine_error.h"
#include "formats/text/text.h"

namespace parvex::jet {

namespace {

/// The little-endian bytes of a number in decimal; nothing when the text is none or out of the type's range.
template <typename Number>
std::optional<std::string> NumberBytes(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

[[noreturn]] void CannotHold(const Column& column, std::string_view text, const std::string& why = "") {
  Fail(EngineError::DataTypeConversion,
       "column \"" + column.name + "\" cannot hold \"" + std::string(text) + "\"" + why);
}

std::string StoredText(const Column& column, std::string_view text, const TextForm& form) {
  std::optional<std::string> stored = column.fixed ? form.EncodePlain(text) : form.Encode(text, column.compressed);
  if (!stored) CannotHold(column, text, ": the code page of the file lacks a character of it");
  return std::move(*stored);
}

std::string EncodeTextValue(const Column& column, std::string_view text, const TextForm& form) {
  std::string stored = StoredText(column, text, form);
  const bool inUnits = form.FileVersion() == Version::Jet4;
  if ((inUnits ? LengthInUnits(text) * 2 : stored.size()) > column.size) {
    Fail(EngineError::FieldTooSmall, "column \"" + column.name + "\" is too short for \"" + std::string(text) + "\"");
  }
  if (!column.fixed) return stored;
  const std::string blank = inUnits ? Bytes16(u' ') : " ";
  while (stored.size() + blank.size() <= column.size) stored += blank;
  return stored;
}

/// Nothing when the bytes are not as many as the number has.
template <typename Number>
std::optional<Number> NumberIn(std::string_view stored) {
  Number number;
  if (stored.size() != sizeof number) return std::nullopt;
  std::memcpy(&number, stored.data(), sizeof number);
  return number;
}

template <typename Number>
std::optional<std::string> NumberText(std::string_view stored) {
  const std::optional<Number> number = NumberIn<Number>(stored);
  if (!number) return std::nullopt;
  std::array<char, 32> text;
  return std::string(text.data(), std::to_chars(text.data(), text.data() + text.size(), *number).ptr);
}

/// A number of 128 bits, the most significant word first, of which the last `scale` decimal digits are places.
std::string PlacesText(std::array<std::uint32_t, 4> words, bool negative, std::size_t scale) {
  std::string reversed;
  while (std::any_of(words.begin(), words.end(), [](std::uint32_t word) { return word != 0; })) {
    std::uint64_t rest = 0;
    for (std::uint32_t& word : words) {
      const std::uint64_t part = rest << 32 | word;
      word = static_cast<std::uint32_t>(part / 10);
      rest = part % 10;
    }
    reversed += static_cast<char>('0' + rest);
  }
  const bool isZero = reversed.empty();
  reversed.resize(std::max(reversed.size(), scale + 1), '0');
  if (scale > 0) reversed.insert(scale, 1, '.');
  if (negative && !isZero) reversed += '-';
  return {reversed.rbegin(), reversed.rend()};
}

std::optional<std::string> CurrencyText(std::string_view stored) {
  constexpr std::size_t kPlaces = 4;
  const auto number = NumberIn<std::int64_t>(stored);
  if (!number) return std::nullopt;
  const bool negative = *number < 0;
  const auto bits = static_cast<std::uint64_t>(*number);
  const std::uint64_t amount = negative ? 0 - bits : bits;
  return PlacesText({0, 0, static_cast<std::uint32_t>(amount >> 32), static_cast<std::uint32_t>(amount)}, negative,
                    kPlaces);
}

/// A sign in the highest bit of the first byte, then four words, the most significant one first.
std::optional<std::string> DecimalText(const Column& column, std::string_view stored) {
  if (stored.size() != 17 || !column.scale) return std::nullopt;
  return PlacesText({Get32(stored, 1), Get32(stored, 5), Get32(stored, 9), Get32(stored, 13)},
                    (ByteAt(stored, 0) & 0x80) != 0, *column.scale);
}

/// Days since 30 December 1899; the fraction is the time of the day, before that date too.
std::optional<std::string> DateText(std::string_view stored) {
  // 1 January 100 and 31 December 9999, the first and the last day that the engine knows.
  constexpr double kFirstDay = -657434;
  constexpr double kLastDay = 2958465;
  constexpr int kSecondsOfDay = 24 * 60 * 60;
  const auto date = NumberIn<double>(stored);
  if (!date || !(*date > kFirstDay - 1 && *date < kLastDay + 1)) return std::nullopt;
  const auto day = static_cast<int>(*date);
  const auto seconds = static_cast<int>(std::abs(*date - day) * kSecondsOfDay + 0.5);
  using namespace std::chrono;
  const sys_days first = sys_days(year{1899} / December / 30);
  const year_month_day ymd(first + days(day + seconds / kSecondsOfDay));
  const int second = seconds % kSecondsOfDay;
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(ymd.year()),
                static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()), second / 3600, second / 60 % 60,
                second % 60);
  return text.data();
}

/// The last two of its five groups stand together: that is how this column has always read here.
std::optional<std::string> GuidText(std::string_view stored) {
  if (stored.size() != 16) return std::nullopt;
  std::array<char, 64> text;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned>(ByteAt(stored, at)); };
  std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%02X%02X%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned>(Get32(stored, 0)), static_cast<unsigned>(Get16(stored, 4)),
                static_cast<unsigned>(Get16(stored, 6)), byte(8), byte(9), byte(10), byte(11), byte(12), byte(13),
                byte(14), byte(15));
  return text.data();
}

}  // namespace

std::optional<std::string> EncodeValue(const Column& column, std::string_view text, const TextForm& form) {
  std::optional<std::string> bytes;
  switch (column.type) {
    case ColumnType::Text:
      return EncodeTextValue(column, text, form);
    case ColumnType::Memo:
      return EncodeLongValue(StoredText(column, text, form));
    case ColumnType::Boolean:
      if (EqualIgnoringCase(text, "False") || text == "0") return std::nullopt;
      if (EqualIgnoringCase(text, "True")) return "\1";
      if (NumberBytes<std::int32_t>(text)) return "\1";
      break;
    case ColumnType::Byte:
      bytes = NumberBytes<std::uint8_t>(text);
      break;
    case ColumnType::Integer:
      bytes = NumberBytes<std::int16_t>(text);
      break;
    case ColumnType::Long:
      bytes = NumberBytes<std::int32_t>(text);
      break;
    case ColumnType::Single:
      bytes = NumberBytes<float>(text);
      break;
    case ColumnType::Double:
      bytes = NumberBytes<double>(text);
      break;
    default:
      break;
  }
  if (!bytes) CannotHold(column, text);
  return bytes;
}

std::optional<std::string> DecodeValue(const Column& column, std::string_view stored, const TextForm& form) {
  switch (column.type) {
    case ColumnType::Boolean:
      return "True";
    case ColumnType::Byte:
      return NumberText<std::uint8_t>(stored);
    case ColumnType::Integer:
      return NumberText<std::int16_t>(stored);
    case ColumnType::Long:
      return NumberText<std::int32_t>(stored);
    case ColumnType::Currency:
      return CurrencyText(stored);
    case ColumnType::Single:
      return NumberText<float>(stored);
    case ColumnType::Double:
      return NumberText<double>(stored);
    case ColumnType::DateTime:
      return DateText(stored);
    case ColumnType::Text:
    case ColumnType::Memo:
      return form.Decode(stored);
    case ColumnType::Guid:
      return GuidText(stored);
    case ColumnType::Decimal:
      return DecimalText(column, stored);
    case ColumnType::Binary:
    case ColumnType::LongBinary:
      break;
  }
  return std::nullopt;
}

std::string TypeName(ColumnType type) {
  switch (type) {
    case ColumnType::Boolean:
      return "Boolean";
    case ColumnType::Byte:
      return "Byte";
    case ColumnType::Integer:
      return "Integer";
    case ColumnType::Long:
      return "Long";
    case ColumnType::Currency:
      return "Currency";
    case ColumnType::Single:
      return "Single";
    case ColumnType::Double:
      return "Double";
    case ColumnType::DateTime:
      return "Date/Time";
    case ColumnType::Binary:
      return "Binary";
    case ColumnType::Text:
      return "Text";
    case ColumnType::LongBinary:
      return "OLE object";
    case ColumnType::Memo:
      return "Memo";
    case ColumnType::Guid:
      return "GUID";
    case ColumnType::Decimal:
      return "Decimal";
  }
  return "number " + std::to_string(static_cast<unsigned>(type));
}

}  // namespace parvex::jet
