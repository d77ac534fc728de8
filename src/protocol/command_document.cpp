#include "protocol/command_document.h"

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

// The VALUE of the first parameter of that name; a null node when there is none.
xml::Node FindValue(const xml::Document& command, std::string_view name) {
  // A name with an apostrophe would end the literal early; it must never become part of an expression.
  if (!command || name.find('\'') != std::string_view::npos) {
    return {};
  }
  return command.First("//COMMAND/PARAMETER[NAME='" + std::string(name) + "']/VALUE");
}

std::string ReadValue(const xml::Node& value) {
  const xml::Node first = value.FirstChild();
  const bool isFragment = first && first.FirstChild();
  return isFragment ? std::string(TrimBlanks(first.Xml())) : value.Text();
}

}  // namespace

std::string GetCommandName(const xml::Document& command) {
  if (!command) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, "no command document was given");
  }
  const xml::Node name = command.First(".//COMMAND/NAME");
  if (!name) {
    const std::string reason = command.ParseError();
    throw MakeRuntimeError(RuntimeError::ObjectNotSet,
                           "the command document has no COMMAND/NAME" + (reason.empty() ? "" : ": " + reason));
  }
  return name.Text();
}

bool GetParamValue(const xml::Document& command, std::string_view name, std::string& value) {
  value.clear();
  try {
    const xml::Node node = FindValue(command, name);
    if (!node) {
      return false;
    }
    value = ReadValue(node);
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

std::string GetParamFromCmdDoc(const xml::Document& command, std::string_view name) {
  std::string value;
  GetParamValue(command, name, value);
  return value;
}

bool SetParamValue(const xml::Document& command, std::string_view name, std::string_view value) {
  try {
    const xml::Node node = FindValue(command, name);
    if (!node) {
      return false;
    }
    node.SetText(value);
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

xml::Node MakeParameterElement(const xml::Document& owner, std::string_view name, std::string_view value) {
  const xml::Node parameter = owner.CreateElement("PARAMETER");
  xml::AppendElement(parameter, "NAME", name);
  xml::AppendElement(parameter, "VALUE", value);
  return parameter;
}

void AddParameter(const xml::Document& command, std::string_view name, std::string_view value) {
  command.Root().Append(MakeParameterElement(command, name, value));
}

void AddParameters(const xml::Document& command, Parameters parameters) {
  for (const auto& [name, value] : parameters) {
    AddParameter(command, name, value);
  }
}

xml::Document MakeCommandDocument(std::string_view name, Parameters parameters) {
  const xml::Document command = xml::Document::Parse("<COMMAND/>");
  xml::AppendElement(command.Root(), "NAME", name);
  AddParameters(command, parameters);
  return command;
}

void SetCommandName(const xml::Document& command, std::string_view name) {
  const xml::Node node = command.First("//COMMAND/NAME");
  if (!node) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet,
                           "the command document has no COMMAND/NAME to be made \"" + std::string(name) + "\"");
  }
  node.SetText(name);
}

}  // namespace parvex
