#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "masking/masker.h"
#include "recording/recorded_case.h"

namespace parvex::masking {

/// The name of a file in a case: what stands behind "machine/" or "after/N/" is a path.
std::string MaskMember(Masker& masker, const std::string& member);

/// case.json.
recording::Json MaskFacts(Masker& masker, const recording::Json& facts);

/// How long a file is by now: by its path in the machine, as it was, and its length.
using LengthNow = std::function<std::optional<std::uint64_t>(const std::string& path, std::uint64_t length)>;

/// The lines of the journal, in order.
std::vector<recording::Json> MaskSteps(Masker& masker, const std::vector<recording::Json>& steps,
                                       const LengthNow& lengthNow);

}  // namespace parvex::masking
