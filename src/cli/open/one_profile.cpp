#include "cli/open/one_profile.h"

#include <utility>

#include "formats/ini/profile_files.h"
#include "formats/text/windows_1252.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

class OneFile : public Files, public ini::ProfileVersions {
 public:
  explicit OneFile(std::string bytes) : bytes_(std::move(bytes)) {}

  bool IsFile(std::string_view path) override { return path == OneProfile::kPath; }
  bool IsFolder(std::string_view) override { return false; }
  std::vector<std::string> ListFiles(std::string_view) override { return {}; }
  std::vector<std::string> ListFolders(std::string_view) override { return {}; }
  std::string ReadAll(std::string_view path) override {
    if (!IsFile(path)) {
      throw MakeFileError(RuntimeError::FileNotFound, "read", path);
    }
    return bytes_;
  }
  void Replace(std::string_view path, std::string_view) override { Refuse(path); }
  void CreateNew(std::string_view path, std::string_view) override { Refuse(path); }
  void Remove(std::string_view path) override { Refuse(path); }
  void CreateFolder(std::string_view path) override { Refuse(path); }
  void RemoveFolder(std::string_view path) override { Refuse(path); }

  std::optional<Seen> Look(const std::string& file) override {
    return IsFile(file) ? std::optional(Seen{.version = {.size = bytes_.size()}, .isSettled = true}) : std::nullopt;
  }

 private:
  [[noreturn]] static void Refuse(std::string_view path) {
    throw MakeFileError(RuntimeError::PathFileAccess, "change", path);
  }

  std::string bytes_;
};

}  // namespace

struct OneProfile::Parts {
  explicit Parts(std::string bytes) : file(std::move(bytes)) {
    machine.files = &file;
    machine.privateProfile = &profile;
    machine.codePage = &codePage;
  }

  OneFile file;
  posix::Windows1252 codePage;
  ini::ProfileFiles profile{file, file, codePage, "C:\\Windows"};
  Platform machine;
};

OneProfile::OneProfile(std::string bytes) : parts_(std::make_unique<Parts>(std::move(bytes))) {}

OneProfile::~OneProfile() = default;

const Platform& OneProfile::Machine() const { return parts_->machine; }

}  // namespace parvex::cli
