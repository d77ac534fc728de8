#pragma once

#include <string>
#include <string_view>

#include "cli/doctor/finding.h"
#include "cli/host/machine_look.h"
#include "formats/router_ids/router_ids.h"

namespace parvex::cli {

/// What is to be done on one machine, with commands of its system: of the command prompt on Windows, else of the shell.
class Cures {
 public:
  /// `program` is the path of this program.
  Cures(MachineLook& look, bool isWindows, std::string program)
      : look_(look), isWindows_(isWindows), program_(std::move(program)) {}

  /// For what the legacy application's setup brings.
  Cure Reinstall(const std::string& why = {}) const;
  /// Paths are the machine's.
  Cure MakeFolder(const std::string& folder, const std::string& what) const;
  Cure AllowWriting(const std::string& folder) const;
  Cure RemoveFolder(const std::string& folder) const;
  Cure ReplaceWorkflow(const std::string& program) const;
  Cure MakeRunnable(const std::string& program) const;
  Cure EndProcess(std::uint32_t processId) const;
  /// For a machine folder without components.
  Cure LetSubstituteAnswer() const;
  /// For a substitute that is told to misbehave.
  Cure LetSubstituteBehave() const;
  /// `library` is the file that has the router's ids; empty where none was found.
  Cure SaveRouterIds(const std::string& library) const;
  /// For what programs of the other bitness see.
  Cure AskTheOther(const std::string& why) const;

 private:
  /// A text as one argument, quoted where it has to be.
  std::string Argument(std::string_view text) const;
  std::string Own(const std::string& path) const { return Argument(look_.OwnPath(path)); }
  std::string ResetCommand() const;

  MachineLook& look_;
  bool isWindows_;
  std::string program_;
};

}  // namespace parvex::cli
