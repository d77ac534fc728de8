#include "cli/command_line/manual_page.h"

#include "cli/command_line/command_tree.h"
#include "version.h"

namespace parvex::cli {
namespace {

constexpr const char* kDescription =
    "A command is an XML document, and so is the reply. The program carries commands out against an installed legacy "
    "selection application. On Linux the machine that it is installed on is a folder with registry.reg and drive_c, "
    "laid out as a Wine prefix is; on Windows it is the machine that the program runs on.";

constexpr const char* kEnvironment =
    ".TP\n.B PARVEX_MACHINE\nThe folder that stands for the machine, when --machine does not name one.\n"
    ".TP\n.B NO_COLOR\nWhen it is set and not empty, nothing is coloured. Colours and the progress of an export are\n"
    "shown on terminals only.\n";

constexpr const char* kExamples =
    ".nf\n"
    "parvex machine create demo\n"
    "parvex --machine demo doctor\n"
    "parvex --machine demo export --project \"Riverside Clinic\" -o quote.xml\n"
    "parvex show quote.xml --html quote.html\n"
    "parvex --machine demo return quote.xml --tag 1\n"
    ".fi\n";

// Text that stands for itself, on a line of its own.
std::string Escaped(const std::string& text) {
  std::string escaped;
  bool atLineStart = true;
  for (const char c : text) {
    if (atLineStart && (c == '.' || c == '\'')) {
      escaped += "\\&";
    }
    escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    atLineStart = c == '\n';
  }
  return escaped;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return text.empty() ? "" : "\\fI" + Escaped(text) + "\\fR"; }

std::string OptionTerm(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) {
    names += (names.empty() ? "" : ", ") + Bold("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    names += (names.empty() ? "" : ", ") + Bold("--" + name);
  }
  if (names.empty()) {
    return Italic(PositionalName(option));
  }
  const std::string value = TakesValue(option) ? " " + Italic(option.get_type_name()) : "";
  return names + value;
}

bool IsHelp(const CLI::Option& option) { return option.check_lname("help"); }

std::string OptionList(const CLI::App& command, bool withHelp) {
  std::string list;
  for (const CLI::Option* option : OptionsOf(command)) {
    if (withHelp || !IsHelp(*option)) {
      list += ".TP\n" + OptionTerm(*option) + "\n" + Escaped(option->get_description()) + "\n";
    }
  }
  return list;
}

std::string Usage(const CommandPath& path) {
  std::string usage = Bold("parvex" + path.words);
  for (const CLI::Option* option : OptionsOf(*path.command)) {
    if (!IsHelp(*option)) {
      const std::string written = OptionTerm(*option) + (option->get_items_expected_max() > 1 ? " ..." : "");
      usage += option->get_required() ? " " + written : " [" + written + "]";
    }
  }
  return usage;
}

}  // namespace

std::string ManualPage(const CLI::App& program) {
  std::string page = ".TH PARVEX 1 \"\" \"parvex " PARVEX_VERSION "\" \"Parvex\"\n.SH NAME\nparvex \\- " +
                     Escaped("commands for the projects of an installed legacy selection application") +
                     "\n.SH SYNOPSIS\n" + Bold("parvex") + " [" + Italic("options") + "] " + Italic("command") +
                     " ...\n.SH DESCRIPTION\n" + Escaped(kDescription) + "\n.SH OPTIONS\n" + OptionList(program, true) +
                     ".SH COMMANDS\n";
  for (const CommandPath& path : CommandsOf(program)) {
    page += ".SS " + Usage(path) + "\n" + Escaped(path.command->get_description()) + ".\n" +
            OptionList(*path.command, false);
  }
  return page + ".SH \"EXIT STATUS\"\n" + Escaped(program.get_footer()) + "\n.SH ENVIRONMENT\n" + kEnvironment +
         ".SH EXAMPLES\n" + kExamples;
}

}  // namespace parvex::cli
