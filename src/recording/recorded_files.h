#pragma once

#include <memory>
#include <utility>

#include "recording/current_recording.h"
#include "seams/durable_files.h"
#include "seams/files.h"
#include "seams/private_profile.h"
#include "seams/project_database.h"

namespace parvex::recording {

/// Files whose every use is told to the current recording. Answers and errors are the outside's own.
class RecordedFiles : public Files, public DurableFiles {
 public:
  RecordedFiles(Files& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  bool IsFile(std::string_view path) override;
  bool IsFolder(std::string_view path) override;
  std::shared_ptr<void> ExpectManyLooks() override { return outside_.ExpectManyLooks(); }
  bool MayBeLink(std::string_view path) override { return outside_.MayBeLink(path); }
  std::vector<std::string> ListFiles(std::string_view pattern) override;
  std::vector<std::string> ListFolders(std::string_view folder) override;
  std::string ReadAll(std::string_view path) override;
  std::optional<std::string> ReadIfFile(std::string_view path) override;
  void Replace(std::string_view path, std::string_view bytes) override;
  void ReplaceOnDisk(std::string_view path, std::string_view bytes) override;
  void CreateNew(std::string_view path, std::string_view bytes) override;
  std::shared_ptr<void> HoldForChange(std::string_view path) override { return outside_.HoldForChange(path); }
  void Remove(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;

 private:
  using Replacing = void (*)(Files& files, std::string_view path, std::string_view bytes);
  void ReplaceBy(Replacing replace, std::string_view path, std::string_view bytes);
  void Asked(Recording& recording, const char* op, std::string_view path, bool answer);

  Files& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

/// Where an ini file is: a name without a folder is one of the system's folder.
std::string ProfilePath(std::string_view file);

/// Ini files: each is kept as it was before its first look-up, and the writes are told.
class RecordedProfile : public PrivateProfile {
 public:
  RecordedProfile(PrivateProfile& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
  std::shared_ptr<void> Hold(std::string_view file) override;

 private:
  PrivateProfile& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

/// Databases: the file is kept as it was before it is opened, statements and saved rows are told.
class RecordedDatabases : public ProjectDatabases {
 public:
  RecordedDatabases(ProjectDatabases& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  std::unique_ptr<Database> Open(std::string_view path) override;

 private:
  ProjectDatabases& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

}  // namespace parvex::recording
