#include "tests/cli/program.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "formats/text/text.h"
#include "tests/cli/reply_schema.h"

namespace parvex::test {
namespace {

// In the new process, until the program takes over: only what is allowed between fork and exec of one thread.
[[noreturn]] void Become(const std::vector<std::string>& arguments, const Surroundings& surroundings,
                         const std::filesystem::path& streams, const std::string& terminal) {
  const auto redirect = [&](const std::string& file, int flags, int descriptor) {
    const int opened = open(file.c_str(), flags, 0600);
    if (opened == -1 || dup2(opened, descriptor) == -1) {
      _exit(126);
    }
    close(opened);
  };
  redirect(streams / "in", O_RDONLY, STDIN_FILENO);
  redirect(streams / "err", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  if (surroundings.outputFile == "-") {
    close(STDOUT_FILENO);
  } else if (surroundings.outputFile == "|") {
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) == -1) {
      _exit(126);
    }
    close(ends[0]);
    close(ends[1]);
  } else {
    const std::string file = surroundings.outputFile.empty() ? (streams / "out").string() : surroundings.outputFile;
    redirect(file, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  }
  if (!terminal.empty()) {
    redirect(terminal, O_WRONLY | O_NOCTTY, STDOUT_FILENO);
    redirect(terminal, O_WRONLY | O_NOCTTY, STDERR_FILENO);
  }
  unsetenv("PARVEX_MACHINE");
  unsetenv("NO_COLOR");
  for (const auto& [name, value] : surroundings.environment) {
    setenv(name.c_str(), value.c_str(), 1);
  }
  if (!surroundings.folder.empty() && chdir(surroundings.folder.c_str()) != 0) {
    _exit(126);
  }
  std::vector<char*> argv = {const_cast<char*>(PARVEX_PROGRAM)};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  execv(PARVEX_PROGRAM, argv.data());
  _exit(127);
}

// Both ends of a terminal: the one that a program is given by its name, and ours.
class Terminal {
 public:
  Terminal() : ours_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (ours_ == -1 || grantpt(ours_) != 0 || unlockpt(ours_) != 0) {
      throw std::runtime_error("no terminal to be had");
    }
    name_ = ptsname(ours_);
    theirs_ = open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~Terminal() { close(ours_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  const std::string& Name() const { return name_; }

  /// Everything that is written until the last program has closed it.
  std::string ReadToEnd() {
    close(theirs_);
    std::string text;
    char block[4096];
    for (ssize_t count = 0; (count = read(ours_, block, sizeof block)) > 0;) {
      text.append(block, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int ours_;
  int theirs_ = -1;  // the new process has it too, and so the terminal is open from the start
  std::string name_;
};

/// Whether standard output is nothing but replies of the protocol.
bool PrintsReplies(const std::vector<std::string>& arguments) {
  const auto has = [&](const char* word) { return std::ranges::count(arguments, word) > 0; };
  const bool isAboutThem = has("--help") || has("help") || has("commands") || has("lint");
  return !isAboutThem && (has("pull") || has("pull-ngorla") || has("export"));
}

std::string EscapedForShell(const std::string& text) { return "'" + ReplaceAll(text, "'", "'\\''") + "'"; }

}  // namespace

Outcome RunParvex(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
  const TemporaryFolder streams;
  WriteHostFile(streams.Path() / "in", surroundings.input);
  std::optional<Terminal> terminal;
  if (surroundings.onTerminal) {
    terminal.emplace();
  }
  const std::string terminalName = terminal ? terminal->Name() : "";
  const pid_t child = fork();
  if (child == -1) {
    throw std::runtime_error("cannot fork");
  }
  if (child == 0) {
    Become(arguments, surroundings, streams.Path(), terminalName);
  }
  const std::string shown = terminal ? terminal->ReadToEnd() : "";
  int status = 0;
  if (waitpid(child, &status, 0) != child) {
    throw std::runtime_error("lost the program");
  }
  const Outcome outcome = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadHostFile(streams.Path() / "out"),
                           terminal ? shown : ReadHostFile(streams.Path() / "err")};
  if (PrintsReplies(arguments) && !outcome.out.empty()) {
    CheckReplies(arguments, outcome.out);
  }
  const auto output = std::ranges::find(arguments, "-o");
  const bool isNamed = arguments.end() - output > 1 && output[1] != "-" && !output[1].starts_with("/dev/");
  if (outcome.status == 0 && std::ranges::count(arguments, "export") > 0 && isNamed) {
    CheckReplies(arguments, ReadHostFile(surroundings.folder / output[1]));
  }
  return outcome;
}

CliMachine::CliMachine() {
  for (const char* name : {"Bin", "Temp", "Projects"}) {
    std::filesystem::create_directories(Installed(name, ""));
  }
  SetBinPath("C:\\Korvane\\TQ5-VX\\Bin\\");
}

std::string CliMachine::Write(const std::string& name, std::string_view bytes) const {
  WriteHostFile(Path(name), bytes);
  return Path(name);
}

std::vector<std::string> CliMachine::Lines(const std::string& name) const {
  std::istringstream text(Read(name));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::filesystem::path CliMachine::Installed(const std::string& folder, const std::string& name) const {
  return folder_.Path() / "machine" / "drive_c" / "Korvane" / "TQ5-VX" / folder / name;
}

void CliMachine::WriteRegistry(std::string_view bytes) const { WriteHostFile(Path("machine/registry.reg"), bytes); }

void CliMachine::SetBinPath(const std::string& binPath) const {
  WriteRegistry("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n\"BinPath\"=\"" +
                ReplaceAll(binPath, "\\", "\\\\") + "\"\r\n");
}

void CliMachine::SetProgram(const std::filesystem::path& program, const std::string& script) const {
  std::filesystem::create_directories(program.parent_path());
  WriteHostFile(program, "#!/bin/sh\nprintf '%s\\n' \"$@\" >>\"$PARVEX_MACHINE/../started\"\n" + script + "\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
}

Outcome CliMachine::Run(std::vector<std::string> arguments, const Surroundings& surroundings) const {
  arguments.insert(arguments.begin(), {"--machine", Folder()});
  return RunParvex(arguments, surroundings);
}

std::string CommandText(const std::string& name, const std::vector<std::pair<std::string, std::string>>& parameters) {
  std::string text = "<COMMAND><NAME>" + name + "</NAME>";
  for (const auto& [parameter, value] : parameters) {
    text += "<PARAMETER><NAME>" + parameter + "</NAME><VALUE>" + value + "</VALUE></PARAMETER>";
  }
  return text + "</COMMAND>";
}

std::string ExportCommand(const std::string& projectName) {
  return "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
         "<ProjectName>" +
         projectName + "</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>";
}

std::string WriteSelection(const std::string& text) {
  return "printf '%s' " + EscapedForShell(text) + " >\"$PARVEX_MACHINE/drive_c/Korvane/TQ5-VX/Temp/QBOutput.ini\"";
}

std::string FailedReply(const std::string& message) {
  return "<LegacyORLA><returnError>-1</returnError><errorMessage>" + message + "</errorMessage></LegacyORLA>\r\n";
}

}  // namespace parvex::test
