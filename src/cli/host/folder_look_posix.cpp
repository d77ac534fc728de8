#include "cli/host/folder_look_posix.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "adapters/libxml2/library_version.h"
#include "adapters/posix/machine_folder.h"
#include "adapters/posix/machine_path.h"
#include "cli/host/program_header.h"
#include "legacy_standin/installation/standin_settings.h"
#include "legacy_standin/sample/sample_machine.h"
#include "seams/file_parts.h"

namespace parvex::cli {
namespace {

namespace fs = std::filesystem;

std::string BeginOf(const fs::path& file) {
  std::string begin(kMostOfProgramHeader, '\0');
  std::FILE* opened = std::fopen(file.c_str(), "rb");
  begin.resize(opened == nullptr ? 0 : std::fread(begin.data(), 1, begin.size(), opened));
  if (opened != nullptr) {
    std::fclose(opened);
  }
  return begin;
}

// A program of 32 bits of the same family runs where its libraries are.
bool IsForThisProcessor(std::uint16_t machine) {
  constexpr std::uint16_t kX86 = 3;
  constexpr std::uint16_t kX64 = 62;
  const std::string own = BeginOf("/proc/self/exe");
  const std::uint16_t ours = ReadProgramHeader(own).machine;
  return machine == ours || ours == 0 || (ours == kX64 && machine == kX86);
}

std::string WhyNoProgram(const ProgramHeader& header) {
  switch (header.kind) {
    case ProgramHeader::Kind::Windows:
    case ProgramHeader::Kind::WindowsLibrary:
      return " is a Windows program, which does not run here";
    case ProgramHeader::Kind::Elf:
      return IsForThisProcessor(header.machine) ? "" : " is a program for another processor";
    case ProgramHeader::Kind::Script:
      return access(std::string(header.interpreter).c_str(), X_OK) == 0 ? ""
                                                                        : " is a script for a program that is not here";
    case ProgramHeader::Kind::None:
      break;
  }
  return " is no program";
}

std::string HomeOfUser() {
  if (const char* home = getenv("HOME"); home != nullptr && *home == '/') {
    return home;
  }
  const passwd* user = getpwuid(getuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

class FolderLook : public MachineLook {
 public:
  FolderLook(posix::Machine& machine, std::vector<standin::LateBoundClass> classes, fs::path workflow)
      : machine_(machine), folder_(machine.Root()), classes_(std::move(classes)), workflow_(std::move(workflow)) {}

  Application WhoAnswers() override {
    std::error_code none;
    const bool isMadeForIt = IsSampleMachine() || fs::exists(machine_.Root() / standin::kSettingsFile, none);
    return isMadeForIt ? Application::Substitute : Application::CopiedFiles;
  }

  std::optional<Server> ServerOf(std::string_view id, Programs) override {
    const bool isOffered = std::ranges::find(classes_, id, &standin::LateBoundClass::programmaticId) != classes_.end();
    return isOffered ? std::optional(Server()) : std::nullopt;
  }

  Engine XmlParser() override { return {.name = "libxml2", .version = xml::LibraryVersion(), .file = ""}; }
  Engine DatabaseEngine() override { return {.name = "the built-in Jet reader", .version = "", .file = ""}; }

  StartRefusal WhyNotStarted(std::string_view path) override {
    const std::string begin = ReadPart(machine_.GetFiles(), path, 0, kMostOfProgramHeader);
    if (const std::string why = WhyNoProgram(ReadProgramHeader(begin)); !why.empty()) {
      return {why};
    }
    const std::optional<fs::path> own = folder_.Resolve(path);
    const bool mayRun = own && access(own->c_str(), X_OK) == 0;
    return mayRun ? StartRefusal() : StartRefusal{" may not be run as a program", true};
  }

  std::string OtherProgram() override { return {}; }

  std::string OwnPath(std::string_view path) override {
    // What exists has its own spelling; what is missing gets the one that was asked for, in the folder that exists.
    if (const std::optional<fs::path> own = folder_.Resolve(path)) {
      return own->string();
    }
    const std::size_t cut = path.find_last_of('\\');
    if (cut == std::string_view::npos) {
      const char drive = path.size() > 1 && path[1] == ':' ? static_cast<char>(path[0] | 0x20) : 'c';
      return (machine_.Root() / (std::string("drive_") + drive)).string();
    }
    return OwnPath(path.substr(0, cut)) + "/" + std::string(path.substr(cut + 1));
  }
  std::string MachineFolder() override { return machine_.Root().string(); }
  bool IsSampleMachine() override { return standin::IsSampleMachine(machine_.Root()); }
  std::string SubstituteWorkflow() override { return workflow_.string(); }

  std::vector<PrivateFolder> PrivateFolders() override {
    std::vector<PrivateFolder> folders;
    if (const std::string home = HomeOfUser(); home.size() > 1) {
      folders.push_back({home, "~"});
    }
    return folders;
  }

 private:
  posix::Machine& machine_;
  posix::MachineFolder folder_;
  std::vector<standin::LateBoundClass> classes_;
  fs::path workflow_;
};

}  // namespace

std::unique_ptr<MachineLook> LookAtFolder(posix::Machine& machine, std::vector<standin::LateBoundClass> classes,
                                          const fs::path& workflow) {
  return std::make_unique<FolderLook>(machine, std::move(classes), workflow);
}

}  // namespace parvex::cli
