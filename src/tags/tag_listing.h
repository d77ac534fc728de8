#pragma once

#include <string_view>

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

/// The router's list of the tags of the project named by the parameter projectName, each TAG marked with UPTODATE; the
/// failed reply when it refuses.
xml::Document GetTagList(LegacyLink& link, const xml::Document& command);
xml::Document GetTagListOf(LegacyLink& link, std::string_view projectName);

/// Appends UPTODATE to every TAG of a tag list: "-1" when its TAGVERSION is the version of the first Tool with its
/// PDSG, "0" otherwise. A tag whose PDSG no tool has is compared with the version found for the tag before it (an empty
/// text before the first match): deliberate, front ends have come to rely on the marks that this gives.
void MarkUpToDate(const xml::Document& tagList, const xml::Document& tools);

/// The stored data of the tags that the command's TAG entries name (NAME, PDSG, DATATYPE): TagData holding one PROJECT
/// with projectName and a TAG or PROTOTAG for each tag that the router knows, in the order of the entries. One request
/// a tag; a tag that it does not know is left out without a message.
xml::Document GetTags(LegacyLink& link, const xml::Document& command);

/// Appends QUANTITY, SIZE, PARTNUMBER and MODEL to every TAG of `tags`, empty where the stored data has no product for
/// it.
void LookUpTagProducts(LegacyLink& link, std::string_view projectName, const xml::Document& tags);

}  // namespace parvex
