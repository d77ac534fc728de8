#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "seams/automation.h"
#include "seams/automation_error.h"
#include "seams/message_boxes.h"

namespace parvex::journal {

/// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// Writes one object as one line and flushes it, so that a crash loses nothing. Texts that are not UTF-8 are written
/// with replacement characters. A stream that fails is left in its failed state; nobody is interrupted for the
/// journal's sake.
void WriteLine(std::ostream& out, const Json& line);

/// The value of the key "error": number (as the program prints it), source and description.
Json ErrorJson(const AutomationError& error);
/// The error that ErrorJson wrote; a std::exception when `error` has another shape.
AutomationError ErrorFromJson(const Json& error);

/// A value that crosses the automation seam: texts, numbers and booleans as they are, an object as {"object": NAME}, an
/// empty reference or no value as null, a keyed collection as an array of [key, item] pairs.
Json ValueJson(const automation::Value& value);

/// The lines of a message box, of a note and of a finding.
Json MessageBoxJson(std::string_view text, std::string_view caption, MessageBoxes::Icon icon);
Json NoteJson(std::string_view about, std::string_view text);
Json FindingJson(std::string_view text);

}  // namespace parvex::journal
