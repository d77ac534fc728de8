#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "hybris/export_driver.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"
#include "tests/support/hostile_markup.h"

// What the quote builder says was selected, made to do harm.

namespace parvex::test {
namespace {

constexpr const char* kSelection = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";

std::string Numbers(std::size_t count, const std::string& key, const std::string& value) {
  return Numbered(count, [&](const std::string& number) {
    return key + ":" + std::to_string(std::stoul(number) + 1) + "=" + value + "\r\n";
  });
}

// Tags that have so many base units and blanket items each.
std::string Selection(std::size_t tags, std::size_t baseUnits, std::size_t blanketItems) {
  std::string text;
  for (std::size_t tag = 1; tag <= tags; ++tag) {
    const std::string number = std::to_string(tag);
    text += "[PartNumber" + number + "]\r\nPartNumber=38A\r\n";
    text += "[Accessory" + number + "]\r\n" + Numbers(baseUnits - 1, "PartNumber", "p") +
            Numbers(baseUnits - 1, "BaseUnit1", "BU2");
    text += "[BlanketQuoteControl" + number + "]\r\n" + Numbers(blanketItems, "PartNumber", "b");
  }
  return text;
}

// Says how many blanket items stand in the document, or what the error was.
std::string Exported(const std::string& selection) {
  FakeMachine machine;
  machine.Write(kSelection, selection);
  const ChildOutcome outcome = InLimitedChild([&] {
    std::size_t items = 0;
    std::size_t from = 0;
    std::string text;
    BuildHybrisTagDocument(machine.platform, kSelection, "Tower").WriteXml([&](std::string_view piece) {
      text.append(piece);
      for (from = text.find("BLANKETETO", from); from != std::string::npos; from = text.find("BLANKETETO", from)) {
        ++items;
        from += 1;
      }
      text.erase(0, text.size() - std::min<std::size_t>(text.size(), 9));
      from = 0;
    });
    return std::to_string(items) + " items";
  });
  ExpectQuick(outcome);
  return outcome.answer;
}

TEST(HostileSelection, WithManyBaseUnitsAndManyBlanketItemsIsRefused) {
  EXPECT_EQ(Exported(Selection(1, 2'000, 2'000)), "the blanket items of all base units take more than 128 MB");
}

TEST(HostileSelection, WithManyTagsOfManyBaseUnitsAndBlanketItemsIsRefused) {
  EXPECT_EQ(Exported(Selection(30, 150, 150)), "the blanket items of all base units take more than 128 MB");
}

TEST(HostileSelection, WithBlanketItemsThatThereIsRoomForIsExported) {
  EXPECT_EQ(Exported(Selection(1, 25, 2'000)), "50000 items");
}

}  // namespace
}  // namespace parvex::test
