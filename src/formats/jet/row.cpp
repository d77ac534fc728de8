#include "formats/jet/row.h"

#include <algorithm>
#include <vector>

namespace parvex::jet {

namespace {

/// Bytes of the numbers in a row: the column count at its start, the offsets and the count of its variable columns.
std::size_t NumberSize(Version version) { return version == Version::Jet3 ? 1 : 2; }

std::size_t NumberAt(Version version, std::string_view row, std::size_t at) {
  return version == Version::Jet3 ? ByteAt(row, at) : Get16(row, at);
}

void AppendNumber(Version version, std::string& row, std::size_t number) {
  if (version == Version::Jet3) {
    row += static_cast<char>(number & 0xFF);
  } else {
    Append16(row, static_cast<std::uint16_t>(number));
  }
}

std::size_t NullMaskSize(std::size_t columnCount) { return (columnCount + 7) / 8; }

std::size_t FixedPlace(const RowShape& shape, const Column& column) {
  return NumberSize(shape.version) + column.fixedOffset;
}

std::size_t FixedEnd(const RowShape& shape) {
  std::size_t end = NumberSize(shape.version);
  for (const Column& column : shape.columns) {
    if (!column.fixed || column.type == ColumnType::Boolean) continue;
    end = std::max(end, FixedPlace(shape, column) + column.size);
  }
  return end;
}

/// A row of Jet 3 has a jump for every 256 bytes of its length, the first one not counted.
std::size_t JumpCount(std::size_t rowSize) { return (rowSize - 1) / 256; }

/// Jet 3 stores only the low byte of an offset. A jump is the number of the first offset that has passed another 256
/// bytes; one that is not reached by the end of the values is FF.
std::string Jumps(const std::vector<std::size_t>& offsets, std::size_t sizeWithout) {
  std::size_t count = 0;
  while (JumpCount(sizeWithout + count) > count) ++count;
  std::string jumps;
  for (std::size_t jump = 1; jump <= count; ++jump) {
    const auto first = std::lower_bound(offsets.begin(), offsets.end(), 256 * jump);
    jumps += static_cast<char>(first == offsets.end() ? 0xFF : first - offsets.begin());
  }
  return {jumps.rbegin(), jumps.rend()};
}

/// What stands between the last value and the null mask; the last offset is the end of the values.
std::string OffsetTable(Version version, const std::vector<std::size_t>& offsets, std::size_t maskSize) {
  std::string table;
  for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) AppendNumber(version, table, *offset);
  if (version == Version::Jet3) table += Jumps(offsets, offsets.back() + table.size() + 1 + maskSize);
  AppendNumber(version, table, offsets.size() - 1);
  return table;
}

/// Adds to offsets of Jet 3 what their jumps say; `table` is where the offsets begin, `jumpsEnd` where the jumps end.
void FollowJumps(std::string_view row, std::size_t table, std::size_t jumpsEnd, std::vector<std::size_t>& offsets) {
  const std::size_t jumps = std::min(JumpCount(row.size()), table / 256);
  std::size_t used = 0;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    while (used < jumps && ByteAt(row, jumpsEnd - 1 - used) == i) ++used;
    offsets[i] += 256 * used;
  }
}

/// Where a row's variable values begin, and where the last one ends; nothing when the offsets contradict the row.
std::optional<std::vector<std::size_t>> Offsets(const RowShape& shape, std::string_view row, std::size_t maskAt) {
  const std::size_t size = NumberSize(shape.version);
  if (maskAt < 2 * size) return std::nullopt;
  const std::size_t count = NumberAt(shape.version, row, maskAt - size);
  const std::size_t jumps = shape.version == Version::Jet3 ? JumpCount(row.size()) : 0;
  const std::size_t behind = size + jumps;
  const std::size_t tableSize = size * (count + 1);
  if (count > shape.variableCount || maskAt < size + tableSize + behind) return std::nullopt;
  const std::size_t table = maskAt - behind - tableSize;
  std::vector<std::size_t> offsets;
  for (std::size_t i = 0; i <= count; ++i) {
    offsets.push_back(NumberAt(shape.version, row, table + tableSize - size * (i + 1)));
  }
  if (shape.version == Version::Jet3) FollowJumps(row, table, maskAt - size, offsets);
  const bool sound =
      std::is_sorted(offsets.begin(), offsets.end()) && offsets.front() >= size && offsets.back() <= table;
  return sound ? std::optional(offsets) : std::nullopt;
}

}  // namespace

std::string EncodeRow(const RowShape& shape, const StoredValues& values) {
  std::string row;
  AppendNumber(shape.version, row, shape.columnCount);
  row.resize(FixedEnd(shape));
  std::string nullMask(NullMaskSize(shape.columnCount), '\0');
  std::vector<const std::string*> variable(shape.variableCount, nullptr);
  for (std::size_t i = 0; i < shape.columns.size(); ++i) {
    const Column& column = shape.columns[i];
    if (!values[i]) continue;
    nullMask[column.number / 8] = static_cast<char>(nullMask[column.number / 8] | 1 << column.number % 8);
    if (column.type == ColumnType::Boolean) continue;
    if (column.fixed) {
      row.replace(FixedPlace(shape, column), column.size, *values[i]);
    } else {
      variable[column.variableNumber] = &*values[i];
    }
  }
  if (shape.variableCount > 0) {
    std::vector<std::size_t> offsets;
    for (const std::string* value : variable) {
      offsets.push_back(row.size());
      if (value != nullptr) row += *value;
    }
    offsets.push_back(row.size());
    row += OffsetTable(shape.version, offsets, nullMask.size());
  }
  return row + nullMask;
}

std::optional<StoredValues> DecodeRow(const RowShape& shape, std::string_view row) {
  const std::size_t numberSize = NumberSize(shape.version);
  if (row.size() < numberSize) return std::nullopt;
  // Rows older than a column of the table have no place for it: it is null there.
  const std::size_t columnCount = NumberAt(shape.version, row, 0);
  const std::size_t maskSize = NullMaskSize(columnCount);
  if (columnCount == 0 || columnCount > shape.columnCount || row.size() < numberSize + maskSize) return std::nullopt;
  const std::size_t maskAt = row.size() - maskSize;

  std::optional<std::vector<std::size_t>> offsets(std::vector<std::size_t>{maskAt});
  if (shape.variableCount > 0) offsets = Offsets(shape, row, maskAt);
  if (!offsets) return std::nullopt;

  StoredValues values;
  values.reserve(shape.columns.size());
  for (const Column& column : shape.columns) {
    const bool present =
        column.number < columnCount && (ByteAt(row, maskAt + column.number / 8) >> column.number % 8 & 1) != 0;
    if (!present || (!column.fixed && column.variableNumber + 1u >= offsets->size())) {
      values.push_back(std::nullopt);
    } else if (column.type == ColumnType::Boolean) {
      values.push_back("\1");
    } else if (column.fixed) {
      const std::size_t place = FixedPlace(shape, column);
      if (place + column.size > offsets->front()) return std::nullopt;
      values.push_back(std::string(row.substr(place, column.size)));
    } else {
      const std::size_t from = (*offsets)[column.variableNumber];
      values.push_back(std::string(row.substr(from, (*offsets)[column.variableNumber + 1u] - from)));
    }
  }
  return values;
}

}  // namespace parvex::jet
