#include "hybris/counter16.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

TEST(Counter16, CountsFromZero) {
  Counter16 counter("things");
  EXPECT_EQ(counter.Value(), 0);
  EXPECT_EQ(counter.Advance(), 1);
  EXPECT_EQ(counter.Advance(), 2);
  EXPECT_EQ(counter.Value(), 2);
}

TEST(Counter16, The32768thRaisesOverflowThatNamesWhatWasCounted) {
  Counter16 counter("blanket items");
  for (int i = 1; i <= 32767; ++i) {
    ASSERT_EQ(counter.Advance(), i);
  }
  EXPECT_EQ(RaisedBy([&] { counter.Advance(); }), RuntimeError::Overflow);
  EXPECT_THAT(DescriptionOfErrorIn([&] { counter.Advance(); }), testing::HasSubstr("blanket items"));
  EXPECT_EQ(counter.Value(), 32767);
}

}  // namespace
}  // namespace parvex::test
