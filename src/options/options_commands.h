#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// The legacy application's options lie in Options.xml in its program folder: Tool elements (attribute ID), each with
// Option elements (Name, Value). Tool SOV02 holds language and unit of measure; the options of SOV01 pass through by
// name.

/// A setOptions command with the options as parameters, ready to be sent back; without parameters when the file is
/// missing or does not parse.
xml::Document GetOptions(LegacyLink& link, const xml::Document& command);

/// Writes the command's values into the file, which stays as it was when anything fails: the failed reply then.
/// Parameters that name no option are ignored; a name with an apostrophe matches nothing. An option is named by its
/// text as it stands in the file: one with blanks around it is matched by nothing, for a parameter's name is read
/// without.
xml::Document SetOptions(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
