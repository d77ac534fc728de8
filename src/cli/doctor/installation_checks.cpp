#include "cli/doctor/installation_checks.h"

#include <cstddef>
#include <memory>
#include <string_view>

#include "hybris/quote_builder_exchange.h"
#include "legacy_env/hand_over_lock.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/ui_settings.h"
#include "seams/automation_error.h"
#include "seams/file_parts.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

using State = Finding::State;

constexpr const char* kProbe = "\\parvex-doctor.tmp";

Found ReadProgramFolder(const Platform& platform, std::string& binPath) {
  if (!ReadBinPath(platform, binPath)) {
    return {Told::Words("HKEY_LOCAL_MACHINE\\" + std::string(kInstallationKey) + " has no " +
                        std::string(kProgramFolderValue) + " that can be read"),
            State::Failure};
  }
  if (GetDesignRoot(platform).empty()) {
    return {Told::Path(binPath) + " is too short to hold the folder TQ5-VX", State::Failure};
  }
  GetDataRoot(platform);  // an error for a path with too few folders
  if (!binPath.ends_with('\\')) {
    return {Told::Path(binPath) + " has no final backslash, so the data is looked for one folder higher",
            State::Warning,
            {.hint = "Put a backslash at the end of " + std::string(kProgramFolderValue) + "."}};
  }
  return {Told::Path(binPath)};
}

Found FindFolder(const Platform& platform, const std::string& folder) {
  const bool exists = platform.files->IsFolder(folder);
  return {Told::Path(folder) + (exists ? "" : " does not exist"), exists ? State::Ok : State::Failure};
}

Finding ExamineWriting(const Patient& patient, const std::string& name, const Cure& missing, const Cures& cures,
                       const std::string& folder) {
  const Platform& platform = patient.platform;
  const std::string probe = folder + kProbe;
  Cure cure = missing;
  if (platform.files->IsFolder(folder)) {
    cure = platform.files->IsFolder(probe) ? cures.RemoveFolder(probe) : cures.AllowWriting(folder);
  }
  return Check(name, cure, [&] {
    const Found found = FindFolder(platform, folder);
    if (found.state == State::Ok) {
      platform.files->Replace(probe, "written by parvex doctor\r\n");
      platform.files->Remove(probe);
    }
    return found;
  });
}

// The lock is held for an instant, which who waits for it does not notice.
Found FindHolder(const Platform& platform, const Cures& cures, const std::string& folder) {
  MachineLocks::Holder holder;
  if (platform.locks->TryTake(folder, false, holder)) {
    return {"nobody holds the hand-over files"};
  }
  MachineLocks::Holder shared = holder;
  shared.program.clear();
  return {Told::Foreign(NameOf(holder), NameOf(shared)) + " holds the hand-over files" +
              (holder.waitsForUser ? ", and waits for its user" : ""),
          State::Warning, cures.EndProcess(holder.processId)};
}

Found FindWorkflowProgram(const Patient& patient, const Cures& cures, const std::string& path) {
  Files& files = *patient.platform.files;
  if (!files.IsFile(path)) {
    files.ReadAll(path);  // refused as any reading of it is
  }
  const MachineLook::StartRefusal refusal = patient.look.WhyNotStarted(path);
  if (refusal.why.empty()) {
    return {Told::Path(path)};
  }
  return {Told::Path(path) + Told::Words(refusal.why), State::Failure,
          refusal.lacksRightOnly ? cures.MakeRunnable(path) : Cure()};
}

Found FindSettings(const Platform& platform, const std::string& path) {
  const std::size_t lines = CountUiLines(platform, path);
  if (lines <= kMostUiLines) {
    return {Told::Path(path)};
  }
  return {Told::Path(path) + Told::Words(" has " + std::to_string(lines) + " lines, more than can be changed"),
          State::Failure,
          {.hint = "Take lines out of it: more than " + std::to_string(kMostUiLines) + " cannot be changed."}};
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
  if (!document.IsEmpty()) {
    return {Told::Path(path)};
  }
  return {Told::Path(path) + " does not parse" + Told::Foreign(": " + document.ParseError(), ""), State::Failure};
}

struct XmlFile {
  std::string_view name;
  const char* without;  ///< what happens without it
};

constexpr XmlFile kXmlFiles[] = {
    {kOptionsFile, "Options cannot be read or set without it."},
    {kToolsFile, "Tags are all listed as out of date without it."},
    {kTagUpdateInfoFile, "Requests to rename or copy a tag are sent with empty data without it."},
    {kCustomReportsFile, "Custom reports are not offered without it."},
};

std::vector<Finding> ExamineFolders(const Patient& patient, const Cures& cures, const std::string& bin,
                                    const std::string& binPath) {
  const Platform& platform = patient.platform;
  const std::string ended = GetDesignTempFolder(platform);
  const std::string temporary = ended.substr(0, ended.size() - 1);
  const std::string handOver = FolderOfOutput(binPath);
  const std::string projects = GetProjectsFolder(platform);
  const std::string archives = GetArchivesFolder(platform);
  const auto make = [&](const std::string& folder) {
    return cures.MakeFolder(folder, "Make the folder, and give the user the right to write there.");
  };
  return {
      ExamineWriting(patient, "program folder", cures.Reinstall(), cures, bin),
      ExamineWriting(patient, "temporary folder", make(temporary), cures, temporary),
      ExamineWriting(patient, "hand-over folder", make(handOver), cures, handOver),
      Check("hand-over lock", {.hint = "Give the user the right to write into the hand-over folder."},
            [&] { return FindHolder(platform, cures, handOver); }),
      Check("projects", cures.Reinstall(), [&] { return FindFolder(platform, projects); }),
      Check("archives", cures.MakeFolder(archives, "Make the folder; archived projects are kept in it."),
            [&] { return FindFolder(platform, archives); }),
  };
}

}  // namespace

Finding ExamineRegistryValue(const Patient& patient, const Cures& cures, std::string& binPath) {
  return Check("registry value",
               cures.Reinstall("The legacy application's setup writes " + std::string(kProgramFolderValue) +
                               ": the program folder, ending in \\TQ5-VX\\Bin\\."),
               [&] { return ReadProgramFolder(patient.platform, binPath); });
}

std::vector<Finding> ExamineInstallation(const Patient& patient, const Cures& cures, const std::string& binPath) {
  const Platform& platform = patient.platform;
  const std::string bin = binPath.ends_with('\\') ? binPath.substr(0, binPath.size() - 1) : binPath;
  const auto inBin = [&bin](std::string_view name) { return bin + "\\" + std::string(name); };
  std::vector<Finding> findings = ExamineFolders(patient, cures, bin, binPath);
  findings.push_back(Check(std::string(kWorkflowProgram), cures.ReplaceWorkflow(inBin(kWorkflowProgram)),
                           [&] { return FindWorkflowProgram(patient, cures, inBin(kWorkflowProgram)); }));
  findings.push_back(Check(std::string(kUiKeysFile), cures.Reinstall("Tags cannot be configured without it."),
                           [&] { return FindSettings(platform, inBin(kUiKeysFile)); }));
  for (const XmlFile& file : kXmlFiles) {
    findings.push_back(Check(std::string(file.name), cures.Reinstall(file.without),
                             [&] { return FindXml(platform, inBin(file.name)); }));
  }
  return findings;
}

}  // namespace parvex::cli
