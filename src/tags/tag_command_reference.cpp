#include "tags/tag_command_reference.h"

namespace parvex {
namespace {

constexpr ParameterReference kProjectOfTags = {"projectName", "the project", true, "Riverside Clinic"};
constexpr FailureReference kUniqueNameOverflow = {FailureKind::CallEnds,
                                                  "the instance has numbered more than 2147483647 names", "", 6};

// Lists and documents.

constexpr ParameterReference kListParameters[] = {kProjectOfTags};
constexpr ElementReference kTagList[] = {
    {0, "TAGLIST", Content::Open, "the application's list, with whatever root that has"},
    {1, "TAG", Content::Open, "a tag", Occurs::AnyNumber},
    {2, "NAME", Content::Text, "its name"},
    {2, "PDSG", Content::Text, "its product data set group"},
    {2, "DATATYPE", Content::Text, "0, or 1 for an extended tag"},
    {2, "TAGVERSION", Content::Text, "the version that it was selected with"},
    {2, "TAGINDEXID", Content::Text, "its id in the table TagIndex"},
    {2, "ID", Content::Text, "its id"},
    {2, "UPTODATE", Content::Text, "-1 when its version is the current one of its group, else 0", Occurs::Once, "",
     "-1|0"},
};
constexpr FailureReference kListFailures[] = {
    kRefusedReference,
    {FailureKind::IncompleteReply, "the program folder is not known", "there is no UPTODATE"},
    {FailureKind::IncompleteReply, "Tools.xml is missing, unreadable or malformed",
     "UPTODATE is as if there were no tools"},
    {FailureKind::NoDocument, "the application's answer is no XML document"},
    {FailureKind::CallEnds, "a TAG of the answer has no TAGVERSION or no PDSG", "", 91},
    kRouterFailsReference,
};

constexpr ParameterReference kFetchParameters[] = {
    kProjectOfTags,
    {"data", "the TAG entries; they may stand anywhere in the command", false,
     "<TAGS><TAG><NAME>CH-1</NAME><PDSG>XRC47</PDSG><DATATYPE>0</DATATYPE></TAG>"
     "<TAG><NAME>HP-7</NAME><PDSG>WSH47</PDSG><DATATYPE>1</DATATYPE></TAG></TAGS>",
     true},
};
constexpr ElementReference kTagData[] = {
    {0, "TagData", Content::Elements, "the tags' stored data"},
    {1, "PROJECT", Content::AnyOrder, "the project"},
    {2, "projectName", Content::Text, "its name as the command has it"},
    {2, "TAG", Content::Open, "the application's own document of a tag; a PROTOTAG where that is all it has",
     Occurs::AnyNumber},
    {2, "PROTOTAG", Content::Open, "of a tag that was never configured; tags and these stand in the entries' order",
     Occurs::AnyNumber},
};
constexpr FailureReference kFetchFailures[] = {
    {FailureKind::IncompleteReply, "the application does not know a tag, or its answer is no XML document",
     "that tag is left out"},
    {FailureKind::CallEnds, "an entry has no NAME, no PDSG or no DATATYPE", "", 91},
    kRouterFailsReference,
};

// Changes.

constexpr ParameterReference kRenameTagParameters[] = {
    kProjectOfTags,
    {"pdsg", "the tag's product data set group", true, "RTU47"},
    {"tagName", "the tag", true, "RTU-1"},
    {"newTagName", "its new name; made unique, and without < > & ' \" \\ , |", true, "Roof 1"},
};
constexpr ParameterReference kCopyTagParameters[] = {
    kProjectOfTags,
    {"PDSG", "the tag's product data set group", true, "XRC47"},
    {"tagName", "the tag", true, "CH-1"},
    {"dataType", "0, or 1 for an extended tag", false, "0"},
    {"newTagName", "the copy's name, made unique; when missing, \"Copy of \" and the tag's name", false},
    {"destinationProject", "where the copy goes; when missing or empty, the project itself", false},
    {"pdsg", "the group once more, for a copy within the project", false},
    {"TAGINDEXID", "the tag's id in the table TagIndex, for a copy into another project", false},
};
constexpr ParameterReference kDeleteTagParameters[] = {
    kProjectOfTags,
    {"PDSG", "the tag's product data set group", true, "XRC47"},
    {"tagName", "the tag", true, "CH-1"},
    {"DATATYPE", "0, or 1 for an extended tag", true, "0"},
    {"TAGINDEXID", "its id in the table TagIndex", false, "1103"},
    {"ID", "its id", false, "1103"},
};
constexpr FailureReference kChangeFailures[] = {
    kRefusedReference,
    kUniqueNameOverflow,
    {FailureKind::CallEnds, "a tag in the application's list has no NAME", "", 91},
    kRouterFailsReference,
};
constexpr FailureReference kDeleteTagFailures[] = {kRefusedReference, kRouterFailsReference};

// The builder.

constexpr ParameterReference kNewTagParameters[] = {
    kProjectOfTags,
    {"PDSG", "the new tag's product data set group", true, "RTU47"},
    {"partNumber", "takes no part: the builder asks its user", false},
    {"tagName", "takes no part: the builder asks its user", false},
};
constexpr ParameterReference kConfigureParameters[] = {
    kProjectOfTags,
    {"PDSG", "the tag's product data set group", true, "XRC47"},
    {"tagName", "the tag", true, "CH-1"},
    {"tagID", "its id", false, "1103"},
    {"projectID", "the project's id", false},
};
constexpr ParameterReference kRebuildParameters[] = {kProjectOfTags};

constexpr FailureReference kBuilderMissing = {FailureKind::CallEnds, "the builder is not registered", "", 429};
constexpr FailureReference kBuilderFails = {FailureKind::CallEnds,
                                            "a member of the builder fails, with the builder's own error"};
constexpr FailureReference kBuilderBusy = {
    FailureKind::CallEnds, "another builder or report command of the instance is still running", "", 91};
constexpr FailureReference kNoBroker = {FailureKind::CallEnds,
                                        "the builder's Framework or ServiceBroker gives no object", "", 91};
constexpr FailureReference kUnreadableLoaded = {FailureKind::CallEnds, "UILoaded is neither true nor false", "", 13};
constexpr FailureReference kNewTagFailures[] = {kBuilderMissing, kBuilderFails, kNoBroker, kUnreadableLoaded,
                                                kBuilderBusy};
constexpr FailureReference kConfigureFailures[] = {
    {FailureKind::CallEnds, "UIKeys.txt is missing", "", 53},
    {FailureKind::CallEnds, "BinPath is not known (the number is 0x80040200)", "Unable to read BinPath"},
    kBuilderMissing,
    {FailureKind::CallEnds, "the builder's standalone or View fails, with the builder's own error"},
    {FailureKind::FailedReply, "the builder fails later: at UILoaded, Framework, ServiceBroker or CallService",
     "Unrecognized or Failed Command"},
    kBuilderBusy,
};
constexpr FailureReference kRebuildFailures[] = {
    kBuilderMissing,
    kBuilderFails,
    kNoBroker,
    kUnreadableLoaded,
    {FailureKind::CallEnds, "UIKeys.txt is missing", "", 53},
    {FailureKind::CallEnds, "BinPath is not known (the number is 0x80040200)", "Unable to read BinPath"},
    kBuilderBusy,
};

}  // namespace

const CommandReference kGetTagListReference = {
    .parameters = kListParameters,
    .reply = kTagList,
    .exampleReply =
        "<TAGLIST><TAG><NAME>RTU-1</NAME><PDSG>RTU47</PDSG><DATATYPE>0</DATATYPE><TAGVERSION>4.71.0</TAGVERSION>"
        "<TAGINDEXID>1101</TAGINDEXID><ID>1101</ID><UPTODATE>-1</UPTODATE></TAG>...</TAGLIST>",
    .failures = kListFailures};

const CommandReference kGetTagsReference = {
    .parameters = kFetchParameters,
    .elements = kTagEntriesReference,
    .reply = kTagData,
    .exampleReply =
        "<TagData><PROJECT><projectName>Riverside Clinic</projectName><TAG><TagName>CH-1</TagName>"
        "...</TAG><PROTOTAG><TagName>HP-7</TagName>...</PROTOTAG></PROJECT></TagData>",
    .failures = kFetchFailures};

const CommandReference kRenameTagReference = {.parameters = kRenameTagParameters,
                                              .others = OtherParameters::Forwarded,
                                              .exampleReply = kSuccessExample,
                                              .failures = kChangeFailures};

const CommandReference kCopyTagReference = {.parameters = kCopyTagParameters,
                                            .others = OtherParameters::Forwarded,
                                            .exampleReply = kSuccessExample,
                                            .failures = kChangeFailures};

const CommandReference kDeleteTagReference = {
    .parameters = kDeleteTagParameters, .exampleReply = kSuccessExample, .failures = kDeleteTagFailures};

const CommandReference kNewTagReference = {
    .parameters = kNewTagParameters, .exampleReply = kSuccessExample, .failures = kNewTagFailures};

const CommandReference kConfigureTagReference = {
    .parameters = kConfigureParameters, .exampleReply = kSuccessExample, .failures = kConfigureFailures};

const CommandReference kRebuildAllTagsReference = {
    .parameters = kRebuildParameters, .exampleReply = kSuccessExample, .failures = kRebuildFailures};

}  // namespace parvex
