#pragma once

#include <memory>
#include <utility>

#include "replay/network_drive.h"
#include "replay/script.h"
#include "seams/files.h"
#include "seams/private_profile.h"
#include "seams/project_database.h"

namespace parvex::replay {

// The files of a machine that a case was laid out as. What is looked at and written there is looked at and written; the
// record is asked for each change, and for the errors that looks and changes ended in. `network` says where the machine
// has the files of a network.

class AnsweredFiles : public Files {
 public:
  AnsweredFiles(Files& machine, std::shared_ptr<Script> script, NetworkDrive network)
      : machine_(machine), script_(std::move(script)), network_(network) {}

  bool IsFile(std::string_view path) override { return machine_.IsFile(network_.Path(path)); }
  bool IsFolder(std::string_view path) override { return machine_.IsFolder(network_.Path(path)); }
  std::shared_ptr<void> ExpectManyLooks() override { return machine_.ExpectManyLooks(); }
  bool MayBeLink(std::string_view path) override { return machine_.MayBeLink(network_.Path(path)); }
  std::vector<std::string> ListFiles(std::string_view pattern) override;
  std::vector<std::string> ListFolders(std::string_view folder) override;
  std::string ReadAll(std::string_view path) override;
  std::optional<std::string> ReadIfFile(std::string_view path) override;
  void Replace(std::string_view path, std::string_view bytes) override;
  void CreateNew(std::string_view path, std::string_view bytes) override;
  void Remove(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;

 private:
  void RaiseErrorOfLook(const char* op, std::string_view path);

  Files& machine_;
  std::shared_ptr<Script> script_;
  NetworkDrive network_;
};

class AnsweredProfile : public PrivateProfile {
 public:
  AnsweredProfile(PrivateProfile& machine, std::shared_ptr<Script> script, NetworkDrive network)
      : machine_(machine), script_(std::move(script)), network_(network) {}

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
  std::shared_ptr<void> Hold(std::string_view file) override { return machine_.Hold(network_.Path(file)); }

 private:
  PrivateProfile& machine_;
  std::shared_ptr<Script> script_;
  NetworkDrive network_;
};

class AnsweredDatabases : public ProjectDatabases {
 public:
  AnsweredDatabases(ProjectDatabases& machine, std::shared_ptr<Script> script, NetworkDrive network)
      : machine_(machine), script_(std::move(script)), network_(network) {}

  std::unique_ptr<Database> Open(std::string_view path) override;

 private:
  ProjectDatabases& machine_;
  std::shared_ptr<Script> script_;
  NetworkDrive network_;
};

}  // namespace parvex::replay
