// Ini files and databases, in which the machine looks things up for its callers.

#include "recording/recorded_files.h"
#include "replay/answered_files.h"

namespace parvex::replay {
namespace {

class AnsweredSection : public ProfileSection {
 public:
  AnsweredSection(std::unique_ptr<ProfileSection> machine, std::string section, std::string file,
                  std::shared_ptr<Script> script)
      : machine_(std::move(machine)),
        section_(std::move(section)),
        file_(std::move(file)),
        script_(std::move(script)) {}

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    return machine_->ReadString(key, fallback, bufferSize);
  }
  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    return machine_->ReadInteger(key, fallback);
  }
  // A writing that failed then fails again: the machine that refused it is not at hand.
  bool WriteString(std::string_view key, std::string_view value) override {
    const Json line = {{"kind", "ini"},       {"op", "write"},           {"path", file_},
                       {"section", section_}, {"key", std::string(key)}, {"value", std::string(value)}};
    return script_->Serve(line, [&](const Step* step) {
      const bool hadFailed = step != nullptr && !FlagAt(step->answered, "result");
      return !hadFailed && machine_->WriteString(key, value);
    });
  }

 private:
  std::unique_ptr<ProfileSection> machine_;
  std::string section_;
  std::string file_;
  std::shared_ptr<Script> script_;
};

class AnsweredRows : public RecordSet {
 public:
  AnsweredRows(std::unique_ptr<RecordSet> machine, std::string path, std::shared_ptr<Script> script)
      : machine_(std::move(machine)), path_(std::move(path)), script_(std::move(script)) {}

  bool AtEnd() override { return machine_->AtEnd(); }
  void MoveNext() override { machine_->MoveNext(); }
  std::optional<std::string> Column(std::string_view name) override { return machine_->Column(name); }
  void AddNew() override {
    machine_->AddNew();
    row_ = Json::object();
  }
  void Edit() override {
    machine_->Edit();
    row_ = Json::object();
  }
  void SetColumn(std::string_view name, std::string_view value) override {
    machine_->SetColumn(name, value);
    row_[std::string(name)] = std::string(value);
  }
  void Update() override {
    const Json line = {{"kind", "database"}, {"op", "update"}, {"path", path_}, {"row", row_}};
    script_->Serve(line, [&](const Step*) {
      machine_->Update();
      return true;
    });
  }

 private:
  std::unique_ptr<RecordSet> machine_;
  std::string path_;
  std::shared_ptr<Script> script_;
  Json row_ = Json::object();
};

class AnsweredDatabase : public Database {
 public:
  AnsweredDatabase(std::unique_ptr<Database> machine, std::string path, std::shared_ptr<Script> script)
      : machine_(std::move(machine)), path_(std::move(path)), script_(std::move(script)) {}

  std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) override {
    const Json line = {{"kind", "database"}, {"op", "select"}, {"path", path_}, {"sql", std::string(sql)}};
    return script_->Serve(line, [&](const Step*) {
      return std::make_unique<AnsweredRows>(machine_->OpenRecordSet(sql), path_, script_);
    });
  }

 private:
  std::unique_ptr<Database> machine_;
  std::string path_;
  std::shared_ptr<Script> script_;
};

}  // namespace

std::unique_ptr<ProfileSection> AnsweredProfile::Section(std::string_view section, std::string_view file) {
  return std::make_unique<AnsweredSection>(machine_.Section(section, network_.Path(file)), std::string(section),
                                           recording::ProfilePath(file), script_);
}

std::unique_ptr<Database> AnsweredDatabases::Open(std::string_view path) {
  const Json line = {{"kind", "database"}, {"op", "open"}, {"path", std::string(path)}};
  return script_->Serve(line, [&](const Step*) {
    return std::make_unique<AnsweredDatabase>(machine_.Open(network_.Path(path)), std::string(path), script_);
  });
}

}  // namespace parvex::replay
