#include "cli/commands/return_command.h"

#include <vector>

#include "cli/quote/quote_file.h"
#include "cli/session/consumer.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"
#include "interface/legacy_orla_pull.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

xml::Node ChooseTag(const xml::Document& document, const ReturnOptions& options) {
  const std::vector<xml::Node> tags = document.All("/PROJECT/TAGS/TAG");
  const std::string count = std::to_string(tags.size());
  if (tags.empty()) {
    throw UsageError(options.file + " holds no tag");
  }
  if (!options.tag && tags.size() > 1) {
    throw UsageError(options.file + " holds " + count +
                     " tags: say with --tag which one (\"parvex show\" numbers them)");
  }
  const std::size_t number = options.tag.value_or(1);
  if (number < 1 || number > tags.size()) {
    throw UsageError(options.file + " has no tag " + std::to_string(number) + ", it holds " + count);
  }
  return tags[number - 1];
}

std::string MakeCommand(const xml::Node& tag) {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG/></TAGS></PROJECT></PARAMETER>"
      "</PARAMETERS></COMMAND>");
  if (const xml::Node attributes = tag.Child("ATTRIBUTES_LIST")) {
    command.First("//TAG").Append(attributes);
  }
  return command.Xml();
}

}  // namespace

ExitStatus Return(const SessionOptions& sessionOptions, const ReturnOptions& options) {
  const xml::Document document = ReadQuoteDocument(options.file);
  const std::string command = MakeCommand(ChooseTag(document, options));
  Session session(sessionOptions);
  const std::string reply = [&] {
    LegacyORLAPull pull(session.Platform(), session.Recorder());
    pull.SetConsumer(MakeConsumer());
    return pull.PullNGORLA(command);
  }();
  session.Close();
  if (const std::optional<std::string> failure = FailureIn(reply)) {
    TellError("the tag of " + options.file + " was not brought back: " + *failure);
    return kFailedReply;
  }
  return kReply;
}

}  // namespace parvex::cli
