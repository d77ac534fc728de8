#include "cli/doctor/component_checks.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "formats/router_ids/router_ids.h"
#include "formats/text/text.h"
#include "hybris/tag_stored_data.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "projects/project_properties.h"
#include "protocol/legacy_names.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

using State = Finding::State;
using Application = MachineLook::Application;
using Programs = MachineLook::Programs;

constexpr const char* kOfSubstitute = "the substitute's, which stands for the legacy application's";

Told Versioned(const MachineLook::Server& server) {
  return Told::Path(server.file) + Told::Words(server.version.empty() ? "" : " " + server.version);
}

std::string OtherBitness(const Patient& patient) { return patient.facts.bitness == 64 ? "32" : "64"; }

// The file of the program folder whose type library describes the router; empty when none does.
std::string RouterLibrary(const Platform& platform, const std::string& binPath) {
  constexpr std::size_t kMostFiles = 400;
  std::size_t looks = 0;
  for (const char* pattern : {"*.tlb", "*.dll", "*.exe", "*.ocx"}) {
    for (const std::string& name : platform.files->ListFiles(binPath + "\\" + pattern)) {
      const std::string path = binPath + (binPath.ends_with('\\') ? "" : "\\") + name;
      if (++looks > kMostFiles) {
        return {};
      }
      try {
        RouterIdsIn(path);
        return path;
      } catch (const std::exception&) {  // another one
      }
    }
  }
  return {};
}

Found FindRouterIds(const Patient& patient, const Cures& cures, const std::string& binPath) {
  const auto library = [&] {
    return patient.facts.runsWindowsPrograms && !binPath.empty() ? RouterLibrary(patient.platform, binPath) : "";
  };
  try {
    const auto [ids, place] = RouterIdsInForce(patient.settings);
    const bool areSubstitutes = AreSubstitutes(ids);
    const bool isWrong = areSubstitutes && patient.facts.runsWindowsPrograms;
    return {Told::Words("class " + ids.classId + ", interface " + ids.interfaceId + ", from " + place +
                        (areSubstitutes ? "; they are the substitute's" : "")),
            isWrong ? State::Warning : State::Ok, isWrong ? cures.SaveRouterIds(library()) : Cure()};
  } catch (const AutomationError& error) {
    return {ToldOf(error), State::Failure, cures.SaveRouterIds(library())};
  }
}

Found NobodyAnswers(const char* what, const Cures& cures) {
  return {Told("none: a folder of copied files has no ") + what, State::Failure, cures.LetSubstituteAnswer()};
}

// The class that the router is created by, as far as it is known.
std::string RouterClass(OwnSettings& settings) {
  try {
    return RouterIdsInForce(settings).ids.classId;
  } catch (const AutomationError&) {
    return {};
  }
}

std::optional<Found> SeenByTheOther(const Patient& patient, const Cures& cures, const std::string& id) {
  const auto other = patient.look.ServerOf(id, Programs::OfTheOther);
  if (!other) {
    return std::nullopt;
  }
  const std::string bits = OtherBitness(patient);
  return Found{Told::Words("registered for " + bits + "-bit programs only: ") + Versioned(*other), State::Failure,
               cures.AskTheOther("Hosts of " + bits + " bits can use it; this program has " +
                                 std::to_string(patient.facts.bitness) + ".")};
}

Found AskRouter(const Patient& patient, const Cures& cures) {
  const Application application = patient.look.WhoAnswers();
  if (application == Application::CopiedFiles && !patient.hasRecordedAnswers) {
    return NobodyAnswers("message router", cures);
  }
  const std::string classId = RouterClass(patient.settings);
  const auto server = application == Application::Installed && !classId.empty()
                          ? patient.look.ServerOf(classId, Programs::OfThisBitness)
                          : std::nullopt;
  Told who = patient.hasRecordedAnswers ? "; the answer is a recorded one" : "";
  if (server && !patient.hasRecordedAnswers) {
    who = Told("; ") + Versioned(*server);
  } else if (application == Application::Substitute && !patient.hasRecordedAnswers) {
    who = Told("; ") + kOfSubstitute;
  }
  try {
    LegacyLink link(patient.platform);
    const bool answers = !IsFailedReply(GetProjectList(link, xml::Document::New()));
    return {Told(answers ? "answers getProjectList" : "refuses getProjectList") + who,
            answers ? State::Ok : State::Failure};
  } catch (const AutomationError&) {
    if (!server && application == Application::Installed && !classId.empty()) {
      if (const auto other = SeenByTheOther(patient, cures, classId)) {
        return *other;
      }
    }
    throw;
  }
}

