#include "formats/jet/changed_texts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "formats/jet/data_page.h"
#include "formats/jet/engine_error.h"
#include "formats/jet/file.h"
#include "formats/jet/row.h"
#include "formats/jet/values.h"
#include "formats/text/text.h"

namespace parvex::jet {
namespace {

constexpr std::size_t kIndexHeader = 32;
constexpr std::size_t kHeaderEnd = 0x98;  // what page 0 says ends here
constexpr std::size_t kPasswordAt = 0x42;
constexpr std::size_t kPasswordLength[] = {20, 40};  // of Jet 3 and Jet 4
constexpr std::size_t kCreatedAt = 0x72;
constexpr std::size_t kLongValueHeader = 12;
constexpr std::uint32_t kInsideRow = 0x80000000u;
constexpr std::uint32_t kOnOnePage = 0x40000000u;
constexpr int kPlacesOfCurrency = 10'000;

bool IsNumber(ColumnType type) {
  return type == ColumnType::Currency || type == ColumnType::Single || type == ColumnType::Double ||
         type == ColumnType::Decimal;
}

// What system tables call tables, columns and indexes.
bool IsNameOfObject(const Column& column) { return column.name == "Name" || column.name.starts_with("sz"); }

// The tables that the catalogue names, itself among them, by the page of their definition.
std::map<std::uint32_t, std::string> Tables(const File& file) {
  std::map<std::uint32_t, std::string> tables = {{kCataloguePage, "MSysObjects"}};
  const TableDefinition catalogue = file.ReadTable(kCataloguePage);
  const auto id = catalogue.FindColumn("Id");
  const auto type = catalogue.FindColumn("Type");
  const auto name = catalogue.FindColumn("Name");
  if (!id || !type || !name) {
    Fail(EngineError::UnrecognizedFormat, "the catalogue of the database lacks a column");
  }
  for (const Row& row : file.ReadRows(catalogue)) {
    const auto& typeOfRow = row.values[*type];
    const auto& idOfRow = row.values[*id];
    if (typeOfRow && typeOfRow->size() == 2 && Get16(*typeOfRow, 0) == kTableObject && idOfRow &&
        idOfRow->size() == 4) {
      const auto& nameOfRow = row.values[*name];
      tables[Get32(*idOfRow, 0) & 0x00FFFFFFu] = nameOfRow ? file.Texts().Decode(*nameOfRow) : std::string();
    }
  }
  return tables;
}

class Changer {
 public:
  Changer(std::string bytes, const std::function<void(RowTexts&)>& change, const CodePages& codePages)
      : file_(std::move(bytes), "", codePages),
        version_(file_.Texts().FileVersion()),
        bytes_(file_.Bytes()),
        leftOfLongValues_(bytes_.size()),
        change_(change) {}

  std::string Changed() {
    for (const auto& [page, name] : Tables(file_)) {
      ChangeTable(page, EqualIgnoringCase(FirstUnits(name, 4), "MSys"));
    }
    for (std::uint32_t number = 0; number * PageSize(version_) < bytes_.size(); ++number) {
      ClearPage(number);
    }
    return std::move(bytes_);
  }

 private:
  void ChangeTable(std::uint32_t definitionPage, bool isSystem) {
    const TableDefinition table = file_.ReadTable(definitionPage);
    TakeDefinition(definitionPage);
    for (Row& row : file_.ReadRows(table)) {
      ChangeRow(table, isSystem, row.values);
      DataPage& page = Loaded(row.stored.page);
      if (row.stored != row.place) {
        Loaded(row.place.page);
        reached_.insert(KeyOf(row.place));
      }
      std::string encoded = EncodeRow(table.shape, row.values);
      std::string& slot = page.slots.at(row.stored.row).bytes;
      reached_.insert(KeyOf(row.stored));
      const std::size_t longest = slot.size() + static_cast<std::size_t>(std::max<std::ptrdiff_t>(page.FreeBytes(), 0));
      if (encoded.size() > longest) {
        Fail(EngineError::FieldTooSmall, "a changed row has no room in its place");
      }
      slot = std::move(encoded);
    }
  }

