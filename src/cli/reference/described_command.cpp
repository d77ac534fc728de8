#include "cli/reference/described_command.h"

#include <algorithm>
#include <sstream>

#include "formats/text/closest_name.h"
#include "formats/text/escaped_markup.h"

namespace parvex::cli {
namespace {

std::string_view MeantCommand(std::string_view name) {
  std::vector<std::string_view> names;
  for (const DescribedCommand& command : DescribedCommands()) {
    names.push_back(command.entry->name);
  }
  return ClosestName(name, names);
}

std::string ParameterLines(const ParameterReference& parameter) {
  std::string text = "  <PARAMETER><NAME>" + std::string(parameter.name) + "</NAME>";
  if (parameter.isMarkup) {
    return text + "<VALUE>" + std::string(parameter.example) + "</VALUE></PARAMETER>\n";
  }
  std::istringstream values{std::string(parameter.example)};
  for (std::string value; std::getline(values, value);) {
    text += "<VALUE>" + EscapedMarkup(value) + "</VALUE>";
  }
  return text + "</PARAMETER>\n";
}

}  // namespace

std::vector<DescribedCommand> DescribedCommands() {
  std::vector<DescribedCommand> commands;
  for (const CommandEntry& entry : PullCommands()) {
    commands.push_back({&entry, true, false});
  }
  for (const CommandEntry& entry : PullNgorlaCommands()) {
    const auto known = std::ranges::find_if(
        commands, [&](const DescribedCommand& command) { return command.entry->name == entry.name; });
    if (known == commands.end()) {
      commands.push_back({&entry, false, true});
    } else {
      known->byPullNgorla = true;
    }
  }
  return commands;
}

DescribedCommand FindDescribed(std::string_view name) {
  for (const DescribedCommand& command : DescribedCommands()) {
    if (command.entry->name == name) {
      return command;
    }
  }
  return {nullptr, false, false};
}

std::string EntryPointsOf(const DescribedCommand& command) {
  std::string text = command.byPull ? "Pull (parvex pull)" : "";
  if (command.byPullNgorla) {
    text += (text.empty() ? "" : ", ") + std::string("PullNGORLA (parvex pull-ngorla)");
  }
  return text;
}

std::string NoSuchCommand(std::string_view name) {
  const std::string_view meant = MeantCommand(name);
  return "there is no command \"" + std::string(name) + "\"" +
         (meant.empty() ? "; \"parvex commands\" lists them" : "; did you mean \"" + std::string(meant) + "\"?");
}

std::string HintAbout(std::string_view name, bool throughPull) {
  const DescribedCommand command = FindDescribed(name);
  if (command.entry == nullptr) {
    return MeantCommand(name).empty() ? "" : NoSuchCommand(name);
  }
  const bool isServed = throughPull ? command.byPull : command.byPullNgorla;
  return isServed ? "" : "\"" + std::string(name) + "\" is served by " + EntryPointsOf(command) + " only";
}

std::string ExampleRequest(const DescribedCommand& command) {
  std::string text = "<COMMAND>\n  <NAME>" + std::string(command.entry->name) + "</NAME>\n";
  for (const ParameterReference& parameter : command.Reference().parameters) {
    if (!parameter.example.empty()) {
      text += ParameterLines(parameter);
    }
  }
  if (!command.Reference().wrappedExample.empty()) {
    text +=
        "  <PARAMETERS><PARAMETER>" + std::string(command.Reference().wrappedExample) + "</PARAMETER></PARAMETERS>\n";
  }
  return text + "</COMMAND>\n";
}

}  // namespace parvex::cli