// Created they might open windows.
Found LookUp(const Patient& patient, const Cures& cures, const char* what, std::string_view programmaticId) {
  const Application application = patient.look.WhoAnswers();
  if (application == Application::CopiedFiles) {
    return NobodyAnswers(what, cures);
  }
  const std::string id(programmaticId);
  const auto server = patient.look.ServerOf(id, Programs::OfThisBitness);
  if (!server) {
    const auto other = SeenByTheOther(patient, cures, id);
    return other ? *other : Found{Told::Words("no component is registered as " + Quoted(id)), State::Failure};
  }
  if (application == Application::Substitute) {
    return {Told::Words(id) + ": " + kOfSubstitute};
  }
  return {Told::Words(id) + ": " + Versioned(*server) + (server->isThere ? "" : ", which does not exist"),
          server->isThere ? State::Ok : State::Failure};
}

Found LookUpReportServer(const Patient& patient, const Cures& cures) {
  Found found = LookUp(patient, cures, "report server", legacy::kReportServerClass);
  if (found.state != State::Ok) {
    return found;
  }
  const Found request = LookUp(patient, cures, "schedule request", legacy::kScheduleRequestClass);
  return request.state == State::Ok ? found : request;
}

// The first project that has a database.
std::optional<std::string> FindDatabaseFolder(const Platform& platform, const std::string& projects) {
  for (const std::string& project : platform.files->ListFolders(projects)) {
    const std::string folder = projects + "\\" + project;
    if (platform.files->IsFile(folder + "\\" + std::string(kProjectDatabase))) {
      return folder;
    }
  }
  return std::nullopt;
}

Told NameOf(const MachineLook::Engine& engine) {
  return Told::Words(engine.name + (engine.version.empty() ? "" : " " + engine.version)) +
         (engine.file.empty() ? Told() : Told(" (") + Told::Path(engine.file) + ")");
}

Found ReadDatabase(const Patient& patient, const std::string& projects) {
  ProjectDatabases& databases = *patient.platform.projectDatabases;
  const std::string name = "\\" + std::string(kProjectDatabase);
  if (const std::optional<std::string> folder = FindDatabaseFolder(patient.platform, projects)) {
    // What commands read of it.
    FindTagId(*databases.Open(*folder + name), "RTU47", "parvex-doctor");
    ReadProjectConfig(patient.platform, *folder);
    return {NameOf(patient.look.DatabaseEngine()) + " reads " + Told::Path(*folder + name)};
  }
  try {
    databases.Open(projects + "\\parvex-doctor" + name);
  } catch (const AutomationError& error) {
    if (error.RuntimeNumber() == static_cast<std::uint16_t>(RuntimeError::CannotCreateObject)) {
      throw;
    }
  }
  return {NameOf(patient.look.DatabaseEngine()) + ", with no project's database to try it on"};
}

Cure ForComponents(const Patient& patient, const Cures& cures) {
  return patient.look.WhoAnswers() == Application::Substitute ? cures.LetSubstituteBehave() : cures.Reinstall();
}

}  // namespace

std::vector<Finding> ExamineComponents(const Patient& patient, const Cures& cures, bool isFolderKnown,
                                       const std::string& binPath) {
  const Cure cure = ForComponents(patient, cures);
  const auto find = [&](const char* name, std::string_view id) {
    return Check(name, cure, [&] { return LookUp(patient, cures, name, id); });
  };
  return {
      Check("router identifiers", {}, [&] { return FindRouterIds(patient, cures, isFolderKnown ? binPath : ""); }),
      Check("router", RouterClass(patient.settings).empty() ? Cure{.hint = "Mend the router identifiers first."} : cure,
            [&] { return AskRouter(patient, cures); }),
      find("builder", legacy::kBuilderClass),
      Check("report server", cure, [&] { return LookUpReportServer(patient, cures); }),
      Check(
          "database engine",
          patient.facts.runsWindowsPrograms
              ? Cure{.hint = "A database that cannot be read has to be repaired. Without an engine, install the Access "
                             "database engine of this program's bitness; DAO 3.6 serves 32-bit programs."}
              : cures.Reinstall("A database that cannot be read has to be repaired."),
          [&] {
            const std::string projects =
                isFolderKnown ? GetProjectsFolder(patient.platform) : "C:\\" + std::string(kProjectsFolder);
            return ReadDatabase(patient, projects);
          }),
  };
}

}  // namespace parvex::cli