  void ChangeRow(const TableDefinition& table, bool isSystem, StoredValues& values) {
    RowTexts texts;
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const Column& column = table.shape.columns[i];
      std::optional<std::string>& value = values[i];
      if (!value) {
        continue;
      }
      if (column.type == ColumnType::LongBinary) {
        PutLongValue(*value, std::string(LongValue(*value).size(), '\0'));
      } else if (column.type == ColumnType::Binary) {
        value = isSystem ? *value : std::string(value->size(), '\0');
      } else if (isSystem && IsNameOfObject(column)) {
        continue;
      } else if (IsText(column.type) || IsNumber(column.type)) {
        const std::string stored = column.type == ColumnType::Memo ? LongValue(*value) : *value;
        texts.fields.push_back({column.name, TextOf(column, stored), IsNumber(column.type)});
        columns.push_back(i);
      }
    }
    const RowTexts before = texts;
    change_(texts);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Column& column = table.shape.columns[columns[i]];
      if (texts.fields[i].text && texts.fields[i].text != before.fields[i].text) {
        PutText(column, *values[columns[i]], *texts.fields[i].text);
      }
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (table.shape.columns[columns[i]].type == ColumnType::Memo) {
        ReachLongValue(*values[columns[i]]);
      }
    }
  }

  std::optional<std::string> TextOf(const Column& column, const std::string& stored) const {
    return DecodeValue(column, stored, file_.Texts());
  }

  void PutText(const Column& column, std::string& value, const std::string& text) {
    if (IsNumber(column.type)) {
      PutNumber(column, value, text);
      return;
    }
    const std::string stored = column.type == ColumnType::Memo ? LongValueAgain(value) : value;
    std::string encoded;
    for (const bool compress : {stored.starts_with("\xFF\xFE"), false, true}) {
      encoded = file_.Texts().Encode(text, compress).value_or("");
      if (encoded.size() == stored.size()) {
        break;
      }
    }
    if (encoded.size() != stored.size()) {
      Fail(EngineError::FieldTooSmall, "a changed text of column \"" + column.name + "\" has no room in its place");
    }
    if (column.type == ColumnType::Memo) {
      PutLongValue(value, encoded);
    } else {
      value = encoded;
    }
  }

  // An amount that its column cannot hold becomes zero.
  void PutNumber(const Column& column, std::string& value, const std::string& text) {
    if (column.type == ColumnType::Single || column.type == ColumnType::Double) {
      value = EncodeValue(column, text, file_.Texts()).value_or(value);
    } else if (column.type == ColumnType::Currency) {
      const long double amount = std::strtold(text.c_str(), nullptr) * kPlacesOfCurrency;
      const bool fits = amount > -9.2e18L && amount < 9.2e18L;
      const auto stored = static_cast<std::uint64_t>(fits ? std::llroundl(amount) : 0);
      value = Bytes32(static_cast<std::uint32_t>(stored)) + Bytes32(static_cast<std::uint32_t>(stored >> 32));
    } else {
      value = std::string(value.size(), '\0');
    }
  }

  // Long values are read as they are by now: two rows cannot share one and change it twice.
  std::string LongValue(const std::string& value) { return file_.ReadLongValue(value, leftOfLongValues_); }

  // One that was read before.
  std::string LongValueAgain(const std::string& value) const {
    std::size_t left = bytes_.size();
    return file_.ReadLongValue(value, left);
  }

  void ReachLongValue(const std::string& value) {
    ForEachPiece(value, [](std::string&, std::size_t) {});
  }

  void PutLongValue(std::string& value, const std::string& bytes) {
    if ((Get32(value, 0) & kInsideRow) != 0) {
      value.replace(kLongValueHeader, bytes.size(), bytes);
      return;
    }
    std::size_t done = 0;
    ForEachPiece(value, [&](std::string& piece, std::size_t from) {
      const std::size_t length = std::min(piece.size() - from, bytes.size() - done);
      piece.replace(from, length, bytes, done, length);
      std::fill(piece.begin() + static_cast<std::ptrdiff_t>(from + length), piece.end(), '\0');
      done += length;
    });
  }

  template <typename Take>
  void ForEachPiece(const std::string& value, Take take) {
    const std::uint32_t flags = Get32(value, 0);
    if ((flags & kInsideRow) != 0) {
      return;
    }
    const bool isOne = (flags & kOnOnePage) != 0;
    std::size_t left = flags & 0x3FFFFFFFu;
    for (RowPlace next = GetPlace(value, 4); next != RowPlace{} && left > 0;) {
      const RowPlace place = next;
      DataPage& page = Loaded(place.page);
      std::string& piece = page.slots.at(place.row).bytes;
      const std::size_t from = isOne ? 0 : 4;
      if (piece.size() <= from) {
        return;
      }
      next = isOne ? RowPlace{} : GetPlace(piece, 0);
      left -= std::min(left, piece.size() - from);
      reached_.insert(KeyOf(place));
      take(piece, from);
    }
  }

