#include "cli/commands/return_command.h"

#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/quote/quote_file.h"
#include "cli/session/consumer.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"
#include "codec/bin_encoder.h"
#include "formats/text/closest_name.h"
#include "formats/text/text.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/install_paths.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

std::string NameOf(const xml::Node& tag) {
  const xml::Node attributes = tag.Child("ATTRIBUTES_LIST");
  const xml::Node markFor = attributes ? attributes.Child("MARKFOR") : xml::Node();
  return markFor ? markFor.Text() : std::string();
}

// The place that a text of digits, perhaps behind "#", means among so many tags; 0 for any other text.
std::size_t PlaceIn(std::string_view text, std::size_t count) {
  text.remove_prefix(text.starts_with('#') ? 1 : 0);
  std::size_t place = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), place);
  return error == std::errc() && end == text.data() + text.size() && place <= count ? place : 0;
}

// The places of the tags that have a name, from 1.
std::vector<std::size_t> PlacesOf(std::string_view name, const std::vector<std::string>& names) {
  std::vector<std::size_t> places;
  for (std::size_t place = 1; place <= names.size(); ++place) {
    if (names[place - 1] == name) {
      places.push_back(place);
    }
  }
  return places;
}

std::string Listed(const std::vector<std::size_t>& places) {
  constexpr std::size_t kMost = 5;
  std::string text;
  for (std::size_t i = 0; i < places.size() && i < kMost; ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(places[i]);
  }
  return places.size() > kMost ? text + " and so on" : text;
}

std::size_t ChoosePlace(const std::string& file, const std::string& wanted, const std::vector<std::string>& names) {
  const std::size_t place = PlaceIn(wanted, names.size());
  std::vector<std::size_t> meant = PlacesOf(wanted, names);
  if (meant.size() > 1) {
    throw UsageError(file + " has several tags \"" + wanted + "\": say which by its place, " + Listed(meant));
  }
  if (meant.empty() && place == 0) {
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view likely = ClosestName(wanted, views);
    throw UsageError(file + " has no tag \"" + wanted + "\"" +
                     (likely.empty() ? ", it holds " + std::to_string(names.size())
                                     : "; did you mean \"" + std::string(likely) + "\"?"));
  }
  if (!meant.empty() && place != 0 && place != meant.front()) {
    throw UsageError("\"" + wanted + "\" is the name of tag " + std::to_string(meant.front()) + " of " + file +
                     " and the place of another: say \"#" + std::to_string(meant.front()) + "\" or \"#" +
                     std::to_string(place) + "\"");
  }
  return meant.empty() ? place : meant.front();
}

xml::Node ChooseTag(const xml::Document& document, const ReturnOptions& options) {
  const std::vector<xml::Node> tags = document.All("/PROJECT/TAGS/TAG");
  if (tags.empty()) {
    throw UsageError(options.file + " holds no tag");
  }
  if (!options.tag) {
    if (tags.size() > 1) {
      throw UsageError(options.file + " holds " + std::to_string(tags.size()) +
                       " tags: say with --tag which one, by its name or its place (\"parvex show\" tells both)");
    }
    return tags.front();
  }
  std::vector<std::string> names;
  names.reserve(tags.size());
  for (const xml::Node& tag : tags) {
    names.push_back(NameOf(tag));
  }
  return tags[ChoosePlace(options.file, *options.tag, names) - 1];
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
