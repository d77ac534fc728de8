#include "cli/commands/return_command.h"

#include <vector>

#include "cli/quote/quote_file.h"
#include "cli/session/consumer.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"
#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/install_paths.h"
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

// The text that the way back decodes; nothing for a tag that the protocol refuses.
std::optional<std::string> StoredDataOf(const xml::Node& tag) {
  const xml::Node attributes = tag.Child("ATTRIBUTES_LIST");
  const xml::Node blob = attributes && attributes.Child("PDSG") ? attributes.Child("BLOB") : xml::Node();
  return blob ? std::optional(blob.Text()) : std::nullopt;
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

// Why the tag's stored data would not come back as they were exported; empty when they would. What the protocol refuses
// by itself is left to it.
std::string ProblemOfStoredData(const std::optional<std::string>& text) {
  if (!text) {
    return {};
  }
  if (text->empty()) {
    return "it has no stored data";
  }
  if (EncodeBase64(DecodeBase64(*text)) != ReplaceAll(*text, "\r\n", "")) {
    return "its stored data are no Base64 throughout, and other bytes would be brought back than were exported";
  }
  return {};
}

// Why the legacy application would not find the stored data in the hand-over; empty when it would.
std::string ProblemOfHandOver(const Platform& machine, const std::string& text) {
  const std::string folder = GetDataRoot(machine) + "\\Temp";
  const std::string selection = folder + "\\QPblob.tmp";
  const std::string note = folder + "\\input.ini";
  constexpr std::size_t kLongestPath = 1024;
  if (machine.files->ReadIfFile(selection) != DecodeBase64(text)) {
    return "\"" + selection + "\" does not hold its stored data";
  }
  if (machine.privateProfile->Section("Header", note)->ReadString("Action", "", kLongestPath) != "ok" ||
      machine.privateProfile->Section("Partnumber1", note)->ReadString("filename", "", kLongestPath) != selection) {
    return "\"" + note + "\" does not name \"" + selection + "\"";
  }
  return {};
}

ExitStatus TellProblem(const ReturnOptions& options, const std::string& problem) {
  TellError("the tag of " + options.file + " was not brought back as it was exported: " + problem);
  return kFailedCall;
}

}  // namespace

ExitStatus Return(const SessionOptions& sessionOptions, const ReturnOptions& options) {
  const xml::Document document = ReadQuoteDocument(options.file);
  const xml::Node tag = ChooseTag(document, options);
  const std::optional<std::string> storedData = StoredDataOf(tag);
  const std::string command = MakeCommand(tag);
  Session session(sessionOptions);
  if (const std::string problem = options.lenient ? "" : ProblemOfStoredData(storedData); !problem.empty()) {
    return TellProblem(options, problem);
  }
  const std::string reply = [&] {
    LegacyORLAPull pull(session.Platform(), session.Recorder());
    pull.SetConsumer(MakeConsumer());
    return pull.PullNGORLA(command);
  }();
  const std::optional<std::string> failure = FailureIn(reply);
  const bool isChecked = !options.lenient && !failure && storedData;
  const std::string problem = isChecked ? ProblemOfHandOver(session.Platform(), *storedData) : "";
  session.Close();
  if (failure) {
    TellError("the tag of " + options.file + " was not brought back: " + *failure);
    return kFailedReply;
  }
  return problem.empty() ? kReply : TellProblem(options, problem);
}

}  // namespace parvex::cli
