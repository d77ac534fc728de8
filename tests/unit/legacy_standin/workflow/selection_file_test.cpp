#include "legacy_standin/workflow/selection_file.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

std::string PathOf(const StoredData& stored) { return "C:\\T\\" + stored.fileName; }

TEST(SelectionFileTest, ASelectionWithoutUnitsIsItsHeader) {
  EXPECT_EQ(FormatSelection({{"Action", "OK"}}, {}, PathOf), "[Header]\r\nAction=OK\r\n");
}

TEST(SelectionFileTest, WritesEverySectionOfAUnitWithItsNumberedKeys) {
  Unit unit;
  unit.keys = {{"PartNumber", "P1"}, {"PDSG", "RTU47"}};
  unit.stored = {"p1.blb", StoredData::Place::Temp, {}};
  unit.extendedDescription = {"first", "second"};
  unit.etoDescription = {"special"};
  unit.accessories = {{{{"PartNumber", "A1"}, {"preorderreq", "Y"}}, {}},
                      {{{"PartNumber", "A2"}}, {"a2.blb", StoredData::Place::Project, {}}}};
  unit.warranties = {{{"Name", "W1"}, {"preorderreq", "N"}}};
  unit.blanketItems = {{{"PartNumber", "B1"}, {"preorderreq", "1"}}, {{"PartNumber", "B2"}, {"preorderreq", "0"}}};

  EXPECT_EQ(FormatSelection({{"Action", "OK"}}, {unit}, PathOf),
            "[Header]\r\nAction=OK\r\n"
            "\r\n[PartNumber1]\r\nPartNumber=P1\r\nPDSG=RTU47\r\nFileName=C:\\T\\p1.blb\r\n"
            "\r\n[Extended Description1]\r\nDescription:1=first\r\nDescription:2=second\r\n"
            "\r\n[ETO Description1]\r\nDescription:1=special\r\n"
            "\r\n[Accessory1]\r\nPartNumber:1=A1\r\npreorderreq:1=Y\r\n"
            "PartNumber:2=A2\r\nFileName:2=C:\\T\\a2.blb\r\n"
            "\r\n[Warranty1]\r\nName:1=W1\r\npreorderreq:1=N\r\n"
            "\r\n[BlanketQuoteControl1]\r\nPartNumber:1=B1\r\npreorderreq1=1\r\n"
            "PartNumber:2=B2\r\npreorderreq2=0\r\n");
}

TEST(SelectionFileTest, UnitsAreNumberedInTheirOrder) {
  Unit first;
  first.keys = {{"PartNumber", "P1"}};
  Unit second;
  second.keys = {{"PartNumber", "P2"}};
  EXPECT_EQ(FormatSelection({}, {first, second}, PathOf),
            "[Header]\r\n\r\n[PartNumber1]\r\nPartNumber=P1\r\n\r\n[PartNumber2]\r\nPartNumber=P2\r\n");
}

/// Values that a private-profile reader would change if they stood in the file as they are.
class DelicateValue : public testing::TestWithParam<const char*> {};

TEST_P(DelicateValue, ReadsBackUnchanged) {
  Unit unit;
  unit.keys = {{"PartNumber", "P1"}, {"Description", GetParam()}};
  test::FakeMachine machine;
  machine.Write("C:\\out.ini", FormatSelection({}, {unit}, PathOf));
  const auto section = machine.platform.privateProfile->Section("PartNumber1", "C:\\out.ini");
  EXPECT_EQ(section->ReadString("Description", "", 255), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Values, DelicateValue,
                         testing::Values(" Tessel ", "\"quoted\"", "'quoted'", "\"", "'", "6\"", "\"a\" and \"b\"",
                                         "a=b;c", "[PartNumber2]", ";no comment", " "));

}  // namespace
}  // namespace parvex::standin
