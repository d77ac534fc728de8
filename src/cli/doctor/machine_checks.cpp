#include "cli/doctor/machine_checks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <new>
#include <optional>

#include "formats/router_ids/router_ids.h"
#include "formats/text/text.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/ui_settings.h"
#include "projects/project_properties.h"
#include "protocol/legacy_names.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"
#include "seams/file_parts.h"

namespace parvex::cli {
namespace {

using State = Finding::State;

// What a check that did not throw has found.
struct Found {
  std::string detail;
  State state = State::Ok;
};

// A check that throws has failed for the reason that the error gives; the hint goes with everything that is not in
// order.
Finding Check(const std::string& name, const std::string& hint, const std::function<Found()>& check) {
  try {
    const Found found = check();
    return {name, found.state, found.detail, found.state == State::Ok ? "" : hint};
  } catch (const AutomationError& error) {
    return {name, State::Failure, error.Description(), hint};
  } catch (const std::bad_alloc&) {
    return {name, State::Failure, "what is looked at takes more memory than there is", hint};
  }
}

Found ParseXml(const HostFacts& facts) {
  const xml::Document document = xml::Document::Parse("<a><b c='1'>text</b></a>");
  const xml::Node node = document.First("/a/b[@c='1']");
  const bool works = node && node.Text() == "text";
  return {facts.xmlEngine + (works ? "" : " does not find what it has read"), works ? State::Ok : State::Failure};
}

Found RoundTripCodePage(const Platform& platform, const HostFacts& facts) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  const bool keepsBytes = platform.codePage->ToAnsi(platform.codePage->FromAnsi(bytes)) == bytes;
  return {facts.codePage + (keepsBytes ? "" : " loses bytes on the way to text and back"),
          keepsBytes ? State::Ok : State::Failure};
}

Found ReadProgramFolder(const Platform& platform, std::string& binPath) {
  if (!ReadBinPath(platform, binPath)) {
    return {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47 has no BinPath that can be read", State::Failure};
  }
  if (GetDesignRoot(platform).empty()) {
    return {binPath + " is too short to hold the folder TQ5-VX", State::Failure};
  }
  GetDataRoot(platform);  // an error for a path with too few folders
  const bool isAsInstalled = binPath.ends_with('\\');
  return {binPath + (isAsInstalled ? "" : " has no final backslash, so the data is looked for one folder higher"),
          isAsInstalled ? State::Ok : State::Warning};
}

Found FindFolder(const Platform& platform, const std::string& folder) {
  const bool exists = platform.files->IsFolder(folder);
  return {folder + (exists ? "" : " does not exist"), exists ? State::Ok : State::Failure};
}

Found WriteIntoFolder(const Platform& platform, const std::string& folder) {
  const Found found = FindFolder(platform, folder);
  if (found.state == State::Ok) {
    const std::string probe = folder + "\\parvex-doctor.tmp";
    platform.files->Replace(probe, "written by parvex doctor\r\n");
    platform.files->Remove(probe);
  }
  return found;
}

Found FindWorkflowProgram(const Platform& platform, const HostFacts& facts, const std::string& path) {
  // What is no file is refused as any reading of it is.
  const std::string begin =
      platform.files->IsFile(path) ? ReadPart(*platform.files, path, 0, 2) : platform.files->ReadAll(path);
  const bool isForWindows = begin == "MZ";
  if (isForWindows == facts.runsWindowsPrograms) {
    return {path};
  }
  return {path + (isForWindows ? " is a Windows program, which does not run here" : " is no Windows program"),
          State::Failure};
}

Found FindSettings(const Platform& platform, const std::string& path) {
  const std::size_t lines = CountUiLines(platform, path);
  const bool fits = lines <= kMostUiLines;
  return {path + (fits ? "" : " has " + std::to_string(lines) + " lines, more than can be changed"),
          fits ? State::Ok : State::Failure};
}

// One byte more than so much is not read.
std::string ReadBounded(const Platform& platform, const std::string& path) {
  constexpr std::size_t kMost = 8u << 20;
  std::string bytes = ReadPart(*platform.files, path, 0, kMost + 1);
  if (bytes.size() > kMost) {
    throw MakeFileError(RuntimeError::PathFileAccess, "read", path,
                        "it has more than " + std::to_string(kMost) + " bytes");
  }
  return bytes;
}

Found FindXml(const Platform& platform, const std::string& path) {
  const xml::Document document = xml::Document::Load(ReadBounded(platform, path));
  return {path + (document.IsEmpty() ? " does not parse: " + document.ParseError() : ""),
          document.IsEmpty() ? State::Failure : State::Ok};
}

Found FindRouterIds(OwnSettings& settings, const HostFacts& facts) {
  const auto [ids, place] = RouterIdsInForce(settings);
  const bool areSubstitutes = AreSubstitutes(ids);
  return {"class " + ids.classId + ", interface " + ids.interfaceId + ", from " + place +
              (areSubstitutes ? "; they are the substitute's" : ""),
          areSubstitutes && facts.runsWindowsPrograms ? State::Warning : State::Ok};
}

Found AskRouter(const Platform& platform) {
  LegacyLink link(platform);
  const bool answers = !IsFailedReply(GetProjectList(link, xml::Document::New()));
  return {answers ? "answers getProjectList" : "refuses getProjectList", answers ? State::Ok : State::Failure};
}

Found CreateComponent(const Platform& platform, std::string_view programmaticId) {
  platform.automation->Create(programmaticId);
  return {std::string(programmaticId)};
}

// The first project that has a database.
std::optional<std::string> FindDatabase(const Platform& platform, const std::string& projects) {
  for (const std::string& project : platform.files->ListFolders(projects)) {
    const std::string path = projects + "\\" + project + "\\project.mdb";
    if (platform.files->IsFile(path)) {
      return path;
    }
  }
  return std::nullopt;
}

Found ReadDatabase(const Platform& platform, const HostFacts& facts, const std::string& projects) {
  if (const std::optional<std::string> path = FindDatabase(platform, projects)) {
    platform.projectDatabases->Open(*path)->OpenRecordSet("SELECT * FROM Config");
    return {facts.databaseEngine + " reads " + *path};
  }
  try {
    platform.projectDatabases->Open(projects + "\\parvex-doctor\\project.mdb");
  } catch (const AutomationError& error) {
    if (error.RuntimeNumber() == static_cast<std::uint16_t>(RuntimeError::CannotCreateObject)) {
      throw;
    }
  }
  return {facts.databaseEngine + ", with no project's database to try it on"};
}

constexpr const char* kReinstall = "Install or repair the legacy application.";
constexpr const char* kBitnessHint =
    "Install or repair the legacy application. A component in a DLL is seen by programs of its own bitness only: try "
    "the 32-bit program.";

std::vector<Finding> ExamineInstallation(const Platform& platform, const HostFacts& facts, const std::string& binPath) {
  const std::string bin = binPath.ends_with('\\') ? binPath.substr(0, binPath.size() - 1) : binPath;
  const std::string root = GetDataRoot(platform);
  const auto inBin = [&bin](const char* name) { return bin + "\\" + name; };
  return {
      Check("program folder", "Give the user the right to write there; settings and options are kept in it.",
            [&] { return WriteIntoFolder(platform, bin); }),
      Check("temporary folder", "Make the folder, and give the user the right to write there.",
            [&] {
              const std::string folder = GetDesignTempFolder(platform);
              return WriteIntoFolder(platform, folder.substr(0, folder.size() - 1));
            }),
      Check("hand-over folder", "Make the folder, and give the user the right to write there.",
            [&] { return WriteIntoFolder(platform, root + "\\Temp"); }),
      Check("projects", kReinstall, [&] { return FindFolder(platform, root + "\\Projects"); }),
      Check("archives", "Make the folder; archived projects are kept in it.",
            [&] { return FindFolder(platform, root + "\\Archives"); }),
      Check("kdwfm470.exe",
            facts.runsWindowsPrograms
                ? kReinstall
                : "Exports need a quote builder that runs here; \"parvex machine create\" makes a "
                  "machine that has one.",
            [&] { return FindWorkflowProgram(platform, facts, inBin("kdwfm470.exe")); }),
      Check("UIKeys.txt", "Tags cannot be configured without it. Repair the legacy application.",
            [&] { return FindSettings(platform, inBin("UIKeys.txt")); }),
      Check("Options.xml", "Options cannot be read or set without it. Start the legacy application once.",
            [&] { return FindXml(platform, inBin("Options.xml")); }),
      Check("Tools.xml", "Tags are all listed as out of date without it. Repair the legacy application.",
            [&] { return FindXml(platform, inBin("Tools.xml")); }),
      Check("TagUpdateInfo.xml",
            "Requests to rename or copy a tag are sent with empty data without it. Repair the legacy application.",
            [&] { return FindXml(platform, inBin("TagUpdateInfo.xml")); }),
      Check("KDCustomRpt_Cfg.xml", "Custom reports are not offered without it. Repair the legacy application.",
            [&] { return FindXml(platform, inBin("KDCustomRpt_Cfg.xml")); }),
  };
}

}  // namespace

std::vector<Finding> ExamineMachine(const Platform& platform, OwnSettings& settings, const HostFacts& facts) {
  std::vector<Finding> findings = {
      {"bitness", State::Ok, facts.program, ""},
      Check("XML parser", "Install MSXML 3, which belongs to Windows.", [&] { return ParseXml(facts); }),
      Check("code page",
            "Turn off UTF-8 as the system's code page: the legacy application's files are in the older one.",
            [&] { return RoundTripCodePage(platform, facts); }),
  };
  std::string binPath;
  findings.push_back(Check("registry value",
                           "Install the legacy application, whose setup writes BinPath: the program folder, ending in "
                           "\\TQ5-VX\\Bin\\.",
                           [&] { return ReadProgramFolder(platform, binPath); }));
  const bool isFolderKnown = findings.back().state != State::Failure;
  if (isFolderKnown) {
    std::ranges::move(ExamineInstallation(platform, facts, binPath), std::back_inserter(findings));
  } else {
    findings.push_back({"folders and files", State::Unchecked, "not looked at without the program folder", ""});
  }
  findings.push_back(Check("router identifiers",
                           "Save those of the installed application: \"parvex router-ids FILE --save\", where FILE is "
                           "its component with the message router.",
                           [&] { return FindRouterIds(settings, facts); }));
  findings.push_back(Check("router", kBitnessHint, [&] { return AskRouter(platform); }));
  findings.push_back(Check("builder", kBitnessHint, [&] { return CreateComponent(platform, legacy::kBuilderClass); }));
  findings.push_back(
      Check("report server", kBitnessHint, [&] { return CreateComponent(platform, legacy::kReportServerClass); }));
  findings.push_back(Check("database engine",
                           "A database that cannot be read has to be repaired. Without an engine, install the Access "
                           "database engine of this program's bitness; DAO 3.6 serves 32-bit programs.",
                           [&] {
                             const std::string root = isFolderKnown ? GetDataRoot(platform) : "C:";
                             return ReadDatabase(platform, facts, root + "\\Projects");
                           }));
  return findings;
}

}  // namespace parvex::cli
