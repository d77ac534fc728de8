#include "options/options_command_reference.h"

namespace parvex {
namespace {

constexpr ElementReference kOptions[] = {
    {0, "COMMAND", Content::Elements, "a command that can be sent back"},
    {1, "NAME", Content::Text, "the command's name", Occurs::Once, "", "setOptions"},
    {1, "PARAMETER", Content::Elements, "an option: language, unit of measure, then those of tool SOV01",
     Occurs::AnyNumber},
    {2, "NAME", Content::Text, "its name"},
    {2, "VALUE", Content::Text, "its value"},
};

constexpr FailureReference kGetFailures[] = {
    {FailureKind::IncompleteReply, "Options.xml is missing or does not parse, or BinPath is not known",
     "it has no PARAMETER"},
    {FailureKind::CallEnds, "an option of tool SOV01 has no Name or no Value", "", 91},
};

constexpr ParameterReference kSetParameters[] = {
    {"cmbLanguage", "the language", false, "English"},
    {"cmbUnitOfMeasure", "the unit of measure", false, "Metric"},
    {"cmbPaperSize", "an option of tool SOV01, as any other parameter is", false, "A4"},
};

constexpr FailureReference kSetFailures[] = {
    {FailureKind::FailedReply, "Options.xml is missing, does not parse or cannot be written",
     "Unrecognized or Failed Command"},
    {FailureKind::FailedReply, "Options.xml lacks the language or the unit of measure that the command has",
     "Unrecognized or Failed Command"},
    {FailureKind::FailedReply, "a parameter has no NAME or no VALUE", "Unrecognized or Failed Command"},
};

}  // namespace

const CommandReference kGetOptionsReference = {
    .reply = kOptions,
    .exampleReply =
        "<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>cmbLanguage</NAME><VALUE>English</VALUE>"
        "</PARAMETER><PARAMETER><NAME>cmbUnitOfMeasure</NAME><VALUE>Imperial</VALUE></PARAMETER><PARAMETER>"
        "<NAME>txtReportFooter</NAME><VALUE>Selections are subject to review</VALUE></PARAMETER><PARAMETER>"
        "<NAME>chkShowPrices</NAME><VALUE>1</VALUE></PARAMETER><PARAMETER><NAME>cmbPaperSize</NAME>"
        "<VALUE>Letter</VALUE></PARAMETER></COMMAND>",
    .failures = kGetFailures};

const CommandReference kSetOptionsReference = {.parameters = kSetParameters,
                                               .others = OtherParameters::Options,
                                               .exampleReply = kSuccessExample,
                                               .failures = kSetFailures};

}  // namespace parvex
