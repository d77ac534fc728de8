#include "formats/text/letter_case.h"

#include <algorithm>
#include <iterator>

#include "formats/text/letter_case_table.h"

namespace parvex {

bool IsSameName(std::string_view a, std::string_view b) { return a == b || FoldName(a) == FoldName(b); }

char16_t CapitalOf(char16_t unit) {
  const LetterRun* const run = std::ranges::lower_bound(kLetterRuns, unit, {}, &LetterRun::last);
  const bool isLetter = run != std::end(kLetterRuns) && unit >= run->first && (unit - run->first) % run->step == 0;
  return isLetter ? static_cast<char16_t>(unit + run->toCapital) : unit;
}

}  // namespace parvex
