#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// Commands that open the legacy application's builder for its user. They return when the builder's workflow has
// returned; what it returned is not looked at, so a user who cancels gets the success reply too. There is no time
// limit. Afterwards the link holds neither a builder nor a report server, however the command ended.

/// Makes a new tag. Failures of the builder end the call.
xml::Document NewTag(LegacyLink& link, const xml::Document& command);
/// Changes a tag. Failures from the first look at UILoaded on are answered with the failed reply.
xml::Document ConfigureTag(LegacyLink& link, const xml::Document& command);
/// Rebuilds every tag of a project. Failures of the builder end the call.
xml::Document RebuildAllTags(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
