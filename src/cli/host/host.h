#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/host/machine_look.h"
#include "formats/router_ids/router_ids.h"
#include "seams/host_system.h"
#include "seams/own_settings.h"
#include "seams/platform.h"

namespace parvex::cli {

/// What only the platform knows about itself.
struct HostFacts {
  std::string program;   ///< what this program is to components in its process: "64-bit Windows program"
  unsigned bitness;      ///< of this program
  std::string codePage;  ///< the ANSI code page's number
  bool runsWindowsPrograms;
};

/// The machine that commands work on, with the legacy application that answers on it. On Linux it is a folder, and the
/// application the substitute; on Windows it is the machine that the program runs on. Message boxes are written to
/// standard error on both.
class Host {
 public:
  /// `machineFolder` is the name that the user gave, empty for none. A UsageError when one is needed, or cannot be
  /// used; an AutomationError when the folder does not exist or its settings cannot be understood.
  explicit Host(const std::string& machineFolder);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// The members live as long as the host.
  parvex::Platform Platform();
  OwnSettings& Settings();
  MachineLook& Look();

  static HostFacts Facts();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// A machine that a folder stands for, without the legacy application: its registry, ini files, files, databases and
/// code page; the other members are null or of no use. They live as long as what this gives. A UsageError where the
/// platform, or the code page, does not allow it; an AutomationError when the folder does not exist.
std::shared_ptr<const Platform> MachineOfFolder(const std::string& folder, unsigned codePage);

/// The system that the program runs on.
std::unique_ptr<HostSystem> ThisSystem();

/// The program's arguments, without its own name, as UTF-8.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The path of a file of this system by its name in UTF-8.
inline std::filesystem::path PathOf(const std::string& name) { return std::u8string(name.begin(), name.end()); }

/// Makes a sample machine folder that holds a substitute for the legacy application.
void CreateMachine(const std::filesystem::path& folder);

/// The identifiers of the message router that a type library (or a file with one in it) describes. A UsageError where
/// the platform cannot read type libraries; an AutomationError that names the file when it describes no router.
RouterIds RouterIdsIn(const std::string& typeLibrary);

/// Makes standard input and output carry bytes as they stand, and makes writing to a reader that went away, or to a
/// stream that was closed from the start, an error that can be reported.
void PrepareStandardStreams();

/// Makes XML documents and components usable, for as long as the result is kept: on Windows it is COM on this thread.
std::shared_ptr<void> EnterPlatform();

/// Whether a standard stream goes to a terminal. On Windows its escape sequences are switched on then.
bool IsTerminal(std::FILE* stream);

}  // namespace parvex::cli
