#include "cli/doctor/machine_checks.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "cli/doctor/component_checks.h"
#include "cli/doctor/cures.h"
#include "cli/doctor/installation_checks.h"
#include "seams/xml.h"
#include "version.h"

namespace parvex::cli {
namespace {

using State = Finding::State;

Finding ExamineBitness(const Patient& patient) {
  const std::string other = patient.look.OtherProgram();
  const std::string bits = patient.facts.bitness == 64 ? "32" : "64";
  const Told toAsk = Told::Words("; for what " + bits + "-bit hosts see, ask ") + Told::Path(other);
  return {"bitness", State::Ok, Told::Words(patient.facts.program) + (other.empty() ? Told() : toAsk)};
}

Found ParseXml(const MachineLook::Engine& parser) {
  const xml::Document document = xml::Document::Parse("<a><b c='1'>text</b></a>");
  const xml::Node node = document.First("/a/b[@c='1']");
  const bool works = node && node.Text() == "text";
  const Told where = parser.file.empty() ? Told() : Told(" (") + Told::Path(parser.file) + ")";
  return {Told::Words(parser.name + (parser.version.empty() ? "" : " " + parser.version)) + where +
              (works ? "" : " does not find what it has read"),
          works ? State::Ok : State::Failure};
}

Found RoundTripCodePage(const Patient& patient) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  CodePage& codePage = *patient.platform.codePage;
  const bool keepsBytes = codePage.ToAnsi(codePage.FromAnsi(bytes)) == bytes;
  return {Told::Words(patient.facts.codePage) + (keepsBytes ? "" : " loses bytes on the way to text and back"),
          keepsBytes ? State::Ok : State::Failure};
}

Found TellRecording(const Patient& patient) {
  const auto settings = recording::SettingsInForce(patient.system, &patient.settings, patient.recordingAsked);
  if (!settings) {
    return {"off"};
  }
  return {Told("on, into ") + Told::Path(settings->folder) + Told::Words(" (" + settings->place + ")")};
}

}  // namespace

std::vector<Finding> ExamineMachine(const Patient& patient) {
  const Cures cures(patient.look, patient.facts.runsWindowsPrograms, patient.system.ThisProgram().program);
  std::vector<Finding> findings = {
      {"version", State::Ok, "parvex " PARVEX_VERSION},
      ExamineBitness(patient),
      Check("XML parser", {.hint = "Install MSXML 3, which belongs to Windows."},
            [&] { return ParseXml(patient.look.XmlParser()); }),
      Check("code page",
            {.hint = "Turn off UTF-8 as the system's code page: the legacy application's files are in the older one."},
            [&] { return RoundTripCodePage(patient); }),
      Check("recording", {}, [&] { return TellRecording(patient); }),
  };
  std::string binPath;
  findings.push_back(ExamineRegistryValue(patient, cures, binPath));
  const bool isFolderKnown = findings.back().state != State::Failure;
  if (isFolderKnown) {
    std::ranges::move(ExamineInstallation(patient, cures, binPath), std::back_inserter(findings));
  } else {
    findings.push_back({"folders and files", State::Unchecked, "not looked at without the program folder"});
  }
  std::ranges::move(ExamineComponents(patient, cures, isFolderKnown, binPath), std::back_inserter(findings));
  return findings;
}

}  // namespace parvex::cli
