#include "interface/command_table.h"

#include "hybris/export_driver.h"
#include "hybris/return_to_legacy.h"
#include "options/options_commands.h"
#include "projects/project_lifecycle.h"
#include "projects/project_properties.h"
#include "reports/report_catalogue.h"
#include "reports/report_commands.h"
#include "tags/tag_building.h"
#include "tags/tag_editing.h"
#include "tags/tag_listing.h"

namespace parvex {
namespace {

constexpr bool kDrives = true;

constexpr CommandEntry kGetHybrisXml = {"getHybrisXML", GetHybrisXML,
                                        "exports the units selected in the quote builder, shown to its user"};

constexpr CommandEntry kPullCommands[] = {
    {"getProjectList", GetProjectList, "lists the projects"},
    {"archiveProject", ArchiveProject, "archives a project into an archive file"},
    {"retrieveProject", RetrieveProject, "restores a project from an archive file"},
    {"addProject", AddProject, "creates a project"},
    {"deleteProject", DeleteProject, "deletes a project"},
    {"copyProject", CopyProject, "copies a project under a new name"},
    {"getProjectProperties", GetProjectProperties, "returns a project's properties and contact data"},
    {"setProjectProperties", SetProjectProperties, "stores a project's properties"},
    {"renameProject", RenameProject, "renames a project"},
    {"rebuildAllTags", RebuildAllTags, "rebuilds every tag of a project through the legacy builder", kDrives},
    {"getTagList", GetTagList, "lists the tags of one project"},
    {"getTags", GetTags, "returns tag documents"},
    {"renameTag", RenameTag, "renames a tag"},
    {"deleteTag", DeleteTag, "deletes a tag"},
    {"newTag", NewTag, "creates a tag through the legacy builder", kDrives},
    {"copyTag", CopyTag, "copies a tag, possibly into another project"},
    {"configureTag", ConfigureTag, "configures a tag through the legacy builder", kDrives},
    kGetHybrisXml,
    {"getReport", GetReport, "generates one report", kDrives},
    {"getReports", GetReports, "generates several reports", kDrives},
    {"getSubmittal", GetSubmittal, "generates a submittal", kDrives},
    {"getAvailableReports", GetAvailableReports, "lists the reports that can be generated"},
    {"getOptions", GetOptions, "returns the language and unit-of-measure options"},
    {"setOptions", SetOptions, "stores the language and unit-of-measure options"},
};

constexpr CommandEntry kPullNgorlaCommands[] = {
    kGetHybrisXml,
    {"getHybrisXMLNoUI", GetHybrisXMLNoUI, "exports the units that the command selects, without user interface"},
    {"RebuildTag", ReturnTagToLegacy, "brings a tag back from a Hybris tag document"},
};

}  // namespace

std::span<const CommandEntry> PullCommands() { return kPullCommands; }

std::span<const CommandEntry> PullNgorlaCommands() { return kPullNgorlaCommands; }

}  // namespace parvex
