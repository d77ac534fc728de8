#include <algorithm>
#include <vector>

#include "cli/open/content.h"
#include "cli/quote/quote.h"
#include "cli/quote/quote_json.h"
#include "cli/reference/described_command.h"
#include "codec/bin_encoder.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

// Files of the legacy application and its answers, by the name of their root.
struct KnownRoot {
  const char* root;
  const char* kind;
  const char* what;
};
constexpr KnownRoot kKnownRoots[] = {
    {"SAPDATA", "order-configuration", "an order configuration"},
    {"SapData", "order-configuration", "an order configuration"},
    {"UserSelectionTransfer", "selection-request", "what the quote builder is asked to select"},
    {"TagUpdateInfo", "tag-update-info", "what is kept when a tag is brought up to date"},
    {"CustomReports", "custom-reports", "the reports of a builder"},
    {"ReportDefinition", "report-definition", "the definition of a report"},
};

// An outline of elements goes as far down.
constexpr int kDeepestElement = 30;

bool MayBeMarkup(std::string_view bytes) {
  constexpr std::string_view kMarks[] = {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"};
  for (const std::string_view mark : kMarks) {
    if (bytes.starts_with(mark)) {
      bytes.remove_prefix(mark.size());
      break;
    }
  }
  const std::size_t first = bytes.find_first_not_of(std::string_view("\0 \t\r\n", 5));
  return first != bytes.npos && bytes[first] == '<';
}

// Every element that has a text of its own or attributes, in the order of the document.
class Outline {
 public:
  Outline(Json& members, Looking& looking) : members_(members), looking_(looking) {
    members_["elements"] = Json::array();
  }
  void Add(const xml::Node& element, const std::string& parent, int depth) {
    looking_.TakeItem();
    const std::string path = parent.empty() ? element.Name() : parent + "/" + element.Name();
    Json attributes = Json::array();
    for (const xml::Node& attribute : element.All("@*")) {
      if (!looking_.TakeItem()) {
        break;
      }
      attributes.push_back({{"name", ShownText(attribute.Name())}, {"value", ShownText(attribute.Text())}});
    }
    const std::vector<xml::Node> children = element.All("*");
    const std::string text = children.empty() ? element.Text() : std::string();
    if (!text.empty() || !attributes.empty()) {
      AddLine(path, text, std::move(attributes));
    }
    std::size_t added = 0;
    while (added < children.size() && looking_.items > 0 && depth < kDeepestElement) {
      Add(children[added++], path, depth + 1);
    }
    if (added < children.size()) {
      members_["leftOut"] = members_.value("leftOut", std::size_t{0}) + children.size() - added;
    }
  }

 private:
  void AddLine(const std::string& path, const std::string& text, Json attributes) {
    Json line = {{"path", ShownText(path)}};
    if (!text.empty()) {
      line["text"] = ShownText(text);
    }
    if (!attributes.empty()) {
      line["attributes"] = std::move(attributes);
    }
    members_["elements"].push_back(std::move(line));
  }

  Json& members_;
  Looking& looking_;
};

Json StoredDataOf(const QuoteTag& tag, Looking& looking) {
  const std::string bytes = DecodeBase64(tag.storedData);
  Json stored = {{"bytes", bytes.size()}};
  if (!bytes.empty()) {
    stored.update(InnerContent(bytes, "the stored data of " + ShownText(tag.markFor), looking));
  }
  return stored;
}

Json TagOf(const QuoteTag& tag, Looking& looking) {
  Json listed = {{"markFor", ShownText(tag.markFor)},       {"pdsg", ShownText(tag.pdsg)},
                 {"tagId", ShownText(tag.legacyTagId)},     {"buildVersion", ShownText(tag.buildVersion)},
                 {"total", TotalJson(TotalOf(tag))},        {"unitCount", tag.units.size()},
                 {"storedData", StoredDataOf(tag, looking)}};
  AddAll(listed, "orderConfigurations", tag.units, looking, [&](const QuoteUnit& unit) {
    Json found = {{"partNumber", ShownText(unit.partNumber)}};
    if (!unit.orderConfiguration.empty()) {
      found.update(InnerContent(unit.orderConfiguration, "the order configuration of " + unit.partNumber, looking));
    }
    return found;
  });
  auto& units = listed["orderConfigurations"];
  units.erase(std::remove_if(units.begin(), units.end(), [](const Json& unit) { return !unit.contains("kind"); }),
              units.end());
  return listed;
}

Content QuoteContent(const xml::Document& document, const std::string& name, Looking& looking) {
  const Quote quote = ReadQuote(document, name);
  Content content = {.kind = "quote", .what = "a quote (Hybris document)", .members = Json::object()};
  content.members["project"] = ShownText(quote.project);
  content.members["total"] = TotalJson(TotalOf(quote));
  content.members["tagCount"] = quote.tags.size();
  AddAll(content.members, "tags", quote.tags, looking, [&](const QuoteTag& tag) { return TagOf(tag, looking); });
  return content;
}

Content CommandContent(const xml::Node& command, Looking& looking) {
  Content content = {.kind = "command", .what = "a command document", .members = Json::object()};
  const std::string name = command.Child("NAME").Text();
  const DescribedCommand described = FindDescribed(name);
  content.members["command"] = ShownText(name);
  content.members["served"] = described.entry == nullptr ? "by no entry point" : "by " + EntryPointsOf(described);
  AddAll(content.members, "parameters", command.All(".//PARAMETER[NAME]"), looking, [](const xml::Node& parameter) {
    const xml::Node value = parameter.Child("VALUE");
    return Json{{"name", ShownText(parameter.Child("NAME").Text())}, {"value", value ? ShownText(value.Text()) : ""}};
  });
  return content;
}

Content EnvelopeContent(const xml::Document& reply, Looking& looking) {
  Content content = {.kind = "reply", .what = "a reply", .members = Json::object()};
  if (IsFailedReply(reply)) {
    content.kind = "failed-reply";
    content.what = "the reply of a command that failed";
  }
  Outline(content.members, looking).Add(reply.Root(), "", 0);
  return content;
}

// The commands whose reply has this root.
Json CommandsAnsweredBy(const std::string& root) {
  Json commands = Json::array();
  for (const DescribedCommand& command : DescribedCommands()) {
    const auto& reply = command.Reference().reply;
    if (!reply.empty() && reply.front().name == root) {
      commands.push_back(std::string(command.entry->name));
    }
  }
  return commands;
}

Content OtherContent(const xml::Document& document, Looking& looking) {
  const xml::Node root = document.Root();
  const std::string name = root.Name();
  Content content = {.kind = "xml", .what = "an XML document of no known kind", .members = Json::object()};
  content.members["root"] = ShownText(name);
  const auto known = std::ranges::find(kKnownRoots, name, [](const KnownRoot& one) { return std::string(one.root); });
  if (known != std::end(kKnownRoots)) {
    content.kind = known->kind;
    content.what = known->what;
  } else if (name == "Tools") {
    const bool hasOptions = static_cast<bool>(root.Descendant("Option"));
    content.kind = hasOptions ? "options" : "tools";
    content.what = hasOptions ? "the options" : "the list of product families";
  } else if (root.Descendant("Product")) {
    content.kind = "stored-tag";
    content.what = "a tag as the legacy application keeps it";
  } else if (Json commands = CommandsAnsweredBy(name); !commands.empty()) {
    content.kind = "reply";
    content.what = "a reply";
    content.members["answers"] = std::move(commands);
  }
  Outline(content.members, looking).Add(root, "", 0);
  return content;
}

}  // namespace

std::optional<Content> XmlContent(std::string_view bytes, const std::string& name, Looking& looking) {
  if (!MayBeMarkup(bytes)) {
    return std::nullopt;
  }
  const xml::Document document = xml::Document::Load(bytes);
  if (document.IsEmpty()) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           FailureText("the document", name, "it is no XML: " + document.ParseError()));
  }
  const xml::Node root = document.Root();
  if (root.Name() == "PROJECT") {
    return QuoteContent(document, name, looking);
  }
  if (root.Name() == "LegacyORLA") {
    return EnvelopeContent(document, looking);
  }
  const xml::Node command = root.Name() == "COMMAND" ? root : root.Descendant("COMMAND");
  if (command && command.Child("NAME")) {
    return CommandContent(command, looking);
  }
  return OtherContent(document, looking);
}

}  // namespace parvex::cli
