#include "hybris/run_findings.h"

#include <set>
#include <string_view>
#include <utility>

#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "hybris/blob_folder.h"
#include "hybris/selected_items.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::size_t kLongestName = 255;

template <typename Check>
void Checked(const Platform& platform, Check check) {
  if (platform.notes == nullptr) {
    return;
  }
  try {
    check(*platform.notes);
  } catch (const AutomationError& error) {
    platform.notes->Find("the run cannot be checked: " + error.Description());
  }
}

std::string EndOf(std::int32_t exitCode) {
  constexpr std::uint32_t kRunnersNumbers = 0xFFFF0000u;
  const auto code = static_cast<std::uint32_t>(exitCode);
  if ((code & kRunnersNumbers) == kObjectErrorBase) {
    return "the quote builder was not started (error " + std::to_string(code & ~kRunnersNumbers) + ")";
  }
  return "the quote builder ended with code " + std::to_string(exitCode);
}

// The project in whose folder a blob lies; empty for one that lies elsewhere.
std::string ProjectOf(std::string_view blob, std::string_view projectsFolder) {
  const std::string below = FoldPath(projectsFolder) + "\\";
  const std::string path = FoldPath(blob);
  if (!path.starts_with(below)) {
    return {};
  }
  const std::string_view rest = std::string_view(path).substr(below.size());
  return std::string(rest.substr(0, rest.find('\\')));
}

void CheckProject(const Platform& platform, Notes& notes, const QuoteBuilderRun& run,
                  const std::vector<SelectedTag>& tags, const std::string& asked) {
  const std::string named =
      platform.privateProfile->Section("Header", run.outputFile)->ReadString("ProjectName", "", kLongestName);
  if (!named.empty() && !IsSameName(named, asked)) {
    notes.Find("the quote builder's output is of the project " + Quoted(named) + ", not of " + Quoted(asked));
    return;
  }
  // The folder above Temp. Where the thread keeps the data root from is not asked: a check must not settle it.
  const std::string_view temp = FolderOf(FolderOf(run.outputFile).substr(0, FolderOf(run.outputFile).size() - 1));
  const std::string projects = std::string(temp) + "Projects";
  for (const SelectedTag& tag : tags) {
    const std::string project = ProjectOf(tag.blobFileName, projects);
    if (!project.empty() && "\\" + project != FoldPath(asked)) {
      notes.Find("the stored data of the tag " + Quoted(tag.markFor) +
                 " are of another project: " + Quoted(tag.blobFileName));
    }
  }
}

void CheckTags(Notes& notes, const std::vector<SelectedTag>& tags, const std::vector<std::string>& asked) {
  const std::set<std::string> wanted(asked.begin(), asked.end());
  std::set<std::pair<std::string, std::string>> seen;
  std::set<std::string> names;
  for (const SelectedTag& tag : tags) {
    names.insert(tag.markFor);
    if (!seen.emplace(tag.pdsg, tag.markFor).second) {
      notes.Find("the quote builder's output has the tag " + Quoted(tag.markFor) + " twice");
    }
    if (!wanted.empty() && !wanted.contains(tag.markFor)) {
      notes.Find("the quote builder's output has the tag " + Quoted(tag.markFor) + ", which was not asked for");
    }
  }
  for (const std::string& name : wanted) {
    if (!names.contains(name)) {
      notes.Find("the quote builder's output lacks the tag " + Quoted(name));
    }
  }
  if (tags.empty()) {
    notes.Find("the quote builder's output has no tag");
  }
}

}  // namespace

AskedSelection AskedFor(const xml::Document& command, const std::string& projectName) {
  AskedSelection asked = {projectName, {}};
  for (const xml::Node& name : command.All("//UserSelectionTransfer/TagNames/TagName")) {
    asked.tagNames.push_back(name.Text());
  }
  return asked;
}

std::optional<std::string> OutputBefore(const Platform& platform, const std::string& binPath) {
  std::optional<std::string> before;
  Checked(platform, [&](Notes&) { before = platform.files->ReadIfFile(FolderOfOutput(binPath) + "\\QBOutput.ini"); });
  return before;
}

void CheckRun(const Platform& platform, const QuoteBuilderRun& run, const std::optional<std::string>& before) {
  Checked(platform, [&](Notes& notes) {
    if (run.exitCode != 0) {
      notes.Find(EndOf(run.exitCode));
    }
    if (!platform.files->IsFile(run.outputFile)) {
      notes.Find("the quote builder left no output in " + Quoted(run.outputFile));
    } else if (before && before == platform.files->ReadIfFile(run.outputFile)) {
      notes.Find("the output in " + Quoted(run.outputFile) + " is what was there before the run");
    }
  });
}

void CheckSelection(const Platform& platform, const QuoteBuilderRun& run, const AskedSelection& asked) {
  Checked(platform, [&](Notes& notes) {
    if (!run.ok || !platform.files->IsFile(run.outputFile)) {
      return;
    }
    const std::vector<SelectedTag> tags = ReadSelectedTags(platform, run.outputFile);
    CheckProject(platform, notes, run, tags, asked.projectName);
    CheckTags(notes, tags, asked.tagNames);
  });
}

}  // namespace parvex
