#include "adapters/windows/folder_machine.h"

#include <windows.h>

#include <optional>

#include "adapters/windows/code_page_text.h"
#include "adapters/windows/folder_files.h"
#include "adapters/windows/numbered_code_page.h"
#include "adapters/windows/profile_versions.h"
#include "adapters/windows/system_message_pump.h"
#include "formats/ini/profile_files.h"
#include "formats/jet/databases.h"
#include "formats/registry/registry_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

class FolderVersions : public ini::ProfileVersions {
 public:
  explicit FolderVersions(FolderFiles& files) : files_(files) {}
  std::optional<Seen> Look(const std::string& file) override {
    const std::optional<std::string> host = files_.Resolve(file);
    return host ? versions_.Look(*host) : std::nullopt;
  }

 private:
  FolderFiles& files_;
  SystemFileVersions versions_;
};

class FolderRegistry : public Registry {
 public:
  FolderRegistry(const std::string& folder, CodePage& codePage) {
    SystemFiles files;
    if (const std::string file = folder + "\\registry.reg"; files.IsFile(file)) {
      text_ = RegistryText(files.ReadAll(file), codePage);
    }
  }
  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) override {
    return text_.LocalMachineString(key, valueName);
  }

 private:
  RegistryText text_;
};

class NumberedCodec : public jet::TextCodec {
 public:
  explicit NumberedCodec(std::uint16_t number) : number_(number) {}
  std::string Decode(std::string_view bytes) override { return FromCodePage(bytes, number_); }
  std::optional<std::string> Encode(std::string_view utf8) override { return ToCodePageExactly(utf8, number_); }

 private:
  std::uint16_t number_;
};

std::shared_ptr<jet::TextCodec> CodecOf(std::uint16_t number) {
  if (auto western = jet::WesternCodePage(number)) {
    return western;
  }
  return IsKnownCodePage(number) ? std::make_shared<NumberedCodec>(number) : nullptr;
}

const std::string& ExistingFolder(const std::string& folder) {
  if (!SystemFiles().IsFolder(folder)) {
    throw MakeRuntimeError(RuntimeError::PathNotFound,
                           FailureText("no machine in the folder", folder, "it does not exist"));
  }
  return folder;
}

// The folder is this program's own.
class UnsharedLocks : public MachineLocks {
 public:
  std::unique_ptr<Lock> TryTake(std::string_view, bool, Holder&) override { return std::make_unique<Lock>(); }
};

}  // namespace

struct FolderMachine::Parts {
  Parts(const std::string& folder, std::uint32_t number)
      : codePage(number), files(ExistingFolder(folder)), registry(folder, codePage) {}

  NumberedCodePage codePage;
  FolderFiles files;
  UnsharedLocks locks;
  FolderVersions versions{files};
  ini::ProfileFiles privateProfile{files, versions, codePage, "C:\\Windows"};
  jet::Databases databases{files, CodecOf};
  FolderRegistry registry;
  SystemMessagePump messagePump;
};

FolderMachine::FolderMachine(const std::string& folder, std::uint32_t codePage)
    : parts_(std::make_unique<Parts>(folder, codePage)) {}
FolderMachine::~FolderMachine() = default;

Platform FolderMachine::AsPlatform() {
  return {.registry = &parts_->registry,
          .privateProfile = &parts_->privateProfile,
          .files = &parts_->files,
          .locks = &parts_->locks,
          .messagePump = &parts_->messagePump,
          .projectDatabases = &parts_->databases,
          .codePage = &parts_->codePage};
}

}  // namespace parvex::windows
