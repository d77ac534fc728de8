#include "reports/report_command_reference.h"

#include "tags/tag_command_reference.h"

namespace parvex {
namespace {

constexpr ParameterReference kReportedProject = {"projectName", "the project", true, "Riverside Clinic"};
constexpr ParameterReference kUnits = {"UnitsOfMeasure", "the units; when missing or empty, the report server's own",
                                       false, "English"};
constexpr ParameterReference kReportedData = {
    "data", "the TAG entries; they may stand anywhere in the command", false,
    "<TAGS><TAG><NAME>RTU-1</NAME><PDSG>RTU47</PDSG><DATATYPE>0</DATATYPE></TAG></TAGS>", true};

constexpr ParameterReference kReportParameters[] = {
    kReportedProject, {"reportName", "a name of the catalogue", true, "UnitReport"}, kUnits, kReportedData};
constexpr ParameterReference kReportsParameters[] = {
    kReportedProject,
    {"reportName", "names of the catalogue, a VALUE each", true, "UnitReport\nSpecSheet"},
    kUnits,
    kReportedData,
};
constexpr ParameterReference kSubmittalParameters[] = {
    kReportedProject,
    {"reportName", "told on to the report server; the definition is always that of the submittal", false,
     "NGSubmittal"},
    kUnits,
    {"data", "the TAG entries; they may stand anywhere in the command", false,
     "<TAGS><TAG><NAME>CH-1</NAME><PDSG>XRC47</PDSG><DATATYPE>0</DATATYPE></TAG></TAGS>", true},
};
constexpr ParameterReference kAvailableParameters[] = {{"PDSG", "the product data set group", true, "RTU47"}};

constexpr ElementReference kReportElements[] = {
    {0, "TAG", Content::Open, "a tag to report on, wherever it stands in the command", Occurs::AtLeastOnce},
    {1, "NAME", Content::Text, "its name"},
    {1, "PDSG", Content::Text, "its product data set group"},
    {1, "DATATYPE", Content::Text, "1 for an extended tag; anything else, also nothing, for an ordinary one"},
    {0, "command", Content::Elements, "for reportName EquipmentSchedule only, which has to stand here once more",
     Occurs::Optional, "", "", "reportName", "EquipmentSchedule"},
    {1, "Report", Content::Elements},
    {2, "Name", Content::Text, "EquipmentSchedule"},
};

constexpr ElementReference kSubmittal[] = {
    {0, "TAGS", Content::Elements, "the submittals"},
    {1, "TAG", Content::Elements, "one for each tag whose group has a submittal definition", Occurs::AnyNumber},
    {2, "root", Content::Open, "the report server's own document, with the files that it names put in as Base64"},
};

constexpr ElementReference kAvailable[] = {
    {0, "REPORTS", Content::Elements, "the reports that can be generated"},
    {1, "REPORT", Content::Elements, "a report", Occurs::AnyNumber},
    {2, "PARAMETER", Content::Elements, "its two names"},
    {3, "NAME", Content::Text, "the one for getReport"},
    {3, "VALUE", Content::Text, "the one for people"},
};

constexpr FailureReference kNothingMade = {
    FailureKind::ToldInReply, "no tag's group has the definition (a message box says so), or the server made nothing",
    "No Report was generated"};
constexpr FailureReference kServerBusy = {FailureKind::CallEnds,
                                          "another builder or report command of the instance is still running", "", 91};
constexpr FailureReference kReportFailures[] = {
    kNothingMade,
    {FailureKind::FailedReply, "the report server is not registered, or fails", "Error in getReport. "},
    {FailureKind::FailedReply, "no tag is known, or none carries its project",
     "Error in getReport. no //Project in the tag data"},
    {FailureKind::FailedReply, "a tag without application", "Error in getReport. no .//Application in TAG"},
    {FailureKind::FailedReply, "EquipmentSchedule that does not stand in command/Report/Name too",
     "Error in getReport. no //command/Report/Name in the command document"},
    {FailureKind::FailedReply, "a temporary report file is read-only", "Error in getReport. cannot remove "},
    kServerBusy,
};
constexpr FailureReference kReportsFailures[] = {
    {FailureKind::ToldInReply, "no reportName has a VALUE", "No Report names were specified"},
    kNothingMade,
    {FailureKind::FailedReply, "the report server is not registered, or fails", "Error in getReports(). "},
    {FailureKind::FailedReply, "no tag is known, or none carries its project", "Error in getReports(). "},
    kServerBusy,
};
constexpr FailureReference kSubmittalFailures[] = {
    {FailureKind::IncompleteReply, "a tag's group has no submittal definition", "that tag is left out"},
    {FailureKind::CallEnds, "the report server is not registered", "", 429},
    {FailureKind::CallEnds, "the report server fails, with its own error"},
    {FailureKind::CallEnds, "the report server left no NGreport.xml", "", 53},
    {FailureKind::CallEnds, "NGreport.xml is no XML document, or has no root", "", 91},
    {FailureKind::CallEnds, "no tag is known, or none carries its project", "no //Project in the tag data", 91},
    {FailureKind::CallEnds, "a file name in the report would leave its folder", "", 5},
    kServerBusy,
};
constexpr FailureReference kAvailableFailures[] = {
    {FailureKind::NoDocument, "PDSG is empty or missing"},
};

}  // namespace

const CommandReference kGetReportReference = {
    .parameters = kReportParameters,
    .elements = kReportElements,
    .exampleReply = "<LegacyORLA><returnError>No Error</returnError><errorMessage/></LegacyORLA>",
    .failures = kReportFailures};

const CommandReference kGetReportsReference = {
    .parameters = kReportsParameters,
    .elements = kTagEntriesReference,
    .exampleReply = "<LegacyORLA><returnError>No Error</returnError><errorMessage/></LegacyORLA>",
    .failures = kReportsFailures};

const CommandReference kGetSubmittalReference = {
    .parameters = kSubmittalParameters,
    .elements = kTagEntriesReference,
    .reply = kSubmittal,
    .exampleReply = "<TAGS><TAG><root><title>Submittal</title>...</root></TAG></TAGS>",
    .failures = kSubmittalFailures};

const CommandReference kGetAvailableReportsReference = {
    .parameters = kAvailableParameters,
    .reply = kAvailable,
    .exampleReply =
        "<REPORTS><REPORT><PARAMETER><NAME>UnitReport</NAME><VALUE>Unit Report</VALUE></PARAMETER></REPORT>"
        "...</REPORTS>",
    .failures = kAvailableFailures};

}  // namespace parvex
