#include "cli/lint/command_lint.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <set>

#include "cli/lint/placed_elements.h"
#include "cli/reference/described_command.h"
#include "formats/text/closest_name.h"
#include "formats/text/encoded_text.h"
#include "formats/text/text.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// The first element of that name in any letter case, in document order; null when there is none.
const PlacedElement* FindIgnoringCase(const PlacedElement& element, std::string_view name) {
  for (const PlacedElement& child : element.children) {
    if (EqualIgnoringCase(child.name, name)) {
      return &child;
    }
    if (const PlacedElement* below = FindIgnoringCase(child, name)) {
      return below;
    }
  }
  return nullptr;
}

/// The first COMMAND that has a NAME, in document order.
const PlacedElement* FindCommand(const PlacedElement& element) {
  if (element.name == "COMMAND" && element.Child("NAME") != nullptr) {
    return &element;
  }
  for (const PlacedElement& child : element.children) {
    if (const PlacedElement* below = FindCommand(child)) {
      return below;
    }
  }
  return nullptr;
}

std::string_view MeantParameter(const CommandReference& reference, std::string_view name) {
  std::vector<std::string_view> names;
  for (const ParameterReference& parameter : reference.parameters) {
    names.push_back(parameter.name);
  }
  return ClosestName(name, names);
}

class Lint {
 public:
  Lint(std::string_view markup, EntryPoint through) : markup_(markup), through_(through) {}

  LintResult Look() {
    // A document of its own, so that the root is found as any other element is.
    PlacedElement document;
    document.children.push_back(PlacedRoot(markup_));
    LookAt(document);
    Place();
    return std::move(result_);
  }

 private:
  void Tell(const PlacedElement& at, std::string kind, std::string text) {
    found_.push_back({at.offset, {0, 0, std::move(kind), std::move(text)}});
  }

  /// Puts what was found into the order of the text, and counts its lines once for all of it.
  void Place() {
    std::ranges::stable_sort(found_, {}, &Found::offset);
    std::size_t line = 1;
    std::size_t lineStart = 0;
    std::size_t counted = 0;
    for (Found& found : found_) {
      for (; counted < found.offset; ++counted) {
        if (markup_[counted] == '\n') {
          ++line;
          lineStart = counted + 1;
        }
      }
      found.finding.line = line;
      found.finding.column = found.offset - lineStart + 1;
      result_.findings.push_back(std::move(found.finding));
    }
  }

  void LookAt(const PlacedElement& document) {
    const PlacedElement* command = FindCommand(document);
    if (command == nullptr) {
      TellNoCommand(document);
      return;
    }
    const PlacedElement& name = *command->Child("NAME");
    result_.command = name.text;
    const DescribedCommand known = LookAtName(name);
    if (known.entry == nullptr) {
      return;
    }
    result_.entryPoints = EntryPointsOf(known);
    LookAtEntryPoint(name, known);
    LookAtParameters(*command, known.Reference());
    command_ = command;
    LookAtElements(document, *command, known.Reference().elements);
  }

  void TellNoCommand(const PlacedElement& document) {
    const PlacedElement* command = document.Descendant("COMMAND");
    const PlacedElement* alike =
        command != nullptr ? FindIgnoringCase(*command, "NAME") : FindIgnoringCase(document, "COMMAND");
    const PlacedElement& at = alike != nullptr ? *alike : command != nullptr ? *command : document.children.front();
    const std::string needed = command != nullptr ? "NAME" : "COMMAND";
    if (alike != nullptr && alike->name != needed) {
      Tell(at, "letter-case", Quoted(alike->name) + " is not " + Quoted(needed) + ": letter case counts");
    } else {
      Tell(at, "no-command", "there is no COMMAND with a NAME: the call ends with error 91");
    }
  }

  DescribedCommand LookAtName(const PlacedElement& name) {
    const DescribedCommand known = FindDescribed(name.text);
    if (known.entry != nullptr) {
      return known;
    }
    for (const DescribedCommand& command : DescribedCommands()) {
      if (EqualIgnoringCase(command.entry->name, name.text)) {
        Tell(name, "letter-case",
             Quoted(name.text) + " is not " + Quoted(command.entry->name) + ": letter case counts");
        return command;
      }
    }
    Tell(name, "unknown-command", NoSuchCommand(name.text));
    return known;
  }

