#include "cli/reference/command_text.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace parvex::cli {
namespace {

std::string Indented(const std::string& lines, const std::string& indent) {
  std::istringstream text(lines);
  std::string indented;
  for (std::string line; std::getline(text, line);) {
    indented += indent + line + "\n";
  }
  return indented;
}

std::string PaddedTo(std::size_t width, std::string text) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string ParameterList(const CommandReference& reference) {
  std::size_t width = 0;
  for (const ParameterReference& parameter : reference.parameters) {
    width = std::max(width, parameter.name.size());
  }
  std::string list;
  for (const ParameterReference& parameter : reference.parameters) {
    list += "  " + PaddedTo(width, std::string(parameter.name)) + (parameter.isNeeded ? "  needed  " : "          ") +
            std::string(parameter.meaning) + "\n";
  }
  return list.empty() ? "  none\n" : list;
}

std::string OthersText(OtherParameters others) {
  switch (others) {
    case OtherParameters::Ignored:
      return "  Others are ignored.\n";
    case OtherParameters::Forwarded:
      return "  Others go to the legacy application as they stand.\n";
    case OtherParameters::Options:
      return "  Others set the option of their name; those that name none are ignored.\n";
  }
  return {};
}

const char* OccursText(Occurs occurs) {
  switch (occurs) {
    case Occurs::Once:
      return "";
    case Occurs::Optional:
      return " ?";
    case Occurs::AnyNumber:
      return " *";
    case Occurs::AtLeastOnce:
      return " +";
  }
  return "";
}

// One line an element, its children further in; behind it how often it stands there, when that is not once.
std::string ElementTree(std::span<const ElementReference> elements) {
  std::string tree;
  for (const ElementReference& element : elements) {
    std::string line(2 + 2 * static_cast<std::size_t>(element.level), ' ');
    line.append(element.name) += OccursText(element.occurs);
    if (!element.attributes.empty()) {
      line += " (" + std::string(element.attributes) + ")";
    }
    tree += element.meaning.empty() ? line : PaddedTo(36, line) + "  " + std::string(element.meaning);
    tree += '\n';
  }
  return tree;
}

std::string NumberText(int number) {
  if (number == 0) {
    return "an error";
  }
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08X", 0x800A0000U + static_cast<unsigned>(number));
  return "error " + std::to_string(number) + " (" + hex + ")";
}

std::string FailureText(const FailureReference& failure) {
  const std::string text(failure.text);
  switch (failure.kind) {
    case FailureKind::FailedReply:
      return "failed reply, \"" + text + "\"";
    case FailureKind::ToldInReply:
      return "returnError is \"" + text + "\"";
    case FailureKind::IncompleteReply:
      return "the reply, but " + text;
    case FailureKind::NoDocument:
      return "no reply document";
    case FailureKind::CallEnds:
      return "the call ends with " + NumberText(failure.number) + (text.empty() ? "" : ", \"" + text + "\"");
  }
  return {};
}

std::string FailureList(std::span<const FailureReference> failures) {
  std::string list;
  for (const FailureReference& failure : failures) {
    list += "  " + FailureText(failure) + "\n      " + std::string(failure.cause) + "\n";
  }
  return list;
}

}  // namespace

std::string CommandAsText(const DescribedCommand& command) {
  const CommandReference& reference = command.Reference();
  std::string text = std::string(command.entry->name) + ": " + std::string(command.entry->summary) + "\nServed by " +
                     EntryPointsOf(command) + "\n\nParameters\n" + ParameterList(reference) +
                     OthersText(reference.others);
  if (!reference.elements.empty()) {
    text += "\nElements that are looked for in the command\n" + ElementTree(reference.elements);
  }
  text += "\nAn example, which runs on the sample machine";
  if (!reference.runsAfter.empty()) {
    text += " after that of " + std::string(reference.runsAfter);
  }
  const auto reply = reference.reply.empty() ? std::span<const ElementReference>(kEnvelopeReference) : reference.reply;
  return text + "\n" + Indented(ExampleRequest(command), "  ") + "\nThe reply\n" + ElementTree(reply) +
         "\nWhat the example is answered with\n  " + std::string(reference.exampleReply) + "\n\nWhat may fail\n" +
         FailureList(reference.failures);
}

}  // namespace parvex::cli
