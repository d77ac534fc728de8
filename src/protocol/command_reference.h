#pragma once

#include <span>
#include <string_view>

namespace parvex {

// What the commands of the protocol take and give, for people and for tools: `parvex commands`, `parvex lint`, the
// schemas and the reference pages are made of it. Each handler's part stands beside the handler, and the command
// tables put the parts together. All texts are UTF-8 and live as long as the program; examples are from the sample
// machine, and run on it.

/// A PARAMETER of a command document.
struct ParameterReference {
  std::string_view name;     ///< letter case counts
  std::string_view meaning;  ///< half a sentence for people
  /// Whether a command that lacks it, or has it empty, cannot do what it is for. Handlers hardly check it themselves.
  bool isNeeded = true;
  /// The VALUE in the example; none is left out there. Several values of one parameter are parted by line feeds.
  std::string_view example = {};
  /// Whether the example is markup, which stands in VALUE as elements.
  bool isMarkup = false;
};

/// What becomes of parameters that the reference does not name.
enum class OtherParameters {
  Ignored,    ///< nobody reads them
  Forwarded,  ///< they go to the legacy application as they stand
  Options     ///< each sets the option of its name in Options.xml
};

/// How often an element stands in its parent.
enum class Occurs { Once, Optional, AnyNumber, AtLeastOnce };

enum class Content {
  Elements,  ///< the elements that follow on the next level, in that order, and no text
  AnyOrder,  ///< the elements that follow on the next level, in any order and number, and no text
  Text,
  Open  ///< the legacy application's own: the elements that follow are what it usually has, others may stand there
};

/// An element of a document. A list of them is the document in the order of its start tags, the root first.
struct ElementReference {
  int level;  ///< 0 for a root, one more than its parent's for any other
  std::string_view name;
  Content content = Content::Text;
  std::string_view meaning = {};
  Occurs occurs = Occurs::Once;
  std::string_view attributes = {};     ///< their names, a blank between; "?" behind those that may be missing
  std::string_view values = {};         ///< the only texts that it has, "|" between; empty for any text
  std::string_view neededBy = {};       ///< of an optional one: the parameter by which it is needed all the same,
  std::string_view neededByValue = {};  ///< when that has this value
};

/// How a caller sees that a command did not do what it is for.
enum class FailureKind {
  FailedReply,      ///< returnError is "-1" and errorMessage begins with the text
  ToldInReply,      ///< returnError is the text itself
  IncompleteReply,  ///< a reply as always but for what the text says
  NoDocument,       ///< there is no reply document
  CallEnds          ///< the call ends with an automation error
};

struct FailureReference {
  FailureKind kind;
  std::string_view cause;
  std::string_view text = {};  ///< see FailureKind; of a call that ends, the description where it is always the same
  int number = 0;              ///< of a call that ends: 0x800A0000 plus this; 0 where others choose it
};

struct CommandReference {
  std::span<const ParameterReference> parameters = {};
  OtherParameters others = OtherParameters::Ignored;
  /// Elements that the handler looks for wherever they stand in the command; one of level 0 after the other.
  std::span<const ElementReference> elements = {};
  /// The example's content of PARAMETERS/PARAMETER, for the one command that wraps its parameters so; markup.
  std::string_view wrappedExample = {};
  /// Empty where the envelope is the only reply.
  std::span<const ElementReference> reply = {};
  /// What the sample machine answers to the example, as it stands on the line; "..." stands for a text left out.
  std::string_view exampleReply;
  std::span<const FailureReference> failures;
  /// A command whose own example has to be carried out before this one's; empty for none.
  std::string_view runsAfter = {};
};

/// The envelope, which is the reply of commands that have no document of their own, and of every failed one.
inline constexpr ElementReference kEnvelopeReference[] = {
    {0, "LegacyORLA", Content::Elements, "the envelope"},
    {1, "returnError", Content::Text, "0, -1 for a failed command, or words where a report command tells by them",
     Occurs::Once, "", "0|-1|No Error|No Report was generated|No Report names were specified"},
    {1, "errorMessage", Content::Text, "why it failed"},
};

inline constexpr std::string_view kSuccessExample =
    "<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>";

/// What every command that is forwarded may answer with.
inline constexpr FailureReference kRefusedReference = {FailureKind::FailedReply, "the legacy application refuses",
                                                       "Unrecognized or Failed Command"};
inline constexpr FailureReference kRouterFailsReference = {
    FailureKind::CallEnds, "the legacy application's message router itself fails, with its own error"};

}  // namespace parvex
