#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// Projects are made, copied, removed, archived and restored by the legacy application. These commands are the front
// end's documents rewritten into its requests; a refusal is the failed reply.

xml::Document AddProject(LegacyLink& link, const xml::Document& command);
xml::Document DeleteProject(LegacyLink& link, const xml::Document& command);
/// Refused with "A Project of that name already exists" before anything is sent.
xml::Document CopyProject(LegacyLink& link, const xml::Document& command);
/// A copy, then the removal of the old project; a copy is not undone when the removal fails.
xml::Document RenameProject(LegacyLink& link, const xml::Document& command);
xml::Document ArchiveProject(LegacyLink& link, const xml::Document& command);
/// Makes the project first when its folder does not hold it yet.
xml::Document RetrieveProject(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
