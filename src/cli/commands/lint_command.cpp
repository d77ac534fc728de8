#include "cli/commands/lint_command.h"

#include <nlohmann/json.hpp>

#include "cli/lint/command_lint.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {
namespace {

std::string LintAsText(const LintResult& result, const std::string& file) {
  std::string text;
  for (const LintFinding& finding : result.findings) {
    text += Printable(file) + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) + ": " +
            Printable(finding.text) + "\n";
  }
  return text.empty() ? Printable(file) + ": nothing is wrong; " + Printable(result.command) + " is served by " +
                            result.entryPoints + "\n"
                      : text;
}

std::string LintAsJson(const LintResult& result, const std::string& file) {
  nlohmann::ordered_json findings = nlohmann::ordered_json::array();
  for (const LintFinding& finding : result.findings) {
    findings.push_back(
        {{"line", finding.line}, {"column", finding.column}, {"kind", finding.kind}, {"text", finding.text}});
  }
  const nlohmann::ordered_json all = {{"file", file}, {"command", result.command}, {"findings", findings}};
  return all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

ExitStatus LintFile(const LintOptions& options) {
  const EntryPoint through = options.through == "pull"          ? EntryPoint::Pull
                             : options.through == "pull-ngorla" ? EntryPoint::PullNgorla
                                                                : EntryPoint::Any;
  const LintResult result = LintCommand(ReadInput(options.file), through);
  WriteText(options.json ? EscapedJson(LintAsJson(result, options.file)) : LintAsText(result, options.file));
  return result.findings.empty() ? kReply : kFailedReply;
}

}  // namespace parvex::cli