  void LookAtEntryPoint(const PlacedElement& name, const DescribedCommand& command) {
    if ((through_ == EntryPoint::Pull && !command.byPull) ||
        (through_ == EntryPoint::PullNgorla && !command.byPullNgorla)) {
      Tell(name, "wrong-entry-point",
           Quoted(command.entry->name) + " is served by " + EntryPointsOf(command) + " only");
    }
  }

  void LookAtParameters(const PlacedElement& command, const CommandReference& reference) {
    std::set<std::string, std::less<>> given;
    for (const PlacedElement& child : command.children) {
      if (child.name == "PARAMETER") {
        LookAtParameter(child, reference, given);
      } else if (EqualIgnoringCase(child.name, "PARAMETER")) {
        Tell(child, "letter-case", Quoted(child.name) + " is not \"PARAMETER\": letter case counts");
      } else if (child.name == "PARAMETERS" && reference.wrappedExample.empty()) {
        Tell(child, "unknown-element", "this command's parameters stand in COMMAND, not in PARAMETERS");
      }
    }
    for (const ParameterReference& parameter : reference.parameters) {
      if (parameter.isNeeded && !given.contains(parameter.name)) {
        Tell(command, "missing-parameter",
             "there is no parameter " + Quoted(parameter.name) + ": " + std::string(parameter.meaning));
      }
    }
  }

  /// Adds to `given` the parameter that this one is, or is meant to be.
  void LookAtParameter(const PlacedElement& parameter, const CommandReference& reference,
                       std::set<std::string, std::less<>>& given) {
    const PlacedElement* name = parameter.Child("NAME");
    const PlacedElement* value = parameter.Child("VALUE");
    if (name == nullptr || value == nullptr) {
      Tell(parameter, name == nullptr ? "no-name" : "no-value",
           std::string("a PARAMETER without ") + (name == nullptr ? "NAME" : "VALUE") + " is not read");
      if (name == nullptr) {
        return;
      }
    }
    const auto known = std::ranges::find(reference.parameters, std::string_view(name->text), &ParameterReference::name);
    if (given.contains(name->text)) {
      Tell(*name, "repeated-parameter", Quoted(name->text) + " stands here once more: the first one counts");
    } else if (known == reference.parameters.end()) {
      // The name of a parameter that holds elements does not matter where elements are looked for.
      if (reference.elements.empty() || value == nullptr || value->children.empty()) {
        LookAtUnknown(*name, reference, given);
      }
    } else if (known->isNeeded && value != nullptr && value->IsEmpty()) {
      Tell(*value, "empty-value", Quoted(name->text) + " is empty: " + std::string(known->meaning));
    }
    given.insert(name->text);
  }

  void LookAtUnknown(const PlacedElement& name, const CommandReference& reference,
                     std::set<std::string, std::less<>>& given) {
    constexpr std::size_t kSurelyMeant = 2;  // of names that anybody may choose, only what looks like a slip is told
    const std::string_view meant = MeantParameter(reference, name.text);
    if (!meant.empty() && EqualIgnoringCase(meant, name.text)) {
      Tell(name, "letter-case", Quoted(name.text) + " is not " + Quoted(meant) + ": letter case counts");
      given.emplace(meant);
    } else if (!meant.empty() && EditDistance(meant, name.text) <= kSurelyMeant) {
      Tell(name, "unknown-parameter",
           "there is no parameter " + Quoted(name.text) + "; did you mean " + Quoted(meant) + "?");
      given.emplace(meant);
    } else if (reference.others == OtherParameters::Ignored) {
      Tell(name, "unknown-parameter", "nobody reads a parameter " + Quoted(name.text));
    }
  }

  void LookAtElements(const PlacedElement& below, const PlacedElement& tellAt,
                      std::span<const ElementReference> elements) {
    while (!elements.empty()) {
      std::size_t size = 1;
      while (size < elements.size() && elements[size].level > elements.front().level) {
        ++size;
      }
      LookAtElement(below, tellAt, elements.first(size));
      elements = elements.subspan(size);
    }
  }

