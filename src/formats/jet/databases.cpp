#include "formats/jet/databases.h"

#include <algorithm>
#include <map>

#include "formats/jet/decoder.h"
#include "formats/jet/file.h"
#include "formats/jet/statement.h"
#include "formats/jet/values.h"
#include "seams/automation_error.h"
#include "seams/durable_files.h"

namespace parvex::jet {

namespace {

/// An open database: its bytes as they were read or written last, and the tables that were asked for.
class OpenFile {
 public:
  OpenFile(Files& files, const CodePages& codePages, std::string_view path)
      : files_(files), codePages_(codePages), file_(Read(path)) {}

  const std::string& Name() const { return file_.Name(); }
  const TextForm& Texts() const { return file_.Texts(); }

  std::shared_ptr<Table> TableAt(std::uint32_t definitionPage) {
    std::shared_ptr<Table>& table = tables_[definitionPage];
    if (!table) table = std::make_shared<Table>(DecodeTable(file_, definitionPage));
    return table;
  }

  /// The definition page of a table by its name.
  std::uint32_t FindTable(const std::string& name) {
    constexpr std::uint32_t kPageOfId = 0x00FFFFFF;
    constexpr int kTypeOfObject = 0x7F;
    Table& catalogue = *TableAt(kCataloguePage);
    const std::size_t id = Require(catalogue, "Id", ColumnType::Long);
    const std::size_t type = Require(catalogue, "Type", ColumnType::Integer);
    for (const std::size_t row : catalogue.Find({{Require(catalogue, "Name", ColumnType::Text), name}})) {
      const auto& values = catalogue.Rows()[row].stored.values;
      if (!values[id] || !values[type]) continue;
      if ((Get16(*values[type], 0) & kTypeOfObject) != kTableObject) continue;
      return Get32(*values[id], 0) & kPageOfId;
    }
    Fail(EngineError::NoSuchTable, "no table \"" + name + "\" in \"" + file_.Name() + "\"");
  }

  /// Makes a change to the file as it stands now; nothing has changed when it fails.
  template <typename Change>
  void Save(Change change) {
    const std::shared_ptr<void> alone = files_.HoldForChange(file_.Name());
    File changed = Read(file_.Name());
    change(changed);
    ReplaceOnDisk(files_, changed.Name(), changed.Bytes());
    file_ = std::move(changed);
    tables_.clear();
  }

 private:
  File Read(std::string_view path) const { return {files_.ReadAll(path), std::string(path), codePages_}; }

  /// A number is required to have its fixed place, and so has its bytes wherever it is not null.
  std::size_t Require(const Table& catalogue, std::string_view column, ColumnType type) const {
    const std::optional<std::size_t> found = catalogue.Definition().FindColumn(column);
    const std::vector<Column>& columns = catalogue.Definition().shape.columns;
    const bool fixed = type != ColumnType::Text;
    if (!found || columns[*found].type != type || columns[*found].fixed != fixed)
      Fail(EngineError::UnrecognizedFormat, "the database has no catalogue: \"" + file_.Name() + "\"");
    return *found;
  }

  Files& files_;
  CodePages codePages_;
  File file_;
  std::map<std::uint32_t, std::shared_ptr<Table>> tables_;
};

class JetRecordSet : public TypedRecordSet {
 public:
  /// `rows` are places in the rows of the table.
  JetRecordSet(std::shared_ptr<OpenFile> file, std::string tableName, std::shared_ptr<const Table> read,
               std::vector<std::size_t> rows)
      : file_(std::move(file)),
        tableName_(std::move(tableName)),
        table_(read->Definition()),
        read_(std::move(read)),
        rows_(std::move(rows)) {}

  bool AtEnd() override { return current_ == rows_.size(); }

  void MoveNext() override {
    Current();
    ++current_;
    change_ = Change::None;
  }

  std::optional<std::string> Column(std::string_view name) override {
    const TextRow& row = Current();
    const std::size_t column = Find(name);
    if (!row.texts[column] && row.stored.values[column]) RefuseWithoutText(table_.shape.columns[column]);
    return row.texts[column];
  }

  ColumnType TypeOf(std::string_view name) const override { return table_.shape.columns[Find(name)].type; }

  std::optional<std::string> Stored(std::string_view name) const override {
    return Current().stored.values[Find(name)];
  }

  void AddNew() override {
    values_.assign(table_.shape.columns.size(), std::nullopt);
    change_ = Change::Add;
  }

  void Edit() override {
    values_ = Current().stored.values;
    change_ = Change::Edit;
  }

