#include "formats/jet/values.h"

#include <charconv>
#include <cstring>

#include "formats/jet/engine_error.h"
#include "formats/jet/stored_text.h"
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

}  // namespace

std::optional<std::string> EncodeValue(const Column& column, std::string_view text) {
  std::optional<std::string> bytes;
  switch (column.type) {
    case ColumnType::Text:
      if (LengthInUnits(text) * 2 > column.size) {
        Fail(EngineError::FieldTooSmall, "Column '" + column.name + "' is too short for '" + std::string(text) + "'");
      }
      if (!column.fixed) return EncodeText(text, column.compressed);
      bytes = Utf16Bytes(text);
      while (bytes->size() < column.size) Append16(*bytes, u' ');
      return bytes;
    case ColumnType::Memo:
      return EncodeMemo(text, column.compressed);
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
  if (!bytes) {
    Fail(EngineError::DataTypeConversion, "Column '" + column.name + "' cannot hold '" + std::string(text) + "'");
  }
  return bytes;
}

}  // namespace parvex::jet