  void LookAtElement(const PlacedElement& below, const PlacedElement& tellAt, std::span<const ElementReference> tree) {
    const ElementReference& element = tree.front();
    std::vector<const PlacedElement*> found;
    Collect(below, element, found);
    if (found.empty() && IsNeeded(element)) {
      const PlacedElement* alike = FindIgnoringCase(below, element.name);
      alike = alike == command_ ? nullptr : alike;  // COMMAND is no misspelt "command"
      Tell(alike != nullptr ? *alike : tellAt, alike != nullptr ? "letter-case" : "missing-element",
           alike != nullptr ? Quoted(alike->name) + " is not " + Quoted(element.name) + ": letter case counts"
                            : "there is no element " + std::string(element.name) +
                                  (element.meaning.empty() ? "" : ": " + std::string(element.meaning)));
    }
    for (const PlacedElement* one : found) {
      LookAtElements(*one, *one, tree.subspan(1));
    }
  }

  bool IsNeeded(const ElementReference& element) const {
    if (!element.neededBy.empty()) {
      return GivenValue(element.neededBy) == element.neededByValue;
    }
    return element.occurs == Occurs::Once || element.occurs == Occurs::AtLeastOnce;
  }

  /// The value of the command's first parameter of that name; empty without one.
  std::string_view GivenValue(std::string_view parameterName) const {
    for (const PlacedElement& child : command_->children) {
      const PlacedElement* name = child.name == "PARAMETER" ? child.Child("NAME") : nullptr;
      if (name != nullptr && name->text == parameterName) {
        const PlacedElement* value = child.Child("VALUE");
        return value != nullptr ? std::string_view(value->text) : std::string_view();
      }
    }
    return {};
  }

  /// The elements that a handler reads: those of that name, or the first where one is enough.
  static void Collect(const PlacedElement& below, const ElementReference& element,
                      std::vector<const PlacedElement*>& found) {
    const bool isOne = element.occurs == Occurs::Once || element.occurs == Occurs::Optional;
    for (const PlacedElement& child : below.children) {
      if (isOne && !found.empty()) {
        return;
      }
      if (child.name == element.name) {
        found.push_back(&child);
      } else {
        Collect(child, element, found);
      }
    }
  }

  struct Found {
    std::size_t offset;
    LintFinding finding;  ///< its place is not known yet
  };

  std::string_view markup_;
  EntryPoint through_;
  const PlacedElement* command_ = nullptr;
  std::vector<Found> found_;
  LintResult result_;
};

/// The place that a parser's words begin with ("line 2, column 7: why"), and the words behind it.
LintFinding NoXml(const std::string& problem) {
  unsigned long line = 1;
  unsigned long column = 1;
  int length = 0;
  if (std::sscanf(problem.c_str(), "line %lu, column %lu: %n", &line, &column, &length) != 2) {
    length = 0;
  }
  return {line, column, "not-xml", "no XML document: " + problem.substr(static_cast<std::size_t>(length))};
}

/// The text in which places are counted. UTF-16 needs no byte order mark where a document begins with "<".
std::string MarkupOf(std::string_view bytes) {
  std::optional<std::string> text = MarkedText(bytes);
  if (!text && bytes.starts_with(std::string_view("<\0", 2))) {
    text = MarkedText("\xFF\xFE" + std::string(bytes));
  } else if (!text && bytes.starts_with(std::string_view("\0<", 2))) {
    text = MarkedText("\xFE\xFF" + std::string(bytes));
  }
  return text ? *std::move(text) : std::string(bytes);
}

}  // namespace

LintResult LintCommand(std::string_view bytes, EntryPoint through) {
  const xml::Document document = xml::Document::Load(bytes);
  if (document.IsEmpty()) {
    return {{}, {}, {NoXml(document.ParseError())}};
  }
  const std::string markup = MarkupOf(bytes);
  return Lint(markup, through).Look();
}

}  // namespace parvex::cli
