#include "interface/command_table.h"

#include "hybris/export_driver.h"
#include "interface/pending_commands.h"

namespace parvex {
namespace {

constexpr CommandEntry kGetHybrisXml = {"getHybrisXML", GetHybrisXML,
                                        "exports the units selected in the quote builder, shown to its user"};

constexpr CommandEntry kPullCommands[] = {
    {"getProjectList", AnswerPendingCommand, "lists the projects"},
    {"archiveProject", AnswerPendingCommand, "archives a project into an archive file"},
    {"retrieveProject", AnswerPendingCommand, "restores a project from an archive file"},
    {"addProject", AnswerPendingCommand, "creates a project"},
    {"deleteProject", AnswerPendingCommand, "deletes a project"},
    {"copyProject", AnswerPendingCommand, "copies a project under a new name"},
    {"getProjectProperties", AnswerPendingCommand, "returns a project's properties and contact data"},
    {"setProjectProperties", AnswerPendingCommand, "stores a project's properties"},
    {"renameProject", AnswerPendingCommand, "renames a project"},
    {"rebuildAllTags", AnswerPendingCommand, "rebuilds every tag of a project through the legacy builder"},
    {"getTagList", AnswerPendingCommand, "lists the tags of one project"},
    {"getTags", AnswerPendingCommand, "returns tag documents"},
    {"renameTag", AnswerPendingCommand, "renames a tag"},
    {"deleteTag", AnswerPendingCommand, "deletes a tag"},
    {"newTag", AnswerPendingCommand, "creates a tag through the legacy builder"},
    {"copyTag", AnswerPendingCommand, "copies a tag, possibly into another project"},
    {"configureTag", AnswerPendingCommand, "configures a tag through the legacy builder"},
    kGetHybrisXml,
    {"getReport", AnswerPendingCommand, "generates one report"},
    {"getReports", AnswerPendingCommand, "generates several reports"},
    {"getSubmittal", AnswerPendingCommand, "generates a submittal"},
    {"getAvailableReports", AnswerPendingCommand, "lists the reports that can be generated"},
    {"getOptions", AnswerPendingCommand, "returns the language and unit-of-measure options"},
    {"setOptions", AnswerPendingCommand, "stores the language and unit-of-measure options"},
};

constexpr CommandEntry kPullNgorlaCommands[] = {
    kGetHybrisXml,
    {"getHybrisXMLNoUI", GetHybrisXMLNoUI, "exports the units that the command selects, without user interface"},
    {"RebuildTag", AnswerPendingCommand, "brings a tag back from a Hybris tag document"},
};

}  // namespace

std::span<const CommandEntry> PullCommands() { return kPullCommands; }

std::span<const CommandEntry> PullNgorlaCommands() { return kPullNgorlaCommands; }

}  // namespace parvex
