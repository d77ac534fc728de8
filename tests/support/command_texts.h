#pragma once

#include <string>

#include "seams/xml.h"

namespace parvex::test {

/// A command with parameters given as markup.
inline xml::Document Command(const std::string& name, const std::string& parameters = "") {
  return xml::Document::Parse("<COMMAND><NAME>" + name + "</NAME>" + parameters + "</COMMAND>");
}

inline std::string Parameter(const std::string& name, const std::string& value) {
  return "<PARAMETER><NAME>" + name + "</NAME>" + (value.empty() ? "<VALUE/>" : "<VALUE>" + value + "</VALUE>") +
         "</PARAMETER>";
}

/// The text of a command as it is sent: a document's, which ends with a line break.
inline std::string Sent(const std::string& name, const std::string& parameters) {
  return "<COMMAND><NAME>" + name + "</NAME>" + parameters + "</COMMAND>\r\n";
}

inline const char* const kSuccess = "<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>\r\n";
inline const char* const kFailure =
    "<LegacyORLA><returnError>-1</returnError><errorMessage>Unrecognized or Failed Command</errorMessage></LegacyORLA>"
    "\r\n";

}  // namespace parvex::test
