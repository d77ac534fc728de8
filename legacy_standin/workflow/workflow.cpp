#include "legacy_standin/workflow/workflow.h"

#include <exception>
#include <stdexcept>
#include <vector>

#include "formats/text/text.h"
#include "formats/zip/zip_writer.h"
#include "legacy_standin/projects/units.h"
#include "legacy_standin/workflow/selection_file.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

/// Why no selection can be handed over; the text is for people.
struct NothingSelected : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Selection {
  std::string projectName;
  std::vector<Unit> units;
};

/// One run over the folders of an installed application.
class Run {
 public:
  Run(const WorkflowMachine& machine, std::string_view root) : machine_(machine), root_(root) {}

  /// The selection that the front end handed over: a project, and the tags to take from it when it names any.
  Selection HandedOver() const {
    const std::string path = TempFile("HBInput.ini");
    const xml::Document input = xml::Document::Load(ReadHandOver(path));
    if (input.IsEmpty()) {
      throw NothingSelected(path + " is no XML document: " + input.ParseError());
    }
    const xml::Node project = input.First("//ProjectName");
    if (!project) {
      throw NothingSelected(path + " names no project");
    }
    ReadHandOver(TempFile("QBInput.ini"));
    Selection selection = WholeProject(project.Text());
    if (input.First("//TagNames")) {
      selection.units = UnitsOf(selection, input.All("//TagNames/TagName"));
    }
    return selection;
  }

  /// What the user of a run with windows would pick: this substitute has none and takes all of the first project.
  Selection PickedByUser() const {
    const std::vector<std::string> projects = machine_.files.ListFolders(root_ + "\\Projects");
    if (projects.empty()) {
      throw NothingSelected("there is no project in " + root_ + "\\Projects");
    }
    return WholeProject(projects.front());
  }

  void WriteArchives(const Selection& selection) const {
    for (const Unit& unit : selection.units) {
      WriteArchive(selection, unit.stored);
      for (const Accessory& accessory : unit.accessories) {
        WriteArchive(selection, accessory.stored);
      }
    }
  }

  void WriteOutput(std::string_view action, std::string_view reason, const Selection& selection) const {
    const auto section = machine_.privateProfile.Section("Header", TempFile("QBInput.ini"));
    Fields header = {{"Action", std::string(action)}};
    const auto add = [&header](const char* key, std::string_view value) {
      if (!value.empty()) {
        header.emplace_back(key, value);
      }
    };
    add("Reason", ReplaceAll(ReplaceAll(reason, "\r", " "), "\n", " "));
    add("QBversion", section->ReadString("QBversion", "", 255));
    add("ProjectName", selection.projectName);
    const auto pathOf = [&](const StoredData& stored) { return ArchivePath(selection, stored); };
    machine_.files.Replace(TempFile("QBOutput.ini"),
                           machine_.codePage.ToAnsi(FormatSelection(header, selection.units, pathOf)));
  }

 private:
  std::string TempFile(std::string_view name) const { return root_ + "\\Temp\\" + std::string(name); }

  std::string ProjectFile(const std::string& project, const std::string& name) const {
    return root_ + "\\Projects\\" + project + "\\" + name;
  }

  std::string ArchivePath(const Selection& selection, const StoredData& stored) const {
    return stored.place == StoredData::Place::Temp ? TempFile(stored.fileName)
                                                   : ProjectFile(selection.projectName, stored.fileName);
  }

  std::string ReadHandOver(const std::string& path) const {
    if (!machine_.files.IsFile(path)) {
      throw NothingSelected(path + " was not handed over");
    }
    return machine_.files.ReadAll(path);
  }

  Selection WholeProject(const std::string& name) const {
    const std::string path = ProjectFile(name, "units.json");
    if (name.empty() || name.find_first_of("\\/:*?\"<>|") != std::string::npos || !machine_.files.IsFile(path)) {
      throw NothingSelected("there is no project \"" + name + "\"");
    }
    return {name, ParseUnits(machine_.files.ReadAll(path), path)};
  }

  static std::vector<Unit> UnitsOf(const Selection& project, const std::vector<xml::Node>& tagNames) {
    std::vector<Unit> chosen;
    for (const xml::Node& tagName : tagNames) {
      const std::string name = tagName.Text();
      const std::size_t before = chosen.size();
      for (const Unit& unit : project.units) {
        if (FieldOf(unit.keys, "MarkFor") == name) {
          chosen.push_back(unit);
        }
      }
      if (chosen.size() == before) {
        throw NothingSelected("project \"" + project.projectName + "\" has no tag \"" + name + "\"");
      }
    }
    return chosen;
  }

  void WriteArchive(const Selection& selection, const StoredData& stored) const {
    if (stored.fileName.empty()) {
      return;
    }
    ZipWriter archive;
    for (const StoredData::Entry& entry : stored.entries) {
      archive.Add(entry.name, machine_.codePage.ToAnsi(entry.text), entry.deflate);
    }
    machine_.files.Replace(ArchivePath(selection, stored), archive.Finish());
  }

  const WorkflowMachine& machine_;
  const std::string root_;
};

/// Makes the selection and writes it out, or writes why there is none.
WorkflowResult MakeSelection(const Run& run, bool interactive, const StandinSettings::Workflow& settings) {
  try {
    if (settings.cancel) {
      run.WriteOutput("Cancel", "cancelled by its user", {});
      return {kWorkflowDone, "cancelled by its user"};
    }
    const Selection selection = interactive ? run.PickedByUser() : run.HandedOver();
    run.WriteArchives(selection);
    run.WriteOutput("OK", "", selection);
    return {kWorkflowDone, ""};
  } catch (const std::exception& error) {
    run.WriteOutput("Cancel", error.what(), {});
    return {kWorkflowNothingSelected, error.what()};
  }
}

}  // namespace

WorkflowResult RunWorkflow(const WorkflowMachine& machine, std::string_view root,
                           std::span<const std::string> arguments, const StandinSettings::Workflow& settings) {
  const bool interactive = arguments.size() == 1 && arguments[0] == "/OrlaProjectImport";
  const bool handedOver = arguments.size() == 1 && arguments[0] == "/OrlaImportNoUI";
  if (!interactive && !handedOver) {
    return {kWorkflowWrongUsage, "wanted: /OrlaImportNoUI or /OrlaProjectImport"};
  }
  WorkflowResult result;
  if (!settings.writeNothing) {
    try {
      result = MakeSelection(Run(machine, root), interactive, settings);
    } catch (const std::exception& error) {
      result = {kWorkflowNoOutput, error.what()};
    }
  }
  result.exitCode = settings.exitCode.value_or(result.exitCode);
  return result;
}

}  // namespace parvex::standin
