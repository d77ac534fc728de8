#include "cli/command_line/help_text.h"

#include <cstddef>
#include <string_view>

#include "cli/command_line/command_tree.h"
#include "cli/host/exit_status.h"
#include "cli/reference/described_command.h"
#include "formats/text/closest_name.h"

namespace parvex::cli {
namespace {

const CLI::App* ChildOf(const CLI::App& node, const std::string& name) {
  for (const CLI::App* child : node.get_subcommands(nullptr)) {
    if (child->get_name() == name) {
      return child;
    }
  }
  return nullptr;
}

std::string DidYouMean(std::string_view misspelt, const std::vector<std::string>& names) {
  const std::vector<std::string_view> views(names.begin(), names.end());
  const std::string_view meant = ClosestName(misspelt, views);
  return meant.empty() ? "" : "; did you mean \"" + std::string(meant) + "\"?";
}

std::string NoSuchSubcommand(const CLI::App& node, const std::string& path, const std::string& word) {
  std::vector<std::string> names;
  for (const CLI::App* child : node.get_subcommands(nullptr)) {
    names.push_back(child->get_name());
  }
  const bool isOfProtocol = path.empty() && FindDescribed(word).entry != nullptr;
  return "there is no command \"" + (path.empty() ? "" : path.substr(1) + " ") + word + "\"" +
         (isOfProtocol ? "; it is one of the protocol, and \"parvex commands " + word + "\" tells about it"
                       : DidYouMean(word, names));
}

// The option that a word names, of a command or of the program, whose options stand anywhere; null when there is none.
const CLI::Option* OptionOf(const CLI::App& program, const CLI::App& node, const std::string& name) {
  for (const CLI::App* owner : {&node, &program}) {
    if (const CLI::Option* option = owner->get_option_no_throw(name)) {
      return option;
    }
  }
  return nullptr;
}

std::string NoSuchOption(const CLI::App& program, const CLI::App& node, const std::string& path,
                         const std::string& name) {
  std::vector<std::string> names;
  for (const CLI::App* owner : {&node, &program}) {
    for (const CLI::Option* option : OptionsOf(*owner)) {
      for (const std::string& one : option->get_lnames()) {
        names.push_back("--" + one);
      }
    }
  }
  return "\"parvex" + path + "\" has no option \"" + name + "\"" + DidYouMean(name, names);
}

// Follows the arguments down the tree of commands, up to what is misspelt.
class Walk {
 public:
  Walk(const CLI::App& program, const std::vector<std::string>& arguments)
      : program_(program), node_(&program), arguments_(arguments) {}

  Misuse Explain(const std::string& reason) {
    std::string misspelling;
    for (at_ = 0; at_ < arguments_.size() && misspelling.empty(); ++at_) {
      const std::string& word = arguments_[at_];
      if (word == "--") {
        break;
      }
      misspelling = word.size() > 1 && word[0] == '-' ? LookAtOption(word) : LookAtWord(word);
    }
    return {misspelling.empty() ? reason : misspelling, "parvex" + path_ + " --help"};
  }

 private:
  std::string LookAtWord(const std::string& word) {
    if (node_->get_subcommands(nullptr).empty()) {
      return "";  // an argument of the command
    }
    const CLI::App* child = ChildOf(*node_, word);
    if (child == nullptr) {
      return NoSuchSubcommand(*node_, path_, word);
    }
    node_ = child;
    path_ += " " + word;
    return "";
  }

  std::string LookAtOption(const std::string& word) {
    const bool isLong = word[1] == '-';
    const std::string name = isLong ? word.substr(0, word.find('=')) : word.substr(0, 2);
    const CLI::Option* option = OptionOf(program_, *node_, name);
    if (option == nullptr) {
      return isLong ? NoSuchOption(program_, *node_, path_, name) : "";
    }
    const bool hasValue = isLong ? name != word : word.size() > 2;
    if (TakesValue(*option) && !hasValue) {
      ++at_;
    }
    return "";
  }

  const CLI::App& program_;
  const CLI::App* node_;
  std::string path_;  // as typed behind the program's name, a blank before each word
  const std::vector<std::string>& arguments_;
  std::size_t at_ = 0;
};

}  // namespace

std::string HelpAbout(const CLI::App& program, const std::vector<std::string>& words) {
  const CLI::App* node = &program;
  std::string path;
  for (const std::string& word : words) {
    const CLI::App* child = ChildOf(*node, word);
    if (child == nullptr) {
      throw UsageError(NoSuchSubcommand(*node, path, word));
    }
    node = child;
    path += " " + word;
  }
  return program.get_formatter()->make_help(node, "parvex" + path, CLI::AppFormatMode::Normal);
}

Misuse ExplainMisuse(const CLI::App& program, const std::vector<std::string>& arguments, const std::string& reason) {
  return Walk(program, arguments).Explain(reason);
}

}  // namespace parvex::cli
