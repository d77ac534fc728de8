#pragma once

#include <functional>
#include <string>
#include <vector>

#include "masking/letters.h"
#include "recording/recorded_case.h"

namespace parvex::masking {

struct Options {
  Key key;
  bool keepPrices = false;
};

/// Carries out a case and tells how that differs from what was recorded, for people; an empty text when it is
/// reproduced.
using RunCase = std::function<std::string(const recording::RecordedCase&)>;

/// What became what.
struct Replaced {
  std::string kind;  ///< "name", "description" or "price"
  std::string before;
  std::string after;
};

struct MaskedCase {
  recording::RecordedCase masked;
  std::vector<Replaced> table;
};

/// A key that nobody can foresee.
Key NewKey();

/// The case with names, descriptions and prices replaced by others of the same form, in every layer of every part; what
/// cannot be looked into is zeros. docs/privacy.md says what is found where. With `run` the masked case is carried out.
///
/// An AutomationError (5) that says why when it does not reproduce, when something is left that should not be, when the
/// case was recorded in a code page that is not masked, and when it goes deeper than any honest case.
MaskedCase MaskCase(const recording::RecordedCase& whole, const Options& options, const RunCase& run = {});

/// The table as text: a line each, kind, before and after, separated by tabs.
std::string TextOf(const std::vector<Replaced>& table);

}  // namespace parvex::masking