  void SetColumn(std::string_view name, std::string_view value) override {
    RequireChange("SetColumn");
    const std::size_t column = Find(name);
    values_[column] = EncodeValue(table_.shape.columns[column], value, file_->Texts());
  }

  void Update() override {
    RequireChange("Update");
    if (change_ == Change::Add) {
      file_->Save([&](File& file) { file.AddRow(SameTable(file), values_); });
    } else {
      const RowPlace place = Current().stored.place;
      file_->Save([&](File& file) { Replace(file); });
      for (const TextRow& row : file_->TableAt(table_.page)->Rows()) {
        if (row.stored.place == place) changed_[current_] = row;
      }
    }
    change_ = Change::None;
  }

 private:
  enum class Change { None, Add, Edit };

  const TextRow& Current() const {
    if (current_ == rows_.size()) Fail(EngineError::NoCurrentRecord, "no current row" + InTable());
    const auto changed = changed_.find(current_);
    return changed == changed_.end() ? read_->Rows()[rows_[current_]] : changed->second;
  }

  std::size_t Find(std::string_view name) const {
    const std::optional<std::size_t> column = table_.FindColumn(name);
    if (!column) Fail(EngineError::NoSuchColumn, "no column \"" + std::string(name) + "\"" + InTable());
    return *column;
  }

  void RequireChange(const std::string& what) const {
    if (change_ == Change::None) Fail(EngineError::NothingToUpdate, what + " without AddNew or Edit" + InTable());
  }

  [[noreturn]] void RefuseWithoutText(const jet::Column& column) const {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "column \"" + column.name + "\" holds a value of type " +
                                                           TypeName(column.type) + " that has no text" + InTable());
  }

  std::string InTable() const { return " in table \"" + tableName_ + "\" of \"" + file_->Name() + "\""; }

  /// The table as it stands in the file now; the values of a row belong to the columns that it had.
  TableDefinition SameTable(const File& file) const {
    TableDefinition table = file.ReadTable(table_.page);
    if (table.shape.columns != table_.shape.columns) {
      Fail(EngineError::ChangedMeanwhile, "the columns were changed by somebody else" + InTable());
    }
    return table;
  }

  void Replace(File& file) const {
    const TableDefinition table = SameTable(file);
    const Row& known = Current().stored;
    for (const Row& row : file.ReadRows(table)) {
      if (row.place != known.place || row.values != known.values) continue;
      file.ReplaceRow(table, row, values_);
      return;
    }
    Fail(EngineError::ChangedMeanwhile, "the row was changed by somebody else" + InTable());
  }

  std::shared_ptr<OpenFile> file_;
  std::string tableName_;
  TableDefinition table_;
  std::shared_ptr<const Table> read_;  ///< as it was when the record set was opened
  std::vector<std::size_t> rows_;
  std::map<std::size_t, TextRow> changed_;  ///< by this record set, as they read since
  std::size_t current_ = 0;
  Change change_ = Change::None;
  StoredValues values_;  ///< of the row that is being added or changed
};

class JetDatabase : public TypedDatabase {
 public:
  explicit JetDatabase(std::shared_ptr<OpenFile> file) : file_(std::move(file)) {}

  std::unique_ptr<TypedRecordSet> OpenTyped(std::string_view sql) override {
    const Statement statement = ParseStatement(sql);
    const std::shared_ptr<Table> table = file_->TableAt(file_->FindTable(statement.table));
    std::vector<std::pair<std::size_t, std::string>> conditions;
    for (const Statement::Condition& condition : statement.conditions) {
      conditions.emplace_back(FindTextColumn(*table, condition.column, sql), condition.text);
    }
    return std::make_unique<JetRecordSet>(file_, statement.table, table, table->Find(conditions));
  }

 private:
  static std::size_t FindTextColumn(const Table& table, const std::string& name, std::string_view sql) {
    const std::optional<std::size_t> column = table.Definition().FindColumn(name);
    if (!column) {
      Fail(EngineError::TooFewParameters, "no column \"" + name + "\" for the statement: " + std::string(sql));
    }
    const ColumnType type = table.Definition().shape.columns[*column].type;
    if (type != ColumnType::Text && type != ColumnType::Memo) {
      Fail(EngineError::CriteriaMismatch, "column \"" + name + "\" holds no text: " + std::string(sql));
    }
    return *column;
  }

  std::shared_ptr<OpenFile> file_;
};

}  // namespace

std::unique_ptr<TypedDatabase> Databases::OpenTyped(std::string_view path) {
  return std::make_unique<JetDatabase>(std::make_shared<OpenFile>(files_, codePages_, path));
}

}  // namespace parvex::jet
