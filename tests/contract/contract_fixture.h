#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "seams/automation.h"
#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/machine_locks.h"
#include "seams/message_boxes.h"
#include "seams/message_pump.h"
#include "seams/private_profile.h"
#include "seams/processes.h"
#include "seams/project_database.h"
#include "seams/registry.h"
#include "tests/support/raised_by.h"

namespace parvex::test {

/// The machine that the contract suites run on, with the adapters of the platform that is built. A suite speaks only to
/// the seams and to what is here, so that the same source judges every adapter. One test, one machine.
struct ContractMachine {
  ContractMachine();
  ~ContractMachine();

 private:
  // The adapters and what they stand on.
  struct Host;
  std::unique_ptr<Host> host_;

 public:
  Registry& registry;
  PrivateProfile& privateProfile;
  Files& files;
  MachineLocks& locks;
  Processes& processes;
  MessagePump& messagePump;
  MessageBoxes& messageBoxes;
  automation::Automation& automation;
  ProjectDatabases& projectDatabases;
  CodePage& codePage;

  /// An empty folder of the machine, without a final backslash; gone when the test ends.
  const std::string scratch;

  /// A key of the local-machine hive that the test may fill; gone when the test ends.
  const std::string scratchKey;
  void SetRegistryString(std::string_view valueName, std::string_view text);

  /// Sets or takes away the read-only attribute of a file.
  void SetReadOnly(std::string_view path, bool readOnly);

  /// Installs a program under `path`. Started by this test, it writes its arguments, each on a line of its own, into
  /// the file kProbeReport of the scratch folder, waits while the file kProbeHold stands there, and ends with the exit
  /// code that its first argument gives as "exit=N", else with 0.
  void InstallProbe(std::string_view path);
  static constexpr std::string_view kProbeReport = "probe.txt";
  static constexpr std::string_view kProbeHold = "probe.hold";
  /// The lines of the probe's report.
  std::vector<std::string> ProbeArguments();

  /// Offers a class to late binding while the test runs; gives its programmatic identifier.
  std::string Offer(std::function<automation::ObjectRef()> make);

  /// Shows a box, closes it as its user would and gives all the text that the user saw, caption included.
  std::string SeenInBox(std::string_view text, std::string_view caption, MessageBoxes::Icon icon);

  /// scratch, a backslash and the name.
  std::string Path(std::string_view name) const { return scratch + "\\" + std::string(name); }
};

/// Whether the platform is Wine instead of the Windows it stands for. What Wine cannot do is skipped there, by name and
/// with the reason.
bool RunsUnderWine();

/// Polls until the process has ended; fails the test after some seconds.
std::uint32_t WaitForExit(Process& process);

}  // namespace parvex::test
