#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>

#include "cli/base64_command.h"
#include "cli/commands_listing.h"
#include "cli/exit_status.h"
#include "cli/host.h"
#include "cli/pull_command.h"
#include "cli/standard_streams.h"
#include "platform/automation_error.h"
#include "version.h"

namespace parvex::cli {
namespace {

constexpr const char* kExitStatusText =
    "Exit status: 0 a reply; 1 the last reply is a failed one; 2 wrong usage, nothing was sent; 3 a call failed.";

// The command line: what can be given, and what was.
struct CommandLine {
  CommandLine();

  PullOptions options;
  std::string base64File = "-";
  std::string newMachine;

  CLI::App app{
      "Lets commands of a newer front end work with the projects of an installed legacy selection application.",
      "parvex"};
  CLI::App* pull = nullptr;
  CLI::App* pullNgorla = nullptr;
  CLI::App* encode = nullptr;
  CLI::App* decode = nullptr;
  CLI::App* createMachine = nullptr;
  CLI::App* commands = nullptr;

 private:
  CLI::App* AddPull(const std::string& name, const std::string& entryPoint, std::span<const CommandEntry> table);
  CLI::App* AddBase64(CLI::App& base64, const std::string& name, const std::string& description);
};

CommandLine::CommandLine() {
  app.set_version_flag("--version", "parvex " PARVEX_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  app.allow_windows_style_options(false);  // the same command line on every platform
  app.footer(kExitStatusText);
  app.add_option("--machine", options.machine, "The folder that stands for the machine")
      ->type_name("DIR")
      ->envname("PARVEX_MACHINE");
  app.add_option("--journal", options.journal, "Write down everything that crosses to the outside")->type_name("FILE");
  app.add_option("--replay", options.replay, "Answer router requests from such a journal")->type_name("FILE");

  pull = AddPull("pull", "Pull", PullCommands());
  pullNgorla = AddPull("pull-ngorla", "PullNGORLA", PullNgorlaCommands());

  CLI::App* base64 = app.add_subcommand("base64", "Encode or decode Base64");
  base64->require_subcommand(1);
  encode = AddBase64(*base64, "encode", "Bytes to Base64 text, one line feed behind it");
  decode = AddBase64(*base64, "decode", "Base64 text, read as it stands, to bytes");

  CLI::App* machine = app.add_subcommand("machine", "Machine folders");
  machine->require_subcommand(1);
  createMachine = machine->add_subcommand("create", "Make a sample machine with a substitute legacy application in it");
  createMachine->add_option("DIR", newMachine, "The folder to make")->required();

  commands = app.add_subcommand("commands", "List the commands that each entry point serves");
}

CLI::App* CommandLine::AddPull(const std::string& name, const std::string& entryPoint,
                               std::span<const CommandEntry> table) {
  CLI::App* command = app.add_subcommand(name, "Send command documents to one instance, through " + entryPoint);
  command->add_option("FILE", options.files, "Command documents, sent in this order; - for standard input")
      ->required()
      ->type_name("");
  command->footer("Commands:\n" + ListCommands(table) + "\n" + kExitStatusText);
  return command;
}

CLI::App* CommandLine::AddBase64(CLI::App& base64, const std::string& name, const std::string& description) {
  CLI::App* command = base64.add_subcommand(name, description);
  command->add_option("FILE", base64File, "The file to read; standard input when none is named")->type_name("");
  return command;
}

ExitStatus Run(std::vector<std::string> arguments) {
  CommandLine line;
  try {
    std::ranges::reverse(arguments);  // as the parser takes them
    line.app.parse(std::move(arguments));
  } catch (const CLI::ParseError& end) {
    std::ostringstream out;
    std::ostringstream err;
    const bool isAnswer = line.app.exit(end, out, err) == 0;  // --help, --version
    WriteOutput(out.str());
    std::fputs(err.str().c_str(), stderr);
    return isAnswer ? kReply : kWrongUsage;
  }
  if (line.pull->parsed()) {
    return SendThroughPull(line.options);
  }
  if (line.pullNgorla->parsed()) {
    return SendThroughPullNgorla(line.options);
  }
  if (line.encode->parsed()) {
    EncodeToOutput(line.base64File);
  } else if (line.decode->parsed()) {
    DecodeToOutput(line.base64File);
  } else if (line.createMachine->parsed()) {
    CreateMachine(PathOf(line.newMachine));
  } else {
    WriteOutput(ListEntryPoints());
  }
  return kReply;
}

}  // namespace
}  // namespace parvex::cli

int main(int argc, char** argv) {
  using namespace parvex::cli;
  try {
    PrepareStandardStreams();
    return Run(ProgramArguments(argc, argv));
  } catch (const UsageError& error) {
    std::fprintf(stderr, "parvex: %s\n", error.what());
    return kWrongUsage;
  } catch (const parvex::AutomationError& error) {
    ReportError("", error);
    return kFailedCall;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "parvex: %s\n", error.what());
    return kFailedCall;
  }
}
