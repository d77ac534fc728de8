#pragma once

#include <string>
#include <string_view>

#include "protocol/command_document.h"
#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// Requests to the legacy application are command documents. Most are the front end's own document, changed in place: a
// new name where the legacy command has another, and parameters appended behind the front end's own.

/// Sends a request and loads the answer. False when the router refuses; the answer is then a null document.
bool Ask(const LegacyLink& link, const xml::Document& request, xml::Document& answer);

/// The document that an answer is to a request of that name; an empty one when it does not parse, as the protocol has
/// it. Where the router said that it carried the request out, the notes of the machine then tell why.
xml::Document ReadAnswer(const LegacyLink& link, std::string_view request, const std::string& text, bool carriedOut);

/// What the notes say is the matter with such an answer.
inline constexpr std::string_view kRouterNotes = "router";

/// The boolean that a status text of the legacy application means: "True" and "False" in any letter case, or a number,
/// where 0 is false. Any other text is a type mismatch (13).
bool StatusMeansTrue(std::string_view status);

}  // namespace parvex
