#include "hybris/hybris_command_reference.h"

namespace parvex {
namespace {

constexpr ElementReference kQuoteDocument[] = {
    {0, "PROJECT", Content::Elements, "the Hybris document, also called the quote"},
    {1, "ATTRIBUTES_LIST", Content::Elements, "of the project"},
    {2, "JOB", Content::Elements, "", Occurs::Once, "LEGACY_PROJECTNAME"},
    {2, "CUSTOMER", Content::Text, "always empty"},
    {2, "SALESPERSON", Content::Text, "always empty"},
    {2, "BRAND", Content::Text, "always empty"},
    {1, "TAGS", Content::Elements},
    {2, "TAG", Content::Elements, "a tag of the selection", Occurs::AnyNumber},
    {3, "ATTRIBUTES_LIST", Content::Elements, "of the tag"},
    {4, "BUILDVERSION", Content::Text, "the version that it was selected with"},
    {4, "MARKFOR", Content::Text, "the tag's name"},
    {4, "PDSG", Content::Text, "its product data set group"},
    {4, "LEGACY_TAGID", Content::Text, "its id; counted from 1 in each export for tags without one of their own"},
    {4, "BLOB", Content::Text, "its stored data as Base64; empty when there is none"},
    {3, "BASEUNITS", Content::Elements},
    {4, "BASEUNIT", Content::Elements, "", Occurs::AnyNumber, "PARTNUMBER ID QUANTITY PRICE SEQUENCE"},
    {5, "EXTENDED_DESCRIPTIONS", Content::Elements},
    {6, "DESCRIPTION", Content::Text, "first the unit's own; of a tag's first unit, then the extended ones",
     Occurs::AtLeastOnce},
    {5, "ATTRIBUTES_LIST", Content::Elements, "of the unit"},
    {6, "DELIVERYGROUP", Content::Text, "always empty"},
    {6, "SUPPLIER", Content::Text, "the brand: Korvane, Tessel or QZN"},
    {6, "TYPEOFSALE", Content::Text},
    {6, "TON", Content::Text},
    {6, "CFM", Content::Text, "a whole number, or empty"},
    {6, "ATTRIBUTE1", Content::Text, "TYPE is REPORTINFO where there is one", Occurs::Once, "TYPE?"},
    {6, "ATTRIBUTE2", Content::Text, "", Occurs::Once, "TYPE?"},
    {6, "ATTRIBUTE3", Content::Text, "", Occurs::Once, "TYPE?"},
    {6, "ATTRIBUTE4", Content::Text, "", Occurs::Once, "TYPE?"},
    {6, "ATTRIBUTE5", Content::Text, "", Occurs::Once, "TYPE?"},
    {6, "PREORDERREQ", Content::Text, "1, 0 or empty", Occurs::Once, "", "1|0|"},
    {6, "ETO", Content::Text, "1, 0 or empty", Occurs::Once, "ETODESCRIPTION", "1|0|"},
    {5, "COMPONENTS", Content::Elements},
    {6, "COMPONENT", Content::Elements, "TYPE is ACCESSORY, WARRANTY or BLANKETETO", Occurs::AnyNumber,
     "SEQUENCE TYPE PARTNUMBER QUANTITY PRICE"},
    {7, "DESCRIPTION", Content::Text},
    {7, "ATTRIBUTES_LIST", Content::Elements, "of the component"},
    {8, "DELIVERYGROUP", Content::Text, "always empty"},
    {8, "SUPPLIER", Content::Text},
    {8, "TYPEOFSALE", Content::Text},
    {8, "PREORDERREQ", Content::Text},
    {5, "SAP_XML", Content::Text, "the order configuration: a document as text, or empty"},
};

constexpr FailureReference kUnknownBinPath = {FailureKind::FailedReply, "BinPath cannot be read; nothing is started",
                                              "System Error: Unable to read BinPath"};
constexpr FailureReference kCancelled = {FailureKind::FailedReply, "the quote builder cancelled", "User Canceled"};
constexpr FailureReference kTemporaryFolder = {FailureKind::CallEnds, "a temporary folder cannot be written or read",
                                               "", 75};
constexpr FailureReference kNoTemporaryFolder = {FailureKind::CallEnds, "a temporary folder does not exist", "", 76};
constexpr FailureReference kTooMany = {FailureKind::CallEnds,
                                       "more than 32767 tags, units of a tag or components of a unit; blanket items "
                                       "of all units that take more than 128 MB",
                                       "", 6};
constexpr FailureReference kDamagedStoredData = {
    FailureKind::CallEnds,
    "a tag's stored data is an archive that is damaged, too large to be unpacked, or has an entry that would replace "
    "files of the hand-over, of the selection or of the application; nothing of it is written",
    "", 5};
constexpr FailureReference kDiskFull = {FailureKind::CallEnds, "the disk is full", "", 61};
constexpr FailureReference kHandOverHeld = {FailureKind::CallEnds,
                                            "another run of this machine holds the hand-over files", "", 70};

constexpr FailureReference kExportFailures[] = {
    kUnknownBinPath,
    kCancelled,
    kTemporaryFolder,
    kNoTemporaryFolder,
    kTooMany,
    kDamagedStoredData,
    kDiskFull,
    kHandOverHeld,
    {FailureKind::IncompleteReply, "the quote builder was not started, or left the output of an earlier run",
     "it has the units of an earlier selection; parvex export refuses such a document"},
};
constexpr FailureReference kExportNoUiFailures[] = {
    kUnknownBinPath,
    kCancelled,
    {FailureKind::CallEnds, "no UserSelectionTransfer, or no ProjectName in it; nothing is written", "", 91},
    {FailureKind::CallEnds, "the project's name has \", & or <: it goes into the document as it stands", "", 91},
    kTemporaryFolder,
    kNoTemporaryFolder,
    kTooMany,
    kDamagedStoredData,
    kDiskFull,
    kHandOverHeld,
    {FailureKind::IncompleteReply, "the quote builder was not started, or left no output",
     "it has no tag; parvex export refuses such a document"},
};

constexpr ParameterReference kNoUiParameters[] = {
    {"selection", "the selection; it may stand anywhere in the command", false,
     "<UserSelectionTransfer><ProjectName>Riverside Clinic</ProjectName><TagNames><TagName>CH-1</TagName></TagNames>"
     "</UserSelectionTransfer>",
     true},
};
constexpr ElementReference kSelectionElements[] = {
    {0, "UserSelectionTransfer", Content::Open,
     "the first one is the selection, which goes to the quote builder as it stands"},
    {1, "ProjectName", Content::Text, "the project"},
};

constexpr ElementReference kReturnElements[] = {
    {0, "PARAMETERS", Content::Elements, "around the parameter, as in no other command"},
    {1, "PARAMETER", Content::Elements, "", Occurs::AtLeastOnce},
    {2, "PROJECT", Content::Elements, "a Hybris document"},
    {3, "TAGS", Content::Elements},
    {4, "TAG", Content::Open, "the tag to bring back", Occurs::AtLeastOnce},
    {5, "ATTRIBUTES_LIST", Content::Open},
    {6, "PDSG", Content::Text, "the first one counts"},
    {6, "BLOB", Content::Text, "the first one counts: stored data as Base64"},
    {5, "BASEUNITS", Content::Open, "each of the document's components is shown in a box for each unit",
     Occurs::Optional},
};
constexpr FailureReference kReturnFailures[] = {
    {FailureKind::FailedReply,
     "no PDSG; a message box says \"This Tag did not originate from Legacy ORLA. Cannot Import it.\"",
     "Tag document PDSG is missing"},
    {FailureKind::FailedReply,
     "no BLOB, PDSG begins with XR; a message box says \"Returning Applied Chiller Tags to ORLA is not supported.\"",
     "Tag document BLOB is missing"},
    {FailureKind::FailedReply,
     "no BLOB otherwise; a message box says \"Only units that originated in ORLA can be returned to ORLA\"",
     "Tag document BLOB is missing"},
    {FailureKind::CallEnds, "there is no folder Temp", "", 76},
    {FailureKind::CallEnds, "a file of an earlier call is read-only", "", 75},
    kDiskFull,
    kHandOverHeld,
};

constexpr std::string_view kQuoteExample =
    "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"...\"/><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST>"
    "<TAGS><TAG><ATTRIBUTES_LIST><BUILDVERSION>4.71.0</BUILDVERSION><MARKFOR>...</MARKFOR><PDSG>...</PDSG>"
    "<LEGACY_TAGID>...</LEGACY_TAGID><BLOB><![CDATA[...]]></BLOB></ATTRIBUTES_LIST><BASEUNITS>"
    "<BASEUNIT PARTNUMBER=\"...\" ID=\"...\" QUANTITY=\"...\" PRICE=\"...\" SEQUENCE=\"1\">...</BASEUNIT></BASEUNITS>"
    "...</TAGS></PROJECT>";

}  // namespace

const CommandReference kGetHybrisXmlReference = {
    .reply = kQuoteDocument, .exampleReply = kQuoteExample, .failures = kExportFailures};

const CommandReference kGetHybrisXmlNoUiReference = {.parameters = kNoUiParameters,
                                                     .elements = kSelectionElements,
                                                     .reply = kQuoteDocument,
                                                     .exampleReply = kQuoteExample,
                                                     .failures = kExportNoUiFailures};

const CommandReference kReturnTagReference = {
    .elements = kReturnElements,
    .wrappedExample =
        "<PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>RTU47</PDSG>"
        "<BLOB>U3RvcmVkIGRhdGEgb2YgYSB0YWc=</BLOB></ATTRIBUTES_LIST><BASEUNITS/></TAG></TAGS></PROJECT>",
    .exampleReply = "<LegacyORLA><returnError>0</returnError><errorMessage>No error</errorMessage></LegacyORLA>",
    .failures = kReturnFailures};

}  // namespace parvex
