#pragma once

#include "protocol/command_reference.h"

namespace parvex {

// What the tag commands take and give. Their steps: docs/commands/tags.md.

extern const CommandReference kGetTagListReference;
extern const CommandReference kGetTagsReference;
extern const CommandReference kRenameTagReference;
extern const CommandReference kCopyTagReference;
extern const CommandReference kDeleteTagReference;
extern const CommandReference kNewTagReference;
extern const CommandReference kConfigureTagReference;
extern const CommandReference kRebuildAllTagsReference;

/// The entries that name the tags of a command, for the report commands too.
inline constexpr ElementReference kTagEntriesReference[] = {
    {0, "TAG", Content::Open, "a tag to fetch, wherever it stands in the command", Occurs::AtLeastOnce},
    {1, "NAME", Content::Text, "its name"},
    {1, "PDSG", Content::Text, "its product data set group"},
    {1, "DATATYPE", Content::Text, "1 for an extended tag; anything else, also nothing, for an ordinary one"},
};

}  // namespace parvex
