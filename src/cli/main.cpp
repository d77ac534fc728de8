#include <exception>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command_line/command_line.h"
#include "cli/command_line/help_text.h"
#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

ExitStatus Run(const std::vector<std::string>& arguments) {
  CommandLine line;
  try {
    line.Parse(arguments);
  } catch (const CLI::ParseError& end) {
    std::ostringstream out;
    std::ostringstream err;
    const bool isAnswer = line.App().exit(end, out, err) == 0;  // --help, --version
    if (!isAnswer) {
      const Misuse misuse = ExplainMisuse(line.App(), arguments, end.what());
      TellError(misuse.text);
      TellError("run \"" + misuse.help + "\" for more information");
      return kWrongUsage;
    }
    WriteText(out.str());
    return kReply;
  }
  return line.CarryOut();
}

}  // namespace
}  // namespace parvex::cli

int main(int argc, char** argv) {
  using namespace parvex::cli;
  try {
    PrepareStandardStreams();
    const std::shared_ptr<void> platform = EnterPlatform();
    return Run(ProgramArguments(argc, argv));
  } catch (const UsageError& error) {
    TellError(error.what());
    return kWrongUsage;
  } catch (const parvex::AutomationError& error) {
    ReportError("", error);
    return kFailedCall;
  } catch (const std::exception& error) {
    TellError(error.what());
    return kFailedCall;
  }
}
