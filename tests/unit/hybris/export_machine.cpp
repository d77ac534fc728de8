#include "tests/unit/hybris/export_machine.h"

#include "seams/automation_error.h"

namespace parvex::test {
namespace {

class FakeRecordSet : public RecordSet {
 public:
  explicit FakeRecordSet(std::vector<FakeProjectDatabases::Row> rows) : rows_(std::move(rows)) {}

  bool AtEnd() override { return at_ >= rows_.size(); }
  void MoveNext() override { ++at_; }
  std::optional<std::string> Column(std::string_view name) override { return rows_.at(at_).find(name)->second; }

  void AddNew() override { FailAsReadOnly(); }
  void Edit() override { FailAsReadOnly(); }
  void SetColumn(std::string_view, std::string_view) override { FailAsReadOnly(); }
  void Update() override { FailAsReadOnly(); }

 private:
  static void FailAsReadOnly() { throw MakeRuntimeError(RuntimeError::InvalidCall, "the export changes no database"); }

  std::vector<FakeProjectDatabases::Row> rows_;
  std::size_t at_ = 0;
};

class FakeDatabase : public Database {
 public:
  explicit FakeDatabase(FakeProjectDatabases& databases) : databases_(databases) {}

  std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) override {
    if (databases_.refusing) {
      throw MakeRuntimeError(RuntimeError::InvalidCall, "refused: " + std::string(sql));
    }
    databases_.statements.emplace_back(sql);
    const auto found = databases_.rows.find(std::string(sql));
    return std::make_unique<FakeRecordSet>(found == databases_.rows.end() ? std::vector<FakeProjectDatabases::Row>{}
                                                                          : found->second);
  }

 private:
  FakeProjectDatabases& databases_;
};

class CountingSection : public ProfileSection {
 public:
  CountingSection(CountingProfile& profile, std::unique_ptr<ProfileSection> counted)
      : profile_(profile), counted_(std::move(counted)) {}

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    ++profile_.read;
    return counted_->ReadString(key, fallback, bufferSize);
  }
  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    ++profile_.read;
    return counted_->ReadInteger(key, fallback);
  }
  bool WriteString(std::string_view key, std::string_view value) override { return counted_->WriteString(key, value); }

 private:
  CountingProfile& profile_;
  std::unique_ptr<ProfileSection> counted_;
};

}  // namespace

std::unique_ptr<Database> FakeProjectDatabases::Open(std::string_view path) {
  opened.emplace_back(path);
  if (unreadable) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "not a database: " + std::string(path));
  }
  return std::make_unique<FakeDatabase>(*this);
}

std::unique_ptr<ProfileSection> CountingProfile::Section(std::string_view section, std::string_view file) {
  ++opened;
  return std::make_unique<CountingSection>(*this, counted_.Section(section, file));
}

}  // namespace parvex::test
