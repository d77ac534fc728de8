#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "seams/message_boxes.h"
#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

TEST(MessageBoxContract, TheUserSeesCaptionAndText) {
  ContractMachine machine;
  const std::string seen =
      machine.SeenInBox("[Section] and FileName Not Registered!", "IniFile Logic Error", MessageBoxes::Icon::Stop);
  EXPECT_THAT(seen, HasSubstr("IniFile Logic Error"));
  EXPECT_THAT(seen, HasSubstr("[Section] and FileName Not Registered!"));
}

TEST(MessageBoxContract, SeveralLinesAndLettersBeyondAsciiAreSeen) {
  ContractMachine machine;
  const std::string seen = machine.SeenInBox("erste Zeile\nzweite: Größe", kDefaultCaption, MessageBoxes::Icon::None);
  EXPECT_THAT(seen, HasSubstr("Parvex"));
  EXPECT_THAT(seen, HasSubstr("erste Zeile"));
  EXPECT_THAT(seen, HasSubstr("zweite: Größe"));
}

TEST(MessagePumpContract, SleepLastsAtLeastTheTimeGiven) {
  ContractMachine machine;
  const auto begin = std::chrono::steady_clock::now();
  machine.messagePump.Sleep(std::chrono::milliseconds(30));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(29));
}

TEST(MessagePumpContract, RunsWhatIsPendingAndReturns) {
  ContractMachine machine;
  const auto begin = std::chrono::steady_clock::now();
  machine.messagePump.RunPending();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

}  // namespace
}  // namespace parvex::test
