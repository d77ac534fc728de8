#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "seams/xml.h"

namespace parvex {

// A command document: COMMAND holding a NAME and any number of PARAMETER elements, each with NAME and VALUE. COMMAND
// may stand at any depth. Names are case-sensitive; of duplicate parameters the first counts. A parameter name that
// holds an apostrophe matches nothing.

/// The command's name; "object not set" when there is no COMMAND/NAME.
std::string GetCommandName(const xml::Document& command);

/// Whether the parameter exists. `value` receives "" or its value: the VALUE's text; or, when VALUE's first child is an
/// element with content, that element's markup without outer blanks. Only the first of several elements counts, and
/// text around it is ignored: deliberate, front ends send one fragment a parameter.
bool GetParamValue(const xml::Document& command, std::string_view name, std::string& value);
/// The same value, "" for a missing parameter.
std::string GetParamFromCmdDoc(const xml::Document& command, std::string_view name);

/// Replaces the parameter's value by a text (child elements are removed). False when there is no such parameter.
bool SetParamValue(const xml::Document& command, std::string_view name, std::string_view value);

/// A new PARAMETER element of that document, not yet part of it. It is made there and not elsewhere: a command may be a
/// document of the front end's own, which takes no nodes of others or only copies them.
xml::Node MakeParameterElement(const xml::Document& owner, std::string_view name, std::string_view value);

/// Appends a parameter to the document element, whatever that is.
void AddParameter(const xml::Document& command, std::string_view name, std::string_view value);

using Parameters = std::initializer_list<std::pair<std::string_view, std::string_view>>;
/// Appends parameters in the order given.
void AddParameters(const xml::Document& command, Parameters parameters);

/// A new command document with this name and these parameters.
xml::Document MakeCommandDocument(std::string_view name, Parameters parameters = {});

/// Replaces the text of the first COMMAND/NAME ("object not set" when there is none).
void SetCommandName(const xml::Document& command, std::string_view name);

/// The product data set group of the legacy application, which every request to it carries as `pdsg`.
inline constexpr std::string_view kLegacyPdsg = "KDQ47";

}  // namespace parvex
