// kdwfm470: the workflow program of the substitute legacy application. It is started from the program folder of a
// machine (...\Korvane\TQ5-VX\Bin) and finds the other folders from there.

#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include "formats/text/terminal_text.h"
#include "legacy_standin/workflow/program/place.h"
#include "seams/automation_error.h"

namespace {

// What is told may hold names from files: nothing in them controls a terminal.
void Tell(const std::string& message) { std::fprintf(stderr, "kdwfm470: %s\n", parvex::TerminalLine(message).c_str()); }

int Run(const std::vector<std::string>& arguments) {
  std::optional<parvex::standin::WorkflowPlace> place;
  try {
    place.emplace();
  } catch (const parvex::AutomationError& error) {
    Tell(error.what());
    return parvex::standin::kWorkflowWrongUsage;
  }
  const parvex::standin::WorkflowResult result =
      parvex::standin::RunWorkflow(place->Machine(), place->Root(), arguments, place->Settings().workflow);
  if (!result.message.empty()) {
    Tell(result.message);
  }
  return result.exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(parvex::standin::WorkflowArguments(argc, argv));
  } catch (const std::exception& error) {
    Tell(error.what());
    return parvex::standin::kWorkflowNoOutput;
  }
}
