#include "cli/command_line/bash_completion.h"

#include <map>
#include <set>

#include "cli/command_line/command_tree.h"
#include "cli/reference/described_command.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) {
    names.push_back("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    names.push_back("--" + name);
  }
  return names;
}

void Append(std::string& list, const std::string& separator, const std::string& item) {
  list += (list.empty() ? "" : separator) + item;
}

// The words that an argument may be, where they are known.
std::vector<std::string> WordsOf(const CLI::App& program, const std::string& positional) {
  std::vector<std::string> words;
  if (positional == "COMMAND") {
    for (const DescribedCommand& command : DescribedCommands()) {
      words.emplace_back(command.entry->name);
    }
  } else if (positional == "SUBCOMMAND") {
    for (const CLI::App* child : program.get_subcommands(nullptr)) {
      words.push_back(child->get_name());
    }
  }
  return words;
}

// The options of the program itself, which may stand behind every command.
std::vector<std::string> OptionsEverywhere(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::Option* option : OptionsOf(program)) {
    if (TakesValue(*option)) {
      for (const std::string& name : NamesOf(*option)) {
        names.push_back(name);
      }
    }
  }
  return names;
}

// What an option's value or an argument is: the switch of compgen that lists candidates, empty where nothing can be. A
// kind "one|other" lists the only words.
std::string CandidatesOf(const std::string& kind) {
  if (kind.find('|') != std::string::npos) {
    return "-W '" + ReplaceAll(kind, "|", " ") + "'";
  }
  return kind == "FILE" || kind == "LATER" || kind == "TYPELIB" ? "-f" : kind == "DIR" ? "-d" : "";
}

// The patterns of the options that take a value, over all commands, by what their values are.
std::map<std::string, std::string> OptionPatterns(const CLI::App& program) {
  std::map<std::string, std::set<std::string>> names;
  for (const CommandPath& node : NodesOf(program)) {
    for (const CLI::Option* option : OptionsOf(*node.command)) {
      if (PositionalName(*option).empty() && TakesValue(*option)) {
        for (const std::string& name : NamesOf(*option)) {
          names[CandidatesOf(option->get_type_name())].insert(name);
        }
      }
    }
  }
  std::map<std::string, std::string> patterns;
  for (const auto& [candidates, options] : names) {
    for (const std::string& name : options) {
      Append(patterns[candidates], "|", name);
    }
  }
  return patterns;
}

// One branch of the last case: what may stand behind a command.
std::string Branch(const CLI::App& program, const CommandPath& node) {
  std::string words;
  std::string candidates;
  for (const CLI::App* child : node.command->get_subcommands(nullptr)) {
    Append(words, " ", child->get_name());
  }
  for (const CLI::Option* option : OptionsOf(*node.command)) {
    const std::string positional = PositionalName(*option);
    if (!positional.empty()) {
      candidates = CandidatesOf(positional);
      for (const std::string& word : WordsOf(program, positional)) {
        Append(words, " ", word);
      }
    }
    for (const std::string& name : NamesOf(*option)) {
      Append(words, " ", name);
    }
  }
  if (!node.words.empty()) {
    for (const std::string& name : OptionsEverywhere(program)) {
      Append(words, " ", name);
    }
  }
  return "    '" + node.words + "') words='" + words + "' candidates='" + candidates + "' ;;\n";
}

}  // namespace

std::string BashCompletion(const CLI::App& program) {
  std::string options;
  std::string values;
  for (const auto& [candidates, patterns] : OptionPatterns(program)) {
    Append(options, "|", patterns);
    values +=
        "    " + patterns + ") " +
        (candidates.empty() ? "COMPREPLY=()" : "mapfile -t COMPREPLY < <(compgen " + candidates + " -- \"$word\")") +
        "; return ;;\n";
  }
  std::string paths;
  std::string branches;
  for (const CommandPath& node : NodesOf(program)) {
    if (!node.words.empty()) {
      Append(paths, "|", "'" + node.words + "'");
    }
    branches += Branch(program, node);
  }
  return "# Completion of parvex for bash, as \"parvex completion\" prints it.\n"
         "_parvex() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local command='' words='' candidates='' i\n"
         "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
         "    case ${COMP_WORDS[i]} in\n"
         "      " +
         options +
         ") ((i++)) ;;\n"
         "      *) case \"$command ${COMP_WORDS[i]}\" in\n"
         "        " +
         paths +
         ") command+=\" ${COMP_WORDS[i]}\" ;;\n"
         "      esac ;;\n"
         "    esac\n"
         "  done\n"
         "  case $before in\n" +
         values +
         "  esac\n"
         "  case $command in\n" +
         branches +
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen $candidates -W \"$words\" -- \"$word\")\n"
         "}\n"
         "complete -o filenames -F _parvex parvex\n";
}

}  // namespace parvex::cli
