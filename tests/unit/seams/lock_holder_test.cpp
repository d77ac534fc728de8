#include "seams/lock_holder.h"

#include <gtest/gtest.h>

namespace parvex::test {
namespace {

TEST(LockHolder, IsReadAsItWasWritten) {
  for (const bool waitsForUser : {false, true}) {
    const MachineLocks::Holder read = HolderIn(TextOfHolder({4711, "C:\\Host App\\front.exe", waitsForUser}));
    EXPECT_EQ(read.processId, 4711u);
    EXPECT_EQ(read.program, "C:\\Host App\\front.exe");
    EXPECT_EQ(read.waitsForUser, waitsForUser);
  }
}

TEST(LockHolder, HasTheTextThatOtherVersionsRead) {
  EXPECT_EQ(TextOfHolder({1, "/p", true}), "u 1 /p");
  EXPECT_EQ(TextOfHolder({1, "/p", false}), "a 1 /p");
}

TEST(LockHolder, IsNobodyWhereTheTextIsCutOrNone) {
  for (const char* text : {"", "a", "a ", "foreign", "a -1 x", "a 99999999999999999999 x"}) {
    const MachineLocks::Holder read = HolderIn(text);
    EXPECT_EQ(read.processId, 0u) << text;
    EXPECT_EQ(read.program, "") << text;
  }
  EXPECT_EQ(HolderIn("a 12").processId, 12u);
}

}  // namespace
}  // namespace parvex::test
