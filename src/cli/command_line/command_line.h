#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "cli/commands/case_command.h"
#include "cli/commands/case_run_command.h"
#include "cli/commands/doctor_command.h"
#include "cli/commands/export_command.h"
#include "cli/commands/lint_command.h"
#include "cli/commands/mask_command.h"
#include "cli/commands/open_command.h"
#include "cli/commands/reference_command.h"
#include "cli/commands/return_command.h"
#include "cli/commands/router_ids_command.h"
#include "cli/commands/show_command.h"
#include "cli/host/exit_status.h"
#include "cli/session/session.h"
#include "interface/command_table.h"

namespace parvex::cli {

/// The command line of the program: what can be given, what was, and what is to be done about it.
class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Reads the arguments; a CLI::ParseError for wrong ones and for those that only ask (--help, --version).
  void Parse(std::vector<std::string> arguments);
  /// Does what the arguments that were read say.
  ExitStatus CarryOut() const { return action_(); }

  CLI::App& App() { return app_; }

 private:
  using Action = std::function<ExitStatus()>;
  /// A command of the program; `action` is what it does.
  CLI::App* Add(CLI::App& parent, const std::string& name, const std::string& description, Action action);
  void AddSending();
  void AddLint();
  void AddExport();
  void AddReturn();
  void AddShow();
  void AddOpen();
  void AddDoctor();
  void AddRouterIds();
  void AddRecording();
  void AddCases();
  void AddBase64();
  void AddMachines();
  void AddReference();
  /// Commands that write down what the command line offers.
  void AddManuals();

  SessionOptions session_;
  std::vector<std::string> files_;
  ExportOptions export_;
  ReturnOptions return_;
  ShowOptions show_;
  DoctorOptions doctor_;
  OpenOptions open_;
  std::string base64File_ = "-";
  std::string newMachine_;
  RouterIdsOptions routerIds_;
  std::string recordingFolder_;
  std::string caseFolder_;
  ShowCaseOptions showCase_;
  RunCaseOptions runCases_;
  MaskCaseOptions maskCase_;
  std::string extractTo_;
  ReferenceOptions reference_;
  LintOptions lint_;
  std::vector<std::string> helpTopic_;

  Action action_;
  CLI::App app_;
};

}  // namespace parvex::cli
