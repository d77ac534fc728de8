#include "formats/jet/file.h"

#include <algorithm>
#include <map>

#include "formats/jet/row.h"

namespace parvex::jet {

namespace {

constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kCodePageAt = 0x3C;
constexpr std::size_t kEncryptionKeyAt = 0x3E;

/// The usage map of the whole file: marked pages are free, and so is every page behind those that it covers.
constexpr RowPlace kFreePages{1, 0};
constexpr std::size_t kMapPagePrefix = 4;

constexpr std::size_t kFreeBytesAt = 2;

constexpr std::size_t kMostDefinitionPages = 256;

/// A null takes a bit in the file and many bytes in memory: of rows that are nothing else, a table has so many values,
/// and one more for so many bytes of the file.
constexpr std::size_t kMostValues = 500'000;
constexpr std::size_t kBytesOfFurtherValue = 8;

std::size_t PagesPerMapPage(Version version) { return (PageSize(version) - kMapPagePrefix) * 8; }

std::string EmptyMapPage(Version version, bool marked) {
  std::string page(PageSize(version), marked ? '\xFF' : '\0');
  page.replace(0, kMapPagePrefix, std::string_view("\5\1\0\0", kMapPagePrefix));
  return page;
}

}  // namespace

File::File(std::string bytes, std::string name, const CodePages& codePages)
    : bytes_(std::move(bytes)), name_(std::move(name)) {
  if (!bytes_.starts_with(kFileStart)) Fail(EngineError::UnrecognizedFormat, "not a Jet database: \"" + name_ + "\"");
  const int version = bytes_.size() > kVersionAt ? ByteAt(bytes_, kVersionAt) : -1;
  if (version != static_cast<int>(Version::Jet3) && version != static_cast<int>(Version::Jet4)) {
    Fail(EngineError::UnrecognizedFormat, "a Jet database of another version than 3 and 4: \"" + name_ + "\"");
  }
  version_ = static_cast<Version>(version);
  if (bytes_.size() % PageSize(version_) != 0 || PageCount() <= kCataloguePage) {
    Damaged("it does not end with a whole page");
  }
  std::string header(Page(0));
  ToggleHeaderMask(header, version_);
  if (Get32(header, kEncryptionKeyAt) != 0) {
    Fail(EngineError::UnrecognizedFormat, "an encrypted Jet database cannot be read: \"" + name_ + "\"");
  }
  if (version_ == Version::Jet3) texts_ = TextForm(FindCodePage(Get16(header, kCodePageAt), codePages));
}

std::shared_ptr<TextCodec> File::FindCodePage(std::uint16_t number, const CodePages& codePages) const {
  std::shared_ptr<TextCodec> codePage = codePages(number);
  if (!codePage) {
    Fail(EngineError::UnrecognizedFormat,
         "a Jet 3 database in code page " + std::to_string(number) + ", which is not known: \"" + name_ + "\"");
  }
  return codePage;
}

TableDefinition File::ReadTable(std::uint32_t definitionPage) const {
  const auto part = [&](std::uint32_t number) {
    const std::string_view page = Page(number);
    if (page[0] != static_cast<char>(PageType::TableDefinition)) {
      Damaged("page " + std::to_string(number) + " is no table definition");
    }
    return page;
  };
  std::string bytes(part(definitionPage));
  for (std::uint32_t next = Get32(bytes, 4); next != 0; next = Get32(part(next), 4)) {
    bytes += part(next).substr(8);
    if (bytes.size() > kMostDefinitionPages * PageSize(version_)) Damaged("the definition of a table has no end");
  }

  DecodedDefinition decoded = DecodeDefinition(texts_, bytes);
  if (!decoded.fault.empty()) Damaged(decoded.fault);
  decoded.table.page = definitionPage;
  // Pages that are added are marked there too: a table that could not grow is refused before it is read.
  PagesInMap(decoded.table.pagesWithRoom);
  return std::move(decoded.table);
}

std::vector<Row> File::ReadRows(const TableDefinition& table) const {
  std::vector<Row> rows;
  // Sound rows have bytes of their own; pointers that share a row would make a small file a large table.
  std::size_t rowBytes = 0;
  std::size_t values = kMostValues + bytes_.size() / kBytesOfFurtherValue;
  std::map<std::uint32_t, DataPage> pages;
  const auto page = [&](std::uint32_t number) -> const DataPage& {
    auto found = pages.find(number);
    if (found == pages.end()) found = pages.emplace(number, ReadTablePage(table, number)).first;
    return found->second;
  };
  for (const std::uint32_t number : PagesInMap(table.ownedPages)) {
    const std::vector<DataPage::Slot>& slots = page(number).slots;
    if (slots.size() > kMostRows + 1) Damaged("page " + std::to_string(number) + " has too many rows");
    for (std::size_t i = 0; i < slots.size(); ++i) {
      if (slots[i].hidden) continue;
      const RowPlace place{number, static_cast<std::uint8_t>(i)};
      RowPlace stored = place;
      const DataPage::Slot* slot = &slots[i];
      if (slot->pointer) {
        if (slot->bytes.size() < 4) Damaged("a moved row has no place");
        stored = GetPlace(slot->bytes, 0);
        const DataPage& target = page(stored.page);
        if (stored.row >= target.slots.size() || target.slots[stored.row].pointer) Damaged("a moved row is missing");
        slot = &target.slots[stored.row];
      }
      rowBytes += slot->bytes.size();
      if (rowBytes > bytes_.size()) Damaged("rows share their bytes");
      if (table.shape.columns.size() > values) Damaged("a table has more values than its file has room for");
      values -= table.shape.columns.size();
      std::optional<StoredValues> values = DecodeRow(table.shape, slot->bytes);
      if (!values) {
        Damaged("row " + std::to_string(i) + " of page " + std::to_string(number) + " contradicts its table");
      }
      rows.push_back({.place = place, .stored = stored, .values = std::move(*values)});
    }
  }
  return rows;
}

std::string File::ReadLongValue(const std::string& value, std::size_t& left) const {
  constexpr std::size_t kHeaderSize = 12;
  constexpr std::uint32_t kInsideRow = 0x80000000u;
  constexpr std::uint32_t kOnOnePage = 0x40000000u;
  if (value.size() < kHeaderSize) Damaged("a long value has no header");
  const std::uint32_t flags = Get32(value, 0);
  const std::size_t length = flags & 0x3FFFFFFFu;
  if (length > bytes_.size()) Damaged("a long value is longer than the file");
  const auto takeOff = [&](const std::string& record) {
    if (record.size() > left) Damaged("memos share their bytes");
    left -= record.size();
  };
  std::string bytes;
  if ((flags & kInsideRow) != 0) {
    bytes = value.substr(kHeaderSize);
    takeOff(bytes);
  } else if ((flags & kOnOnePage) != 0) {
    bytes = SlotBytes(GetPlace(value, 4));
    takeOff(bytes);
  } else {
    std::size_t parts = 0;
    for (RowPlace next = GetPlace(value, 4); next != RowPlace{} && bytes.size() < length;) {
      const std::string part = SlotBytes(next);
      if (part.size() <= 4 || ++parts > PageCount()) Damaged("the parts of a long value have no end");
      takeOff(part);
      bytes += part.substr(4);
      next = GetPlace(part, 0);
    }
  }
  if (bytes.size() < length) Damaged("a long value ends too early");
  return bytes.substr(0, length);
}

void File::AddRow(const TableDefinition& table, const StoredValues& values) {
  if (!table.indexes.empty()) RefuseIndexed(table.indexes.front());
  for (const Column& column : table.shape.columns) {
    if (!column.autonumber) continue;
    Fail(EngineError::NotSupported,
         "a row cannot be added where column \"" + column.name + "\" counts: \"" + name_ + "\"");
  }
  StoreRow(table, EncodeRow(table.shape, values), false);
  const std::size_t rowCountAt = table.page * PageSize(version_) + RowCountAt(version_);
  Put32(bytes_, rowCountAt, Get32(bytes_, rowCountAt) + 1);
}

void File::ReplaceRow(const TableDefinition& table, const Row& row, const StoredValues& values) {
  for (const Index& index : table.indexes) {
    for (std::size_t i = 0; i < table.shape.columns.size(); ++i) {
      if (values[i] != row.values[i] && index.Covers(table.shape.columns[i])) RefuseIndexed(index);
    }
  }
  std::string rowBytes = EncodeRow(table.shape, values);
  DataPage current = ReadTablePage(table, row.stored.page);
  DataPage::Slot& slot = current.slots.at(row.stored.row);
  std::swap(slot.bytes, rowBytes);
  if (current.FreeBytes() >= 0) {
    WritePage(row.stored.page, EncodeDataPage(current));
    return;
  }
  // The row has outgrown its page: it moves, and its old place points to the new one.
  std::swap(slot.bytes, rowBytes);
  if (row.stored != row.place) {
    slot = {.hidden = true, .pointer = true, .bytes = ""};
    WritePage(row.stored.page, EncodeDataPage(current));
  }
  const RowPlace moved = StoreRow(table, std::move(rowBytes), true);
  DataPage home = ReadTablePage(table, row.place.page);
  DataPage::Slot& place = home.slots.at(row.place.row);
  place = {.hidden = false, .pointer = true, .bytes = std::string(4, '\0')};
  PutPlace(place.bytes, 0, moved);
  WritePage(row.place.page, EncodeDataPage(home));
}

void File::Damaged(const std::string& what) const {
  Fail(EngineError::UnrecognizedFormat, "the database is damaged (" + what + "): \"" + name_ + "\"");
}

void File::RefuseIndexed(const Index& index) const {
  Fail(EngineError::NotSupported, "index \"" + index.name + "\" would have to change: \"" + name_ + "\"");
}

std::string_view File::Page(std::uint32_t number) const {
  if (number >= PageCount()) Damaged("page " + std::to_string(number) + " is missing");
  return std::string_view(bytes_).substr(number * PageSize(version_), PageSize(version_));
}

DataPage File::ReadDataPage(std::uint32_t number) const {
  std::optional<DataPage> page = DecodeDataPage(version_, Page(number));
  if (!page) Damaged("page " + std::to_string(number) + " is no sound data page");
  return std::move(*page);
}

DataPage File::ReadTablePage(const TableDefinition& table, std::uint32_t number) const {
  DataPage page = ReadDataPage(number);
  if (page.owner != table.page) Damaged("page " + std::to_string(number) + " belongs to another table");
  return page;
}

void File::WritePage(std::uint32_t number, std::string_view bytes) {
  bytes_.replace(number * PageSize(version_), PageSize(version_), bytes);
}

std::string File::SlotBytes(RowPlace place) const {
  std::optional<std::string_view> record;
  if (!FindRecord(version_, Page(place.page), place.row, record)) {
    Damaged("page " + std::to_string(place.page) + " is no sound data page");
  }
  if (!record) Damaged("a referenced record is missing");
  return std::string(*record);
}

std::vector<std::uint32_t> File::PagesInMap(RowPlace map) const {
  const std::string record = SlotBytes(map);
  std::vector<std::uint32_t> pages;
  const auto collect = [&](std::string_view bits, std::size_t first) {
    for (std::size_t i = 0; i < bits.size() * 8; ++i) {
      if ((bits[i / 8] >> i % 8 & 1) == 0) continue;
      // Several entries of a map may name the same page of bits, all of them set.
      if (pages.size() >= PageCount()) Damaged("a usage map marks more pages than there are");
      pages.push_back(static_cast<std::uint32_t>(first + i));
    }
  };
  if (record.size() < 5) Damaged("a usage map is empty");
  if (record[0] == 0) {
    collect(std::string_view(record).substr(5), Get32(record, 1));
  } else {
    for (std::size_t i = 0; 1 + 4 * (i + 1) <= record.size(); ++i) {
      const std::uint32_t number = Get32(record, 1 + 4 * i);
      if (number == 0) continue;
      const std::string_view page = Page(number);
      if (page[0] != static_cast<char>(PageType::UsageMap)) Damaged("a usage map points at another page");
      collect(page.substr(kMapPagePrefix), i * PagesPerMapPage(version_));
    }
  }
  return pages;
}

void File::MarkInMap(RowPlace map, std::uint32_t page, bool mark, bool elsewhere) {
  DataPage holder = ReadDataPage(map.page);
  if (map.row >= holder.slots.size() || holder.slots[map.row].bytes.size() < 5) Damaged("a usage map is missing");
  std::string& record = holder.slots[map.row].bytes;
  const auto set = [mark](std::string& bytes, std::size_t bit, std::size_t from) {
    const int flag = 1 << bit % 8;
    char& byte = bytes[from + bit / 8];
    byte = static_cast<char>(mark ? byte | flag : byte & ~flag);
  };
  if (record[0] == 0) {
    const std::size_t first = Get32(record, 1);
    if (page >= first && page - first < (record.size() - 5) * 8) {
      set(record, page - first, 5);
      WritePage(map.page, EncodeDataPage(holder));
      return;
    }
    if (mark == elsewhere) return;
    SpreadMap(map, elsewhere);
    MarkInMap(map, page, mark, elsewhere);
    return;
  }
  const std::size_t entry = 1 + 4 * (page / PagesPerMapPage(version_));
  if (entry + 4 > record.size())
    Fail(EngineError::NotSupported, "the database has become too large: \"" + name_ + "\"");
  std::uint32_t number = Get32(record, entry);
  if (number == 0) {
    if (mark == elsewhere) return;
    number = static_cast<std::uint32_t>(PageCount());
    bytes_ += EmptyMapPage(version_, elsewhere);
    Put32(record, entry, number);
    WritePage(map.page, EncodeDataPage(holder));
    MarkInMap(kFreePages, number, false, true);
  }
  std::string mapPage(Page(number));
  set(mapPage, page % PagesPerMapPage(version_), kMapPagePrefix);
  WritePage(number, mapPage);
}

void File::SpreadMap(RowPlace map, bool elsewhere) {
  DataPage holder = ReadDataPage(map.page);
  std::string& record = holder.slots[map.row].bytes;
  const std::string inlineMap = record;
  record.assign(record.size(), '\0');
  record[0] = 1;
  WritePage(map.page, EncodeDataPage(holder));
  const std::uint32_t first = Get32(inlineMap, 1);
  for (std::uint32_t i = 0; i < (inlineMap.size() - 5) * 8; ++i) {
    MarkInMap(map, first + i, (inlineMap[5 + i / 8] >> i % 8 & 1) != 0, elsewhere);
  }
}

std::uint32_t File::AppendPage(std::string_view bytes) {
  const std::uint32_t number = static_cast<std::uint32_t>(PageCount());
  bytes_ += bytes;
  MarkInMap(kFreePages, number, false, true);
  return number;
}

RowPlace File::StoreRow(const TableDefinition& table, std::string rowBytes, bool hidden) {
  if (rowBytes.size() > LongestRow(version_)) {
    Fail(EngineError::FieldTooSmall,
         "a row of " + std::to_string(rowBytes.size()) + " bytes is too long: \"" + name_ + "\"");
  }
  const std::size_t needed = rowBytes.size() + 2;
  DataPage::Slot slot{.hidden = hidden, .pointer = false, .bytes = std::move(rowBytes)};
  std::vector<std::uint32_t> pages = PagesInMap(table.ownedPages);
  for (auto number = pages.rbegin(); number != pages.rend(); ++number) {
    if (Get16(Page(*number), kFreeBytesAt) < needed) continue;
    DataPage page = ReadTablePage(table, *number);
    if (!page.HasRoom(slot.bytes.size())) continue;
    page.slots.push_back(std::move(slot));
    WritePage(*number, EncodeDataPage(page));
    return {*number, static_cast<std::uint8_t>(page.slots.size() - 1)};
  }
  const std::uint32_t number =
      AppendPage(EncodeDataPage({.version = version_, .owner = table.page, .slots = {std::move(slot)}}));
  MarkInMap(table.ownedPages, number, true, false);
  MarkInMap(table.pagesWithRoom, number, true, false);
  return {number, 0};
}

}  // namespace parvex::jet
