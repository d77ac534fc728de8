#include <nlohmann/json.hpp>
#include <vector>

#include "cli/reference/command_text.h"

namespace parvex::cli {
namespace {

using Json = nlohmann::ordered_json;

Json Parameters(std::span<const ParameterReference> parameters) {
  Json list = Json::array();
  for (const ParameterReference& parameter : parameters) {
    list.push_back({{"name", parameter.name},
                    {"meaning", parameter.meaning},
                    {"needed", parameter.isNeeded},
                    {"example", parameter.example}});
  }
  return list;
}

const char* NameOf(OtherParameters others) {
  return others == OtherParameters::Ignored     ? "ignored"
         : others == OtherParameters::Forwarded ? "forwarded"
                                                : "options";
}

const char* NameOf(Occurs occurs) {
  constexpr const char* kNames[] = {"once", "optional", "any", "some"};
  return kNames[static_cast<int>(occurs)];
}

const char* NameOf(Content content) {
  constexpr const char* kNames[] = {"elements", "anyOrder", "text", "open"};
  return kNames[static_cast<int>(content)];
}

const char* NameOf(FailureKind kind) {
  constexpr const char* kNames[] = {"failedReply", "toldInReply", "incompleteReply", "noDocument", "callEnds"};
  return kNames[static_cast<int>(kind)];
}

// Parts of a list between separators; nothing for an empty list.
Json Parts(std::string_view list, char separator) {
  Json parts = Json::array();
  for (std::size_t end = 0; !list.empty() && end != std::string_view::npos;) {
    end = list.find(separator);
    parts.push_back(list.substr(0, end));
    if (end != std::string_view::npos) {
      list.remove_prefix(end + 1);
      if (list.empty()) {
        parts.push_back("");
      }
    }
  }
  return parts;
}

Json Elements(std::span<const ElementReference> elements) {
  Json list = Json::array();
  std::vector<std::string> path;
  for (const ElementReference& element : elements) {
    path.resize(static_cast<std::size_t>(element.level));
    path.emplace_back(element.name);
    std::string joined;
    for (const std::string& name : path) {
      joined += (joined.empty() ? "" : "/") + name;
    }
    list.push_back({{"path", joined},
                    {"occurs", NameOf(element.occurs)},
                    {"content", NameOf(element.content)},
                    {"meaning", element.meaning},
                    {"attributes", Parts(element.attributes, ' ')},
                    {"values", Parts(element.values, '|')},
                    {"neededBy", element.neededBy},
                    {"neededByValue", element.neededByValue}});
  }
  return list;
}

Json Failures(std::span<const FailureReference> failures) {
  Json list = Json::array();
  for (const FailureReference& failure : failures) {
    list.push_back(
        {{"kind", NameOf(failure.kind)}, {"cause", failure.cause}, {"text", failure.text}, {"number", failure.number}});
  }
  return list;
}

Json AsJson(const DescribedCommand& command) {
  const CommandReference& reference = command.Reference();
  Json entryPoints = Json::array();
  if (command.byPull) {
    entryPoints.push_back("Pull");
  }
  if (command.byPullNgorla) {
    entryPoints.push_back("PullNGORLA");
  }
  const auto reply = reference.reply.empty() ? std::span<const ElementReference>(kEnvelopeReference) : reference.reply;
  return {{"name", command.entry->name},
          {"summary", command.entry->summary},
          {"entryPoints", entryPoints},
          {"parameters", Parameters(reference.parameters)},
          {"otherParameters", NameOf(reference.others)},
          {"elements", Elements(reference.elements)},
          {"request", ExampleRequest(command)},
          {"runsAfter", reference.runsAfter},
          {"reply", {{"elements", Elements(reply)}, {"example", reference.exampleReply}}},
          {"failures", Failures(reference.failures)}};
}

}  // namespace

std::string CommandAsJson(const DescribedCommand& command) { return AsJson(command).dump(2) + "\n"; }

std::string AllCommandsAsJson() {
  Json all = Json::array();
  for (const DescribedCommand& command : DescribedCommands()) {
    all.push_back(AsJson(command));
  }
  return all.dump(2) + "\n";
}

}  // namespace parvex::cli
