#include "formats/text/letter_case.h"

#include <gtest/gtest.h>

#include "formats/text/unicode.h"

namespace parvex::test {
namespace {

TEST(LetterCaseContract, EveryUnitHasTheCapitalThatTheTableSays) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    if (IsSurrogate(unit)) {
      continue;
    }
    EXPECT_EQ(FoldName(Utf8Of(unit)), Utf8Of(CapitalOf(static_cast<char16_t>(unit)))) << std::hex << unit;
  }
}

}  // namespace
}  // namespace parvex::test
