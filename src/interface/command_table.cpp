#include "interface/command_table.h"

#include "hybris/export_driver.h"
#include "hybris/hybris_command_reference.h"
#include "hybris/return_to_legacy.h"
#include "options/options_command_reference.h"
#include "options/options_commands.h"
#include "projects/project_command_reference.h"
#include "projects/project_lifecycle.h"
#include "projects/project_properties.h"
#include "reports/report_catalogue.h"
#include "reports/report_command_reference.h"
#include "reports/report_commands.h"
#include "tags/tag_building.h"
#include "tags/tag_command_reference.h"
#include "tags/tag_editing.h"
#include "tags/tag_listing.h"

namespace parvex {
namespace {

constexpr bool kDrives = true;

constexpr CommandEntry kGetHybrisXml = {"getHybrisXML", GetHybrisXML,
                                        "exports the units selected in the quote builder, shown to its user",
                                        &kGetHybrisXmlReference};

constexpr CommandEntry kPullCommands[] = {
    {"getProjectList", GetProjectList, "lists the projects", &kGetProjectListReference},
    {"archiveProject", ArchiveProject, "archives a project into an archive file", &kArchiveProjectReference},
    {"retrieveProject", RetrieveProject, "restores a project from an archive file", &kRetrieveProjectReference},
    {"addProject", AddProject, "creates a project", &kAddProjectReference},
    {"deleteProject", DeleteProject, "deletes a project", &kDeleteProjectReference},
    {"copyProject", CopyProject, "copies a project under a new name", &kCopyProjectReference},
    {"getProjectProperties", GetProjectProperties, "returns a project's properties and contact data",
     &kGetProjectPropertiesReference},
    {"setProjectProperties", SetProjectProperties, "stores a project's properties", &kSetProjectPropertiesReference},
    {"renameProject", RenameProject, "renames a project", &kRenameProjectReference},
    {"rebuildAllTags", RebuildAllTags, "rebuilds every tag of a project through the legacy builder",
     &kRebuildAllTagsReference, kDrives},
    {"getTagList", GetTagList, "lists the tags of one project", &kGetTagListReference},
    {"getTags", GetTags, "returns tag documents", &kGetTagsReference},
    {"renameTag", RenameTag, "renames a tag", &kRenameTagReference},
    {"deleteTag", DeleteTag, "deletes a tag", &kDeleteTagReference},
    {"newTag", NewTag, "creates a tag through the legacy builder", &kNewTagReference, kDrives},
    {"copyTag", CopyTag, "copies a tag, possibly into another project", &kCopyTagReference},
    {"configureTag", ConfigureTag, "configures a tag through the legacy builder", &kConfigureTagReference, kDrives},
    kGetHybrisXml,
    {"getReport", GetReport, "generates one report", &kGetReportReference, kDrives},
    {"getReports", GetReports, "generates several reports", &kGetReportsReference, kDrives},
    {"getSubmittal", GetSubmittal, "generates a submittal", &kGetSubmittalReference, kDrives},
    {"getAvailableReports", GetAvailableReports, "lists the reports that can be generated",
     &kGetAvailableReportsReference},
    {"getOptions", GetOptions, "returns the language and unit-of-measure options", &kGetOptionsReference},
    {"setOptions", SetOptions, "stores the language and unit-of-measure options", &kSetOptionsReference},
};

constexpr CommandEntry kPullNgorlaCommands[] = {
    kGetHybrisXml,
    {"getHybrisXMLNoUI", GetHybrisXMLNoUI, "exports the units that the command selects, without user interface",
     &kGetHybrisXmlNoUiReference},
    {"RebuildTag", ReturnTagToLegacy, "brings a tag back from a Hybris tag document", &kReturnTagReference},
};

}  // namespace

std::span<const CommandEntry> PullCommands() { return kPullCommands; }

std::span<const CommandEntry> PullNgorlaCommands() { return kPullNgorlaCommands; }

}  // namespace parvex
