#include "legacy_standin/database_engine/dao_engine.h"

#include <array>
#include <charconv>
#include <cstring>
#include <memory>

#include "formats/jet/databases.h"
#include "formats/jet/engine_error.h"
#include "formats/text/text.h"
#include "legacy_standin/late_bound/late_bound_members.h"

namespace parvex::standin {

namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;
using jet::EngineError;

constexpr std::int32_t kDynaset = 2;

template <typename Number>
Value NumberIn(const std::string& text) {
  Number number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

/// A date's value is the number of its days.
Value DateIn(const jet::TypedRecordSet& rows, const std::string& column) {
  const std::string bytes = rows.Stored(column).value_or("");
  double days = 0;
  if (bytes.size() == sizeof days) std::memcpy(&days, bytes.data(), sizeof days);
  return days;
}

/// A column's text as a value of the column's type.
Value TypedValue(jet::TypedRecordSet& rows, const std::string& column) {
  const std::optional<std::string> text = rows.Column(column);
  if (!text) return {};
  switch (rows.TypeOf(column)) {
    case jet::ColumnType::Boolean:
      return *text == "True";
    case jet::ColumnType::Byte:
    case jet::ColumnType::Integer:
    case jet::ColumnType::Long:
      return NumberIn<std::int32_t>(*text);
    case jet::ColumnType::Single:
    case jet::ColumnType::Double:
    case jet::ColumnType::Currency:
    case jet::ColumnType::Decimal:
      return NumberIn<double>(*text);
    case jet::ColumnType::DateTime:
      return DateIn(rows, column);
    default:
      return *text;
  }
}

/// What every object of the engine has: a name, and no members but those that its class adds.
class DaoObject : public automation::Object {
 public:
  explicit DaoObject(std::string name) : name_(std::move(name)) {}
  std::string Name() const override { return name_; }
  Value Get(std::string_view member) override { RefuseMember(*this, member); }
  void Put(std::string_view member, const Value&) override { RefuseMember(*this, member); }
  Value Call(std::string_view member, std::span<Argument>) override { RefuseMember(*this, member); }

 private:
  std::string name_;
};

/// Something that can be closed; any use of it, or of what it handed out, fails from then on.
template <typename T>
class Closable {
 public:
  Closable(std::unique_ptr<T> open, std::string name) : open_(std::move(open)), name_(std::move(name)) {}
  T& operator*() const {
    if (open_ == nullptr) jet::Fail(EngineError::ObjectInvalid, name_ + " is closed");
    return *open_;
  }
  T* operator->() const { return &**this; }
  void Close() {
    **this;
    open_ = nullptr;
  }

 private:
  std::unique_ptr<T> open_;
  std::string name_;
};

using OpenRows = std::shared_ptr<Closable<jet::TypedRecordSet>>;

class Field : public DaoObject {
 public:
  Field(OpenRows rows, const std::string& recordSet, std::string column)
      : DaoObject(recordSet + ".Fields(" + column + ")"), rows_(std::move(rows)), column_(std::move(column)) {
    (*rows_)->TypeOf(column_);
  }

  Value Get(std::string_view member) override {
    if (EqualIgnoringCase(member, "Name")) return column_;
    if (!EqualIgnoringCase(member, "Value")) RefuseMember(*this, member);
    return TypedValue(**rows_, column_);
  }

  void Put(std::string_view member, const Value& value) override {
    if (!EqualIgnoringCase(member, "Value")) RefuseMember(*this, member);
    (*rows_)->SetColumn(column_, TextOf(value));
  }

 private:
  std::string TextOf(const Value& value) const {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "True" : "False";
    if (const auto* number = std::get_if<double>(&value)) {
      std::array<char, 32> digits;
      return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), *number).ptr};
    }
    jet::Fail(EngineError::DataTypeConversion, Name() + " takes a text or a number only");
  }

  OpenRows rows_;
  std::string column_;
};

class Fields : public DaoObject {
 public:
  Fields(OpenRows rows, std::string recordSet)
      : DaoObject(recordSet + ".Fields"), rows_(std::move(rows)), recordSet_(std::move(recordSet)) {}

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    if (!EqualIgnoringCase(member, "Item")) RefuseMember(*this, member);
    const std::string column = TextArguments(*this, member, arguments, 1).front();
    return std::make_shared<Field>(rows_, recordSet_, column);
  }

 private:
  OpenRows rows_;
  std::string recordSet_;
};

