#pragma once

#include <functional>
#include <string>

#include "protocol/legacy_link.h"
#include "recording/recording.h"

namespace parvex {

// What is kept from call to call, as the keys `thread` and `instance` of a case tell it (docs/case-format.md): told
// when a call begins, and put back where one is done again.

recording::Json ThreadFacts();
recording::Json InstanceFacts(const LegacyLink& link);

/// Makes this thread one that has kept this. What is absent or has another shape counts as nothing kept.
void PutBackThread(const recording::Json& facts);

/// The same of an instance; `object` makes the late-bound object of a name.
void PutBackInstance(LegacyLink& link, const recording::Json& facts,
                     const std::function<automation::ObjectRef(const std::string& name)>& object);

}  // namespace parvex