  void TakeDefinition(std::uint32_t page) {
    while (page != 0 && definitions_.insert(page).second) {
      page = Get32(bytes_, page * PageSize(version_) + 4);
    }
  }

  DataPage& Loaded(std::uint32_t number) {
    const auto found = pages_.find(number);
    if (found != pages_.end()) {
      return found->second;
    }
    std::optional<DataPage> page = DecodeDataPage(version_, PageBytes(number));
    if (!page) {
      Fail(EngineError::UnrecognizedFormat, "a page of the database is damaged");
    }
    return pages_.emplace(number, std::move(*page)).first->second;
  }

  std::string_view PageBytes(std::uint32_t number) const {
    return std::string_view(bytes_).substr(number * PageSize(version_), PageSize(version_));
  }

  void ClearPage(std::uint32_t number) {
    const std::string_view page = PageBytes(number);
    const auto clear = [&](std::size_t from) {
      const std::size_t at = number * PageSize(version_);
      std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(at + from),
                bytes_.begin() + static_cast<std::ptrdiff_t>(at + PageSize(version_)), '\0');
    };
    const auto kind = static_cast<unsigned char>(page[0]);
    if (number == 0) {
      clear(kHeaderEnd);
      ClearPassword();
    } else if (kind == static_cast<unsigned char>(PageType::Data)) {
      ClearDataPage(number);
    } else if (kind == static_cast<unsigned char>(PageType::TableDefinition)) {
      if (!definitions_.contains(number)) {
        clear(0);
      }
    } else if (kind == 3 || kind == 4) {
      clear(kIndexHeader);
    } else if (kind != static_cast<unsigned char>(PageType::UsageMap)) {
      clear(0);
    }
  }

  // None at all looks like the day of creation in Jet 4, repeated.
  void ClearPassword() {
    std::string header = bytes_.substr(0, PageSize(version_));
    ToggleHeaderMask(header, version_);
    double created = 0;
    std::memcpy(&created, header.data() + kCreatedAt, sizeof created);
    const bool isDay = created > 0 && created < std::numeric_limits<std::uint32_t>::max();
    const std::uint32_t day = version_ == Version::Jet4 && isDay ? static_cast<std::uint32_t>(created) : 0;
    for (std::size_t i = 0; i < kPasswordLength[static_cast<std::size_t>(version_)]; i += 4) {
      Put32(header, kPasswordAt + i, day);
    }
    ToggleHeaderMask(header, version_);
    bytes_.replace(0, header.size(), header);
  }

  void ClearDataPage(std::uint32_t number) {
    const std::string_view bytes = PageBytes(number);
    std::optional<DataPage> decoded = DecodeDataPage(version_, bytes);
    const auto loaded = pages_.find(number);
    if (loaded != pages_.end()) {
      decoded = loaded->second;
    }
    if (!decoded) {
      decoded = DataPage{.version = version_, .owner = Get32(bytes, 4), .slots = {}};
    }
    // Usage maps have no owner, and are bits.
    for (std::size_t i = 0; decoded->owner != 0 && i < decoded->slots.size(); ++i) {
      DataPage::Slot& slot = decoded->slots[i];
      if (!reached_.contains(KeyOf({number, static_cast<std::uint8_t>(i)}))) {
        slot.bytes.assign(slot.bytes.size(), '\0');
      }
    }
    bytes_.replace(number * PageSize(version_), PageSize(version_), EncodeDataPage(*decoded));
  }

  static std::uint64_t KeyOf(RowPlace place) { return std::uint64_t{place.page} << 8 | place.row; }

  const File file_;
  const Version version_;
  std::string bytes_;
  std::size_t leftOfLongValues_;
  const std::function<void(RowTexts&)>& change_;
  std::map<std::uint32_t, DataPage> pages_;  // as they become
  std::set<std::uint64_t> reached_;
  std::set<std::uint32_t> definitions_;
};

}  // namespace

std::string WithChangedTexts(std::string bytes, const std::function<void(RowTexts&)>& change,
                             const CodePages& codePages) {
  return Changer(std::move(bytes), change, codePages).Changed();
}

}  // namespace parvex::jet
