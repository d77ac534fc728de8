#include "tests/support/full_disk.h"

#include <string>
#include <utility>

#include "seams/automation_error.h"

namespace parvex::test {
namespace {

bool TakeRoom(int& room) {
  if (room == 0) {
    return false;
  }
  --room;
  return true;
}

class FullSection : public ProfileSection {
 public:
  FullSection(std::unique_ptr<ProfileSection> section, int& room) : section_(std::move(section)), room_(room) {}

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    return section_->ReadString(key, fallback, bufferSize);
  }
  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    return section_->ReadInteger(key, fallback);
  }
  bool WriteString(std::string_view key, std::string_view value) override {
    return TakeRoom(room_) && section_->WriteString(key, value);
  }

 private:
  const std::unique_ptr<ProfileSection> section_;
  int& room_;
};

}  // namespace

class FullDisk::FullFiles : public Files {
 public:
  FullFiles(Files& files, int& room) : files_(files), room_(room) {}

  bool IsFile(std::string_view path) override { return files_.IsFile(path); }
  bool IsFolder(std::string_view path) override { return files_.IsFolder(path); }
  std::vector<std::string> ListFiles(std::string_view pattern) override { return files_.ListFiles(pattern); }
  std::vector<std::string> ListFolders(std::string_view folder) override { return files_.ListFolders(folder); }
  std::string ReadAll(std::string_view path) override { return files_.ReadAll(path); }
  void Replace(std::string_view path, std::string_view bytes) override {
    NeedRoomFor(path);
    files_.Replace(path, bytes);
  }
  void CreateNew(std::string_view path, std::string_view bytes) override {
    NeedRoomFor(path);
    files_.CreateNew(path, bytes);
  }
  void Remove(std::string_view path) override { files_.Remove(path); }
  void CreateFolder(std::string_view path) override { files_.CreateFolder(path); }
  void RemoveFolder(std::string_view path) override { files_.RemoveFolder(path); }

 private:
  void NeedRoomFor(std::string_view path) {
    if (!TakeRoom(room_)) {
      throw MakeRuntimeError(RuntimeError::DiskFull, "no room for " + std::string(path));
    }
  }

  Files& files_;
  int& room_;
};

class FullDisk::FullProfile : public PrivateProfile {
 public:
  FullProfile(PrivateProfile& profile, int& room) : profile_(profile), room_(room) {}

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override {
    return std::make_unique<FullSection>(profile_.Section(section, file), room_);
  }

 private:
  PrivateProfile& profile_;
  int& room_;
};

FullDisk::FullDisk(const Platform& machine, int room)
    : room_(room),
      files_(std::make_unique<FullFiles>(*machine.files, room_)),
      profile_(std::make_unique<FullProfile>(*machine.privateProfile, room_)),
      platform_(machine) {
  platform_.privateProfile = profile_.get();
  platform_.files = files_.get();
  platform_.projectDatabases = &databases_;
}

}  // namespace parvex::test
