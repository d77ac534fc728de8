// Ini files and databases, in which the machine looks things up for its callers.

#include "recording/recorded_files.h"

namespace parvex::recording {
namespace {

class RecordedSection : public ProfileSection {
 public:
  RecordedSection(std::unique_ptr<ProfileSection> outside, std::string section, std::string file,
                  std::shared_ptr<CurrentRecording> current)
      : outside_(std::move(outside)),
        section_(std::move(section)),
        file_(std::move(file)),
        current_(std::move(current)) {}

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    return outside_->ReadString(key, fallback, bufferSize);
  }
  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    return outside_->ReadInteger(key, fallback);
  }
  bool WriteString(std::string_view key, std::string_view value) override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_->WriteString(key, value);
    }
    Json line = {{"kind", "ini"},       {"op", "write"},           {"path", file_},
                 {"section", section_}, {"key", std::string(key)}, {"value", std::string(value)}};
    return journal::Watch(recording->Writer(), std::move(line), [&](Json& ended) {
      const bool isWritten = outside_->WriteString(key, value);
      ended["result"] = isWritten;
      if (isWritten) {
        recording->Files().Wrote(file_);
      }
      return isWritten;
    });
  }

 private:
  std::unique_ptr<ProfileSection> outside_;
  std::string section_;
  std::string file_;
  std::shared_ptr<CurrentRecording> current_;
};

class RecordedRows : public RecordSet {
 public:
  RecordedRows(std::unique_ptr<RecordSet> outside, std::string path, std::shared_ptr<CurrentRecording> current)
      : outside_(std::move(outside)), path_(std::move(path)), current_(std::move(current)) {}

  bool AtEnd() override { return outside_->AtEnd(); }
  void MoveNext() override { outside_->MoveNext(); }
  std::optional<std::string> Column(std::string_view name) override { return outside_->Column(name); }
  void AddNew() override {
    outside_->AddNew();
    row_ = Json::object();
  }
  void Edit() override {
    outside_->Edit();
    row_ = Json::object();
  }
  void SetColumn(std::string_view name, std::string_view value) override {
    outside_->SetColumn(name, value);
    row_[std::string(name)] = std::string(value);
  }
  void Update() override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_->Update();
    }
    const Json line = {{"kind", "database"}, {"op", "update"}, {"path", path_}, {"row", row_}};
    journal::Watch(recording->Writer(), line, [&](Json&) {
      outside_->Update();
      recording->Files().Wrote(path_);
      return true;
    });
  }

 private:
  std::unique_ptr<RecordSet> outside_;
  std::string path_;
  std::shared_ptr<CurrentRecording> current_;
  Json row_ = Json::object();
};

class RecordedDatabase : public Database {
 public:
  RecordedDatabase(std::unique_ptr<Database> outside, std::string path, std::shared_ptr<CurrentRecording> current)
      : outside_(std::move(outside)), path_(std::move(path)), current_(std::move(current)) {}

  std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) override {
    const std::shared_ptr<Recording> recording = current_->recording;
    const auto open = [&] { return std::make_unique<RecordedRows>(outside_->OpenRecordSet(sql), path_, current_); };
    if (recording == nullptr) {
      return open();
    }
    const Json line = {{"kind", "database"}, {"op", "select"}, {"path", path_}, {"sql", std::string(sql)}};
    return journal::Watch(recording->Writer(), line, [&](Json&) { return open(); });
  }

 private:
  std::unique_ptr<Database> outside_;
  std::string path_;
  std::shared_ptr<CurrentRecording> current_;
};

}  // namespace

std::string ProfilePath(std::string_view file) {
  return file.find_first_of("\\/:") == std::string_view::npos ? "C:\\Windows\\" + std::string(file) : std::string(file);
}

std::unique_ptr<ProfileSection> RecordedProfile::Section(std::string_view section, std::string_view file) {
  if (Recording* recording = current_->recording.get()) {
    recording->Files().Use(ProfilePath(file));
  }
  return std::make_unique<RecordedSection>(outside_.Section(section, file), std::string(section), ProfilePath(file),
                                           current_);
}

std::shared_ptr<void> RecordedProfile::Hold(std::string_view file) {
  if (Recording* recording = current_->recording.get()) {
    recording->Files().Use(ProfilePath(file));
  }
  return outside_.Hold(file);
}

std::unique_ptr<Database> RecordedDatabases::Open(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  const auto open = [&] {
    return std::make_unique<RecordedDatabase>(outside_.Open(path), std::string(path), current_);
  };
  if (recording == nullptr) {
    return open();
  }
  recording->Files().Use(path);
  const Json line = {{"kind", "database"}, {"op", "open"}, {"path", std::string(path)}};
  return journal::Watch(recording->Writer(), line, [&](Json&) { return open(); });
}

}  // namespace parvex::recording