class DaoRecordSet : public DaoObject {
 public:
  DaoRecordSet(std::unique_ptr<jet::TypedRecordSet> rows, const std::string& name)
      : DaoObject(name), rows_(std::make_shared<Closable<jet::TypedRecordSet>>(std::move(rows), name)) {}

  Value Get(std::string_view member) override {
    if (EqualIgnoringCase(member, "EOF")) return (*rows_)->AtEnd();
    if (EqualIgnoringCase(member, "Fields")) return AllFields();
    RefuseMember(*this, member);
  }

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    // With an argument it means the collection's item.
    if (EqualIgnoringCase(member, "Fields")) return AllFields()->Call("Item", arguments);
    TextArguments(*this, member, arguments, 0);
    if (EqualIgnoringCase(member, "MoveNext")) {
      (*rows_)->MoveNext();
    } else if (EqualIgnoringCase(member, "AddNew")) {
      (*rows_)->AddNew();
    } else if (EqualIgnoringCase(member, "Edit")) {
      (*rows_)->Edit();
    } else if (EqualIgnoringCase(member, "Update")) {
      (*rows_)->Update();
    } else if (EqualIgnoringCase(member, "Close")) {
      rows_->Close();
    } else {
      RefuseMember(*this, member);
    }
    return {};
  }

 private:
  ObjectRef AllFields() const { return std::make_shared<Fields>(rows_, Name()); }

  OpenRows rows_;
};

class DaoDatabase : public DaoObject {
 public:
  DaoDatabase(std::unique_ptr<jet::TypedDatabase> database, const std::string& name)
      : DaoObject(name), database_(std::move(database), name) {}

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    if (EqualIgnoringCase(member, "OpenRecordset")) return OpenRecordset(arguments);
    if (!EqualIgnoringCase(member, "Close")) RefuseMember(*this, member);
    TextArguments(*this, member, arguments, 0);
    database_.Close();
    return {};
  }

 private:
  ObjectRef OpenRecordset(std::span<Argument> arguments) {
    constexpr const char* kMember = "OpenRecordset";
    if (arguments.size() == 2 && arguments[1].value != Value(kDynaset)) {
      RefuseValue(*this, kMember, "only dynasets (2) are known");
    }
    const auto named = arguments.size() == 2 ? arguments.first(1) : arguments;
    const std::string sql = TextArguments(*this, kMember, named, 1).front();
    return std::make_shared<DaoRecordSet>(database_->OpenTyped(sql), Name() + ".OpenRecordset");
  }

  Closable<jet::TypedDatabase> database_;
};

class DaoEngine : public DaoObject {
 public:
  DaoEngine(Files& files, std::string programmaticId)
      : DaoObject(std::move(programmaticId)), files_(files), databases_(files) {}

  Value Call(std::string_view member, std::span<Argument> arguments) override {
    if (!EqualIgnoringCase(member, "OpenDatabase")) RefuseMember(*this, member);
    const std::string path = TextArguments(*this, member, arguments, 1).front();
    RequireFile(path);
    return std::make_shared<DaoDatabase>(databases_.OpenTyped(path), Name() + ".OpenDatabase");
  }

 private:
  void RequireFile(const std::string& path) {
    if (files_.IsFile(path)) return;
    if (files_.IsFolder(path.substr(0, path.find_last_of("\\/") + 1))) {
      jet::Fail(EngineError::FileNotFound, "Could not find the file '" + path + "'");
    }
    jet::Fail(EngineError::InvalidPath, "Not a valid path: '" + path + "'");
  }

  Files& files_;
  jet::Databases databases_;
};

}  // namespace

std::vector<LateBoundClass> DaoClasses(Files& files) {
  std::vector<LateBoundClass> classes;
  for (const char* id : {kOlderDaoEngine, kNewerDaoEngine}) {
    classes.push_back({id, [&files, id] { return std::make_shared<DaoEngine>(files, id); }});
  }
  return classes;
}

}  // namespace parvex::standin
