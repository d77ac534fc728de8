#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/fake_platform.h"

namespace parvex::test {

/// How a run of the program ended, and what it wrote.
struct Outcome {
  int status = -1;  ///< exit status; -1 when it was ended by a signal
  std::string out;
  std::string err;
};

/// What a run finds around it.
struct Surroundings {
  std::string input = {};  ///< on standard input
  /// Added to the test's own, from which PARVEX_MACHINE is taken out.
  std::map<std::string, std::string> environment = {};
  /// Standard output goes to this file of the system instead of into the outcome; "-" stands for a closed descriptor,
  /// "|" for a pipe whose reader went away.
  std::string outputFile = {};
  std::filesystem::path folder = {};  ///< the current folder; the test's own when empty
  /// Standard output and standard error are a terminal. What is written there stands in `err` of the outcome, each line
  /// ended by CR LF as a terminal gets it.
  bool onTerminal = false;
};

/// Runs parvex to its end.
Outcome RunParvex(const std::vector<std::string>& arguments, const Surroundings& surroundings = {});

/// A machine folder with an installed legacy application whose workflow program is up to the test, and a folder for
/// everything else, both removed at the end.
class CliMachine {
 public:
  CliMachine();

  std::string Folder() const { return Path("machine"); }
  /// The path of a file beside the machine folder.
  std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }
  /// Writes such a file and gives its path.
  std::string Write(const std::string& name, std::string_view bytes) const;
  std::string Read(const std::string& name) const { return ReadHostFile(Path(name)); }
  bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }
  /// The JSON lines of such a file.
  std::vector<std::string> Lines(const std::string& name) const;

  /// The path of a file in the program folder or another folder of the installation ("Bin", "Temp", "Projects").
  std::filesystem::path Installed(const std::string& folder, const std::string& name) const;
  void WriteRegistry(std::string_view bytes) const;
  /// Writes a registry whose BinPath this is, in bytes of the code page.
  void SetBinPath(const std::string& binPath) const;

  /// Makes kdwfm470.exe of the program folder, or another file, this script of the shell. It leaves its arguments in
  /// "started", which tells that it ran.
  void SetWorkflow(const std::string& script) const { SetProgram(Installed("Bin", "kdwfm470.exe"), script); }
  void SetProgram(const std::filesystem::path& program, const std::string& script) const;
  bool WorkflowRan() const { return Exists("started"); }

  /// Runs parvex on this machine: --machine FOLDER before the arguments.
  Outcome Run(std::vector<std::string> arguments, const Surroundings& surroundings = {}) const;
  Outcome PullNgorla(const std::string& fileName) const { return Run({"pull-ngorla", fileName}); }

 private:
  TemporaryFolder folder_;
};

/// A command document with these parameters; their values are markup.
std::string CommandText(const std::string& name,
                        const std::vector<std::pair<std::string, std::string>>& parameters = {});

/// A getHybrisXMLNoUI command that selects nothing in the project of this name.
std::string ExportCommand(const std::string& projectName = "P");

/// A script line that writes text as QBOutput.ini.
std::string WriteSelection(const std::string& text);

/// The reply of a failed command with this message, as the program prints it.
std::string FailedReply(const std::string& message = "Unrecognized or Failed Command");

}  // namespace parvex::test
