#include "adapters/windows/dao_databases.h"

#include <charconv>

#include "formats/jet/engine_error.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;

constexpr std::int32_t kDynaset = 2;

ObjectRef AsObject(Value value, const std::string& what) {
  auto* object = std::get_if<ObjectRef>(&value);
  if (object == nullptr || *object == nullptr) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, what + " is no object");
  }
  return *object;
}

template <typename... Values>
Value Call(const ObjectRef& object, std::string_view member, Values... values) {
  if constexpr (sizeof...(values) == 0) {
    return object->Call(member, {});
  } else {
    Argument arguments[] = {Argument{Value(values), false}...};
    return object->Call(member, arguments);
  }
}

// Closing is clean-up: what went wrong has been reported by the step that mattered.
void CloseQuietly(const ObjectRef& object) noexcept {
  try {
    Call(object, "Close");
  } catch (const std::exception&) {
  }
}

struct ColumnText {
  std::optional<std::string> operator()(std::monostate) const { return std::nullopt; }
  std::optional<std::string> operator()(bool value) const { return value ? "True" : "False"; }
  std::optional<std::string> operator()(std::int32_t value) const { return std::to_string(value); }
  std::optional<std::string> operator()(double value) const {
    char digits[32];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  }
  std::optional<std::string> operator()(const std::string& value) const { return value; }
  template <typename T>
  std::optional<std::string> operator()(const T&) const {
    throw MakeRuntimeError(RuntimeError::TypeMismatch, "a column that holds no text or number");
  }
};

class DaoRecordSet : public RecordSet {
 public:
  explicit DaoRecordSet(ObjectRef records) : records_(std::move(records)) {}
  ~DaoRecordSet() override { CloseQuietly(records_); }
  DaoRecordSet(const DaoRecordSet&) = delete;
  DaoRecordSet& operator=(const DaoRecordSet&) = delete;

  bool AtEnd() override {
    const Value end = records_->Get("EOF");
    const auto* flag = std::get_if<bool>(&end);
    if (flag == nullptr) {
      throw MakeRuntimeError(RuntimeError::TypeMismatch, records_->Name() + ".EOF is no boolean");
    }
    return *flag;
  }
  void MoveNext() override { Call(records_, "MoveNext"); }
  std::optional<std::string> Column(std::string_view name) override {
    return std::visit(ColumnText{}, Field(name)->Get("Value"));
  }
  void AddNew() override { Call(records_, "AddNew"); }
  void Edit() override { Call(records_, "Edit"); }
  void SetColumn(std::string_view name, std::string_view value) override {
    Field(name)->Put("Value", Value(std::string(value)));
  }
  void Update() override { Call(records_, "Update"); }

 private:
  ObjectRef Field(std::string_view name) {
    return AsObject(Call(records_, "Fields", std::string(name)), "the column " + std::string(name));
  }

  ObjectRef records_;
};

class DaoDatabase : public Database {
 public:
  explicit DaoDatabase(ObjectRef database) : database_(std::move(database)) {}
  ~DaoDatabase() override { CloseQuietly(database_); }
  DaoDatabase(const DaoDatabase&) = delete;
  DaoDatabase& operator=(const DaoDatabase&) = delete;

  std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) override {
    const std::string statement(sql);
    return std::make_unique<DaoRecordSet>(
        AsObject(Call(database_, "OpenRecordset", statement, kDynaset), "the record set of " + statement));
  }

 private:
  ObjectRef database_;
};

// A file that is not there is the same error whoever looks for it.
std::unique_ptr<Database> OpenBy(const ObjectRef& engine, std::string_view path) {
  try {
    return std::make_unique<DaoDatabase>(
        AsObject(Call(engine, "OpenDatabase", std::string(path)), "the database " + std::string(path)));
  } catch (const AutomationError& error) {
    switch (static_cast<jet::EngineError>(error.RuntimeNumber())) {
      case jet::EngineError::FileNotFound:
        throw MakeFileError(RuntimeError::FileNotFound, "read", path);
      case jet::EngineError::InvalidPath:
        throw MakeFileError(RuntimeError::PathNotFound, "read", path);
      default:
        throw;
    }
  }
}

}  // namespace

std::unique_ptr<Database> DaoDatabases::Open(std::string_view path) {
  std::string reasons;
  for (const char* engine : kDatabaseEngines) {
    ObjectRef created;
    try {
      created = automation_.Create(engine);
    } catch (const AutomationError& error) {
      reasons += std::string(reasons.empty() ? "" : "; ") + error.Description();
      continue;
    }
    return OpenBy(created, path);
  }
  throw MakeRuntimeError(RuntimeError::CannotCreateObject,
                         "no database engine for \"" + std::string(path) + "\": " + reasons);
}

}  // namespace parvex::windows
