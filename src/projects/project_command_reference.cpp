#include "projects/project_command_reference.h"

namespace parvex {
namespace {

constexpr ParameterReference kTheProject = {"projectName", "the project", true, "Riverside Clinic"};
constexpr FailureReference kNameTaken = {FailureKind::FailedReply, "there is a project of the new name",
                                         "A Project of that name already exists"};
constexpr FailureReference kUnreadableStatus = {
    FailureKind::CallEnds, "the application's answer has a STATUS that reads as neither yes nor no", "", 13};
constexpr FailureReference kAnswerLacksElement = {FailureKind::CallEnds,
                                                  "the application's answer lacks an element that is needed", "", 91};
constexpr FailureReference kNoDatabase = {FailureKind::CallEnds, "the project's folder has no Project.mdb", "", 53};
constexpr FailureReference kNoFolder = {FailureKind::CallEnds, "the project's folder does not exist", "", 76};
constexpr FailureReference kNotADatabase = {FailureKind::CallEnds, "Project.mdb is no database", "", 3343};
constexpr FailureReference kNoConfig = {FailureKind::CallEnds, "Project.mdb has no table Config", "", 3078};

constexpr ElementReference kProjectList[] = {
    {0, "PROJECTLIST", Content::Open, "the application's list as it stands, with whatever root that has"},
    {1, "PROJECT", Content::Elements, "a project", Occurs::AnyNumber},
    {2, "NAME", Content::Text, "its name"},
    {2, "FOLDER", Content::Text, "its folder: a full path, no final backslash"},
};

constexpr ElementReference kProject[] = {
    {0, "PROJECT", Content::Elements, "the application's answer"},
    {1, "NAME", Content::Text, "the project's name"},
    {1, "FOLDER", Content::Text, "its folder: a full path, no final backslash"},
    {1, "PROPERTIES", Content::Open, "its properties"},
    {2, "DESCRIPTION", Content::Text, "the description"},
    {2, "CUSTOMER", Content::Text, "the customer"},
    {2, "LOCATION", Content::Text, "the location"},
    {2, "ENGINEER", Content::Text, "the engineer"},
    {2, "NOTES", Content::Text, "notes"},
    {2, "COMPANYNAME", Content::Text, "from the project's database; getProjectProperties only", Occurs::Optional},
    {2, "EMAILID", Content::Text, "from the project's database; getProjectProperties only", Occurs::Optional},
    {2, "CONTACTNUMBER", Content::Text, "from the project's database; getProjectProperties only", Occurs::Optional},
};

constexpr FailureReference kForwardedFailures[] = {kRefusedReference, kRouterFailsReference};
constexpr FailureReference kPropertiesFailures[] = {
    kRefusedReference, kRouterFailsReference, kAnswerLacksElement, kNoDatabase, kNoFolder, kNotADatabase, kNoConfig};
constexpr FailureReference kSetPropertiesFailures[] = {
    kRefusedReference,
    kRouterFailsReference,
    kAnswerLacksElement,
    kNoDatabase,
    kNoFolder,
    kNotADatabase,
    kNoConfig,
    {FailureKind::CallEnds, "Project.mdb is read-only", "", 75},
    {FailureKind::CallEnds, "the disk is full", "", 61},
};
constexpr FailureReference kCopyFailures[] = {kNameTaken, kRefusedReference, kRouterFailsReference, kUnreadableStatus,
                                              kAnswerLacksElement};
constexpr FailureReference kRenameFailures[] = {
    kNameTaken,
    kRefusedReference,
    {FailureKind::FailedReply, "the copy was made, but the old project was not deleted: both are there",
     "Unrecognized or Failed Command"},
    kRouterFailsReference,
    kUnreadableStatus,
    kAnswerLacksElement,
};
constexpr FailureReference kRetrieveFailures[] = {
    {FailureKind::FailedReply, "the archive cannot be read, or restoring is refused", "Unrecognized or Failed Command"},
    kRouterFailsReference,
    kUnreadableStatus,
    kAnswerLacksElement,
};

constexpr ParameterReference kPropertiesParameters[] = {kTheProject};
constexpr ParameterReference kSetPropertiesParameters[] = {
    kTheProject,
    {"CompanyName", "stored in the project's database; as an empty text when missing", false,
     "Marsh & Lindqvist Mechanical"},
    {"EmailID", "stored in the project's database; as an empty text when missing", false,
     "quotes@marsh-lindqvist.example"},
    {"ContactNumber", "stored in the project's database; as an empty text when missing", false, "+1 555 0147"},
    {"Location", "a property of the application's own, as any other parameter is", false, "Quay 4"},
};
constexpr ParameterReference kAddParameters[] = {
    {"projectName", "the new project", true, "Harbour"},
    {"projectPath", "its folder; when missing, Projects\\ and the name below the data root", false},
    {"Description", "a property of the application's own, as any other parameter is", false, "New wing"},
};
constexpr ParameterReference kDeleteParameters[] = {kTheProject};
constexpr ParameterReference kCopyParameters[] = {
    {"projectName", "the project to copy", true, "Riverside Clinic"},
    {"newProjectName", "the copy's name", true, "Riverside Annex"},
};
constexpr ParameterReference kRenameParameters[] = {
    {"projectName", "the project to rename", true, "Riverside Clinic"},
    {"newProjectName", "its new name", true, "Riverside Hospital"},
};
constexpr ParameterReference kArchiveParameters[] = {
    kTheProject,
    {"dataList", "the product data set groups to archive, commas between; when missing, *, which is all", false},
    {"fileSpec", "when there is one, no archiveFile is appended", false},
    {"archiveFile",
     "the archive; appended as Archives\\, the name and .E3A below the data root unless there is a fileSpec", false},
};
constexpr ParameterReference kRetrieveParameters[] = {
    {"projectName", "the project to restore into", true, "Riverside Clinic"},
    {"fileSpec", "the archive", true, "C:\\Korvane\\TQ5-VX\\Archives\\Riverside Clinic.E3A"},
    {"FOLDER", "the project's own folder", true, "C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic"},
};

}  // namespace

const CommandReference kGetProjectListReference = {
    .reply = kProjectList,
    .exampleReply =
        "<PROJECTLIST><PROJECT><NAME>Riverside Clinic</NAME>"
        "<FOLDER>C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic</FOLDER></PROJECT></PROJECTLIST>",
    .failures = kForwardedFailures};

const CommandReference kGetProjectPropertiesReference = {
    .parameters = kPropertiesParameters,
    .others = OtherParameters::Forwarded,
    .reply = kProject,
    .exampleReply =
        "<PROJECT><NAME>Riverside Clinic</NAME>"
        "<FOLDER>C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic</FOLDER><PROPERTIES><DESCRIPTION/>"
        "<CUSTOMER/><LOCATION/><ENGINEER/><NOTES/><COMPANYNAME>Marsh &amp; Lindqvist Mechanical"
        "</COMPANYNAME><EMAILID>quotes@marsh-lindqvist.example</EMAILID><CONTACTNUMBER>+1 555 0147"
        "</CONTACTNUMBER></PROPERTIES></PROJECT>",
    .failures = kPropertiesFailures};

const CommandReference kSetProjectPropertiesReference = {
    .parameters = kSetPropertiesParameters,
    .others = OtherParameters::Forwarded,
    .reply = kProject,
    .exampleReply =
        "<PROJECT><NAME>Riverside Clinic</NAME>"
        "<FOLDER>C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic</FOLDER><PROPERTIES><DESCRIPTION/>"
        "<CUSTOMER/><LOCATION>Quay 4</LOCATION><ENGINEER/><NOTES/></PROPERTIES></PROJECT>",
    .failures = kSetPropertiesFailures};

const CommandReference kAddProjectReference = {.parameters = kAddParameters,
                                               .others = OtherParameters::Forwarded,
                                               .exampleReply = kSuccessExample,
                                               .failures = kForwardedFailures};

const CommandReference kDeleteProjectReference = {.parameters = kDeleteParameters,
                                                  .others = OtherParameters::Forwarded,
                                                  .exampleReply = kSuccessExample,
                                                  .failures = kForwardedFailures};

const CommandReference kCopyProjectReference = {.parameters = kCopyParameters,
                                                .others = OtherParameters::Forwarded,
                                                .exampleReply = kSuccessExample,
                                                .failures = kCopyFailures};

const CommandReference kRenameProjectReference = {.parameters = kRenameParameters,
                                                  .others = OtherParameters::Forwarded,
                                                  .exampleReply = kSuccessExample,
                                                  .failures = kRenameFailures};

const CommandReference kArchiveProjectReference = {.parameters = kArchiveParameters,
                                                   .others = OtherParameters::Forwarded,
                                                   .exampleReply = kSuccessExample,
                                                   .failures = kForwardedFailures};

const CommandReference kRetrieveProjectReference = {.parameters = kRetrieveParameters,
                                                    .others = OtherParameters::Forwarded,
                                                    .exampleReply = kSuccessExample,
                                                    .failures = kRetrieveFailures,
                                                    .runsAfter = "archiveProject"};

}  // namespace parvex
