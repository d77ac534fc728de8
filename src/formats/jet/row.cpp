#include "formats/jet/row.h"

#include <algorithm>
#include <vector>

namespace parvex::jet {

namespace {

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

}  // namespace parvex::jet
