#include "cli/commands/doctor_command.h"

#include <memory>
#include <string>
#include <vector>

#include "cli/doctor/examination_json.h"
#include "cli/doctor/examination_text.h"
#include "cli/doctor/machine_checks.h"
#include "cli/terminal/colours.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {

ExitStatus Doctor(const SessionOptions& sessionOptions, const DoctorOptions& options) {
  Session session(sessionOptions);
  const std::unique_ptr<HostSystem> system = ThisSystem();
  const parvex::Platform platform = session.Platform();
  const Patient patient = {platform,
                           session.Settings(),
                           *system,
                           session.Look(),
                           Host::Facts(),
                           sessionOptions.record,
                           !sessionOptions.replay.empty()};
  const std::vector<Finding> findings = ExamineMachine(patient);
  std::string text;
  if (options.json) {
    text = EscapedJson(AsJson(patient, findings));
  } else if (options.report) {
    text = AsReport(findings, patient.look.PrivateFolders());
  } else {
    text = AsTable(findings, TakesColours(stdout));
  }
  session.Close();
  WriteText(text);
  return CountOf(findings, Finding::State::Failure) > 0 ? kFailedReply : kReply;
}

}  // namespace parvex::cli
