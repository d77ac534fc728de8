#include "legacy_standin/builder/builder_workflow.h"

#include <charconv>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

#include "formats/text/text.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/projects/stored_tag.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

std::vector<std::string> PartsOf(std::string_view line) {
  std::vector<std::string> parts;
  for (std::size_t end = line.find('\\'); end != std::string_view::npos; end = line.find('\\')) {
    parts.emplace_back(line.substr(0, end));
    line.remove_prefix(end + 1);
  }
  parts.emplace_back(line);
  return parts;
}

/// The version of the first tool of a group, as Tools.xml says; empty when there is none.
std::string ToolVersion(const Application& application, std::string_view pdsg) {
  const std::string path = application.Root() + "\\Bin\\Tools.xml";
  if (!application.files.IsFile(path)) {
    return {};
  }
  const xml::Document tools = xml::Document::Load(application.files.ReadAll(path));
  for (const xml::Node& tool : tools.All("//Tool")) {
    const xml::Node group = tool.Descendant("Pdsg");
    const xml::Node version = tool.Descendant("Version");
    if (group && version && group.Text() == pdsg) {
      return version.Text();
    }
  }
  return {};
}

void BringUpToDate(const Application& application, Unit& unit) {
  const std::string version = ToolVersion(application, PdsgOf(unit));
  if (!version.empty()) {
    SetProductAttribute(unit, "TagVersion", version);
  }
}

void RaiseQuantity(Unit& unit) {
  for (auto& [key, value] : unit.keys) {
    if (key == "Quantity") {
      int quantity = 0;
      const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), quantity);
      if (error == std::errc::result_out_of_range || quantity == std::numeric_limits<int>::max()) {
        throw MakeRuntimeError(RuntimeError::Overflow, "there is no quantity behind " + value);
      }
      value = std::to_string(quantity + 1);
      SetProductAttribute(unit, "Quantity", value);
    }
  }
}

Unit NewUnit(const Application& application, const std::string& pdsg, int tagId) {
  Unit unit;
  unit.tagId = tagId;
  const std::string family(FirstUnits(pdsg, 3));
  unit.keys = {{"PartNumber", family + "-STD"},
               {"PDSG", pdsg},
               {"MarkFor", "New " + family + "-" + std::to_string(tagId)},
               {"Description", "Standard unit of the family " + family},
               {"Quantity", "1"},
               {"MasterPrice", "1000.00"},
               {"Supplier", "Korvane"},
               {"TypeOfSale", "1A"},
               {"PreOrderReq", "N"},
               {"ETO", "N"}};
  unit.stored = MakeTagArchive(unit, StoredData::Place::Project, ToolVersion(application, pdsg));
  return unit;
}

void MakeTag(const Application& application, const std::string& pdsg, const std::string& project) {
  const ProjectStore store(application);
  std::vector<Unit> units = store.ReadUnits(project);
  units.push_back(NewUnit(application, pdsg, FreeTagId(units)));
  store.WriteUnits(project, units);
}

void ConfigureTag(const Application& application, const std::string& pdsg, const std::string& name,
                  const std::string& project) {
  const ProjectStore store(application);
  std::vector<Unit> units = store.ReadUnits(project);
  const auto unit = FindTag(units, pdsg, name);
  if (unit != units.end()) {
    RaiseQuantity(*unit);
    BringUpToDate(application, *unit);
    store.WriteUnits(project, units);
  }
}

void RebuildTags(const Application& application, const std::string& project) {
  const ProjectStore store(application);
  std::vector<Unit> units = store.ReadUnits(project);
  for (Unit& unit : units) {
    BringUpToDate(application, unit);
  }
  store.WriteUnits(project, units);
}

}  // namespace

void RunBuilderWorkflow(const Application& application, std::string_view commandLine) {
  const ProjectStore store(application);
  const bool rebuilds = commandLine.starts_with("\\\\:");
  const bool configures = commandLine.starts_with("\\\\\\");
  if (!commandLine.starts_with("\\\\")) {
    return;
  }
  const std::vector<std::string> parts = PartsOf(commandLine.substr(rebuilds || configures ? 3 : 2));
  if (rebuilds && parts.size() == 1 && store.Exists(parts[0])) {
    RebuildTags(application, parts[0]);
  } else if (configures && parts.size() == 5 && store.Exists(parts[3])) {
    ConfigureTag(application, parts[0], parts[1], parts[3]);
  } else if (!rebuilds && !configures && parts.size() == 2 && !parts[0].empty() && store.Exists(parts[1])) {
    MakeTag(application, parts[0], parts[1]);
  }
}

}  // namespace parvex::standin
