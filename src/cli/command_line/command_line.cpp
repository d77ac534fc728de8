#include "cli/command_line/command_line.h"

#include <algorithm>

#include "cli/command_line/bash_completion.h"
#include "cli/command_line/help_text.h"
#include "cli/command_line/manual_page.h"
#include "cli/commands/base64_command.h"
#include "cli/commands/case_command.h"
#include "cli/commands/case_run_command.h"
#include "cli/commands/pull_command.h"
#include "cli/commands/recording_command.h"
#include "cli/host/host.h"
#include "cli/reference/command_listing.h"
#include "cli/terminal/standard_streams.h"
#include "version.h"

namespace parvex::cli {
namespace {

constexpr const char* kExitStatusText =
    "Exit status: 0 a reply; 1 the last reply is a failed one; 2 wrong usage, nothing was sent; 3 a call failed.\n"
    "doctor ends with 1 when a check failed, show when two documents differ, lint when something is wrong.";

// A check of values, which help texts do not repeat.
CLI::Validator OneOf(std::vector<std::string> values) {
  return CLI::Validator(
      [values = std::move(values)](const std::string& value) {
        std::string list;
        for (const std::string& one : values) {
          list += (list.empty() ? "" : " or ") + one;
        }
        return std::ranges::find(values, value) != values.end() ? std::string()
                                                                : "is " + list + ", not \"" + value + "\"";
      },
      "");
}

}  // namespace

CommandLine::CommandLine()
    : app_("Lets commands of a newer front end work with the projects of an installed legacy selection application.",
           "parvex") {
  app_.set_version_flag("--version", "parvex " PARVEX_VERSION);
  app_.require_subcommand(1);
  app_.fallthrough();
  app_.allow_windows_style_options(false);  // the same command line on every platform
  app_.failure_message([](const CLI::App*, const CLI::Error& error) { return std::string(error.what()); });
  app_.footer(kExitStatusText);
  app_.add_option("--machine", session_.machine, "The folder that stands for the machine")
      ->type_name("DIR")
      ->envname("PARVEX_MACHINE");
  app_.add_option("--journal", session_.journal, "Write down everything that crosses to the outside")
      ->type_name("FILE");
  app_.add_option("--record", session_.record, "Record every call into this folder, a case each")->type_name("FOLDER");
  app_.add_option("--replay", session_.replay, "Answer router requests from such a journal")->type_name("FILE");

  AddSending();
  AddLint();
  AddExport();
  AddReturn();
  AddShow();
  AddOpen();
  AddDoctor();
  AddBase64();
  AddMachines();
  AddRouterIds();
  AddRecording();
  AddCases();
  AddReference();
  AddManuals();
}

void CommandLine::Parse(std::vector<std::string> arguments) {
  std::ranges::reverse(arguments);  // as the parser takes them
  app_.parse(std::move(arguments));
}

CLI::App* CommandLine::Add(CLI::App& parent, const std::string& name, const std::string& description, Action action) {
  CLI::App* command = parent.add_subcommand(name, description);
  command->callback([this, action = std::move(action)] { action_ = action; });
  return command;
}

void CommandLine::AddSending() {
  const auto add = [this](const std::string& name, const std::string& entryPoint, std::span<const CommandEntry> table,
                          Action action) {
    CLI::App* command =
        Add(app_, name, "Send command documents to one instance, through " + entryPoint, std::move(action));
    command->add_option("FILE", files_, "Command documents, sent in this order; - for standard input")
        ->required()
        ->type_name("");
    command->footer("Commands:\n" + ListCommands(table) + "\n" + kExitStatusText);
  };
  add("pull", "Pull", PullCommands(), [this] { return SendThroughPull(session_, files_); });
  add("pull-ngorla", "PullNGORLA", PullNgorlaCommands(), [this] { return SendThroughPullNgorla(session_, files_); });
}

void CommandLine::AddLint() {
  CLI::App* command = Add(app_, "lint", "Find out what is wrong with a command document before it is sent",
                          [this] { return LintFile(lint_); });
  command->add_option("FILE", lint_.file, "The command document; - for standard input")->required()->type_name("");
  command->add_option("--through", lint_.through, "How it will be sent")
      ->type_name("pull|pull-ngorla")
      ->check(OneOf({"pull", "pull-ngorla"}));
  command->add_flag("--json", lint_.json, "Write what was found as JSON");
}

void CommandLine::AddExport() {
  CLI::App* command = Add(app_, "export", "Export units of a project as a Hybris document",
                          [this] { return Export(session_, export_); });
  command->add_option("--project", export_.project, "The project's name")->required()->type_name("NAME");
  CLI::Option* tags = command->add_option("--tags", export_.tags, "Names of the tags to export; all when none is named")
                          ->type_name("NAME");
  command->add_option("--selection", export_.selection, "A file with the selection (UserSelectionTransfer) instead")
      ->type_name("FILE")
      ->excludes(tags);
  command->add_option("-o,--output", export_.output, "Where to write the document; standard output when not given")
      ->type_name("FILE");
  command->add_flag("--lenient", export_.lenient,
                    "Take whatever the quote builder left, though it is not what was asked for");
}

void CommandLine::AddReturn() {
  CLI::App* command = Add(app_, "return", "Bring a tag of a Hybris document back to the legacy application",
                          [this] { return Return(session_, return_); });
  command->add_option("FILE", return_.file, "The Hybris document; - for standard input")->required()->type_name("");
  command->add_option("--tag", return_.tag, "Which of several tags: its name, or its place from 1")->type_name("TAG");
  command->add_flag("--lenient", return_.lenient, "Bring back whatever the protocol makes of the tag's stored data");
}

void CommandLine::AddShow() {
  CLI::App* command = Add(app_, "show", "Show a Hybris document, or what differs between an earlier and a later one",
                          [this] { return Show(show_); });
  command->add_option("FILE", show_.file, "The Hybris document; - for standard input")->required()->type_name("");
  command->add_option("LATER", show_.later, "A later one, to be compared with it")->type_name("");
  CLI::Option* json = command->add_flag("--json", show_.json, "Write it as JSON, for other programs");
  command->add_option("--html", show_.html, "Write one page for a browser instead")->type_name("FILE")->excludes(json);
}

void CommandLine::AddOpen() {
  CLI::App* command = Add(app_, "open", "Tell what a file is and what is in it", [this] { return Open(open_); });
  command
      ->add_option("FILE", open_.file,
                   "A quote, stored data of a tag, an archive, a database, a journal, a case and so on; - for standard "
                   "input")
      ->required()
      ->type_name("");
  command->add_flag("--json", open_.json, "Write it as JSON");
}

void CommandLine::AddDoctor() {
  CLI::App* command = Add(app_, "doctor", "Find out whether the machine has everything that commands need",
                          [this] { return Doctor(session_, doctor_); });
  CLI::Option* json = command->add_flag("--json", doctor_.json, "Write what was found as JSON");
  command->add_flag("--report", doctor_.report, "Write text to send to others, without personal data")->excludes(json);
}

void CommandLine::AddRouterIds() {
  CLI::App* command =
      Add(app_, "router-ids", "Find the identifiers of the legacy application's message router, and save them",
          [this] { return TellRouterIds(session_, routerIds_); });
  command
      ->add_option("FILE", routerIds_.file,
                   "A type library, a program or DLL that has one in it, or what this command has written of one")
      ->required()
      ->type_name("");
  CLI::Option* save = command->add_flag("--save", routerIds_.save, "Save them in the registry, for the current user");
  command->add_flag("--machine-wide", routerIds_.machineWide, "Save them for all users")->needs(save);
}

void CommandLine::AddRecording() {
  CLI::App* recording = app_.add_subcommand("recording", "Record calls, to find out later why one failed");
  recording->require_subcommand(1);
  Add(*recording, "on", "Record every call of the current user, whatever program makes it",
      [this] { return TurnRecordingOn(session_, recordingFolder_); })
      ->add_option("FOLDER", recordingFolder_, "Where cases are kept; a folder of the user's own when none is named")
      ->type_name("");
  Add(*recording, "off", "Record no more", [this] { return TurnRecordingOff(session_); });
  Add(*recording, "status", "Say whether calls are recorded", [this] { return TellRecording(session_); });
}

void CommandLine::AddCases() {
  CLI::App* cases = app_.add_subcommand("case", "Recorded calls");
  cases->require_subcommand(1);
  const auto add = [&](const std::string& name, const std::string& description, Action action, std::string& file,
                       const char* what) {
    CLI::App* command = Add(*cases, name, description, std::move(action));
    command->add_option(&file == &caseFolder_ ? "FOLDER" : "FILE", file, what)->required()->type_name("");
    return command;
  };
  const char* aCase = "A case, or the folder of one that was never finished";
  add(
      "list", "List the cases of a folder", [this] { return ListCases(caseFolder_); }, caseFolder_, "The folder");
  CLI::App* show = add(
      "show", "Show what was asked, what happened and what came back", [this] { return ShowCase(showCase_); },
      showCase_.file, aCase);
  CLI::Option* json = show->add_flag("--json", showCase_.json, "Write it as JSON");
  show->add_option("--html", showCase_.html, "Write one page for a browser instead")->type_name("FILE")->excludes(json);
  add(
      "files", "List the files that a case holds", [this] { return ListCaseFiles(showCase_.file); }, showCase_.file,
      aCase);
  CLI::App* run = add(
      "run", "Do a recorded call again and compare; of a folder, all that it holds",
      [this] { return RunCases(runCases_); }, runCases_.file, "A case, or a folder of cases");
  run->add_option("--keep", runCases_.keep, "Keep the machine that the case is run on in this new folder")
      ->type_name("DIR");
  run->add_flag("--lenient", runCases_.lenient, "Let recorded steps pass that nobody asks for");
  CLI::App* mask = add(
      "mask", "Write a case with other names, descriptions and prices that reproduces as this one does",
      [this] { return MaskCase(maskCase_); }, maskCase_.file, aCase);
  mask->add_option("-o,--output", maskCase_.output, "The case to write")->required()->type_name("FILE");
  mask->add_option("--table", maskCase_.table, "Write what became what, for yourself only")->type_name("FILE");
  mask->add_flag("--keep-prices", maskCase_.keepPrices, "Leave prices as they are");
  add(
      "extract", "Write all that a case holds into a new folder",
      [this] { return ExtractCase(showCase_.file, extractTo_); }, showCase_.file, aCase)
      ->add_option("DIR", extractTo_, "The folder to make")
      ->required()
      ->type_name("");
}

void CommandLine::AddBase64() {
  CLI::App* base64 = app_.add_subcommand("base64", "Encode or decode Base64");
  base64->require_subcommand(1);
  const auto add = [&](const std::string& name, const std::string& description,
                       void (*carryOut)(const std::string& fileName)) {
    Add(*base64, name, description,
        [this, carryOut] {
          carryOut(base64File_);
          return kReply;
        })
        ->add_option("FILE", base64File_, "The file to read; standard input when none is named")
        ->type_name("");
  };
  add("encode", "Bytes to Base64 text, one line feed behind it", EncodeToOutput);
  add("decode", "Base64 text, read as it stands, to bytes", DecodeToOutput);
}

void CommandLine::AddMachines() {
  CLI::App* machine = app_.add_subcommand("machine", "Machine folders");
  machine->require_subcommand(1);
  Add(*machine, "create", "Make a sample machine with a substitute legacy application in it",
      [this] {
        CreateMachine(PathOf(newMachine_));
        return kReply;
      })
      ->add_option("DIR", newMachine_, "The folder to make")
      ->required();
}

void CommandLine::AddReference() {
  CLI::App* command = Add(app_, "commands", "Tell what commands each entry point serves, or all about one of them",
                          [this] { return TellCommands(reference_); });
  CLI::Option* name = command->add_option("COMMAND", reference_.command, "A command of the protocol")->type_name("");
  CLI::Option* json = command->add_flag("--json", reference_.json, "Write it, or all of them, as JSON");
  command->add_flag("--xml", reference_.xml, "Write a filled-in request, which runs on the sample machine")
      ->excludes(json);
  command->add_option("--schema", reference_.schema, "Write an XML schema: of requests, or of replies and quotes")
      ->type_name("requests|replies")
      ->check(OneOf({"requests", "replies"}))
      ->excludes(name)
      ->excludes(json);
}

void CommandLine::AddManuals() {
  const auto add = [this](const std::string& name, const std::string& description, std::function<std::string()> text) {
    return Add(app_, name, description, [text = std::move(text)] {
      WriteDocument(text());
      return kReply;
    });
  };
  add("help", "Print what a command takes", [this] { return HelpAbout(app_, helpTopic_); })
      ->add_option("SUBCOMMAND", helpTopic_, "The command")
      ->type_name("");
  add("completion", "Print a script that completes this command line in bash", [this] { return BashCompletion(app_); });
  add("manual", "Print the manual page, for man -l", [this] { return ManualPage(app_); });
}

}  // namespace parvex::cli
