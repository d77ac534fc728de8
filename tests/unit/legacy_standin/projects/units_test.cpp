#include "legacy_standin/projects/units.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy_standin/projects/stored_tag.h"
#include "legacy_standin/sample/sample_project.h"
#include "tests/support/raised_by.h"
#include "tests/unit/legacy_standin/refused_text.h"

namespace parvex::standin {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(UnitsTest, ReadsAUnitWithEverythingThatItCanHave) {
  const std::vector<Unit> units = ParseUnits(R"({"units": [{
    "tagId": 7,
    "keys": {"PartNumber": "P1", "MarkFor": "M1"},
    "stored": {"file": "a.blb", "place": "temp", "entries": [{"name": "Tag", "deflate": false, "text": "<T/>"}]},
    "extendedDescription": ["long", "longer"],
    "etoDescription": ["eto"],
    "accessories": [{"keys": {"PartNumber": "A1"}, "stored": {"file": "b.blb", "place": "project"}}],
    "warranties": [{"Name": "W1"}],
    "blanketItems": [{"PartNumber": "B1"}]}]})",
                                             "units.json");
  ASSERT_EQ(units.size(), 1u);
  const Unit& unit = units[0];
  EXPECT_EQ(unit.tagId, 7);
  EXPECT_THAT(unit.keys, ElementsAre(Pair("PartNumber", "P1"), Pair("MarkFor", "M1")));
  EXPECT_EQ(unit.stored, (StoredData{"a.blb", StoredData::Place::Temp, {{"Tag", "<T/>", false}}}));
  EXPECT_THAT(unit.extendedDescription, ElementsAre("long", "longer"));
  EXPECT_THAT(unit.etoDescription, ElementsAre("eto"));
  ASSERT_EQ(unit.accessories.size(), 1u);
  EXPECT_EQ(unit.accessories[0].stored.fileName, "b.blb");
  EXPECT_EQ(unit.accessories[0].stored.place, StoredData::Place::Project);
  ASSERT_EQ(unit.warranties.size(), 1u);
  EXPECT_EQ(FieldOf(unit.warranties[0], "Name"), "W1");
  ASSERT_EQ(unit.blanketItems.size(), 1u);
  EXPECT_EQ(FieldOf(unit.blanketItems[0], "PartNumber"), "B1");
}

TEST(UnitsTest, KeysKeepTheOrderOfTheFile) {
  const std::vector<Unit> units =
      ParseUnits(R"({"units":[{"tagId":1,"keys":{"Supplier":"s","PDSG":"p","MarkFor":"m"}}]})", "units.json");
  EXPECT_THAT(units[0].keys, ElementsAre(Pair("Supplier", "s"), Pair("PDSG", "p"), Pair("MarkFor", "m")));
}

TEST(UnitsTest, WhatIsWrittenReadsBackAsTheSameUnits) {
  const std::vector<Unit> units = SampleUnits();
  EXPECT_EQ(ParseUnits(FormatUnits(units), "units.json"), units);
}

TEST(UnitsTest, NoUnitsReadBackAsNone) { EXPECT_TRUE(ParseUnits(FormatUnits({}), "units.json").empty()); }

TEST(UnitsTest, TheHighestTagNumberIsTheLast) {
  const auto units = ParseUnits(R"({"units":[{"tagId":2147483647,"keys":{}}]})", "units.json");
  EXPECT_EQ(units[0].tagId, 2147483647);
  EXPECT_EQ(test::RaisedBy([&] { FreeTagId(units); }), 6);
  EXPECT_EQ(FreeTagId(ParseUnits(R"({"units":[{"tagId":2147483646,"keys":{}}]})", "units.json")), 2147483647);
}

TEST(UnitsTest, AMissingKeyReadsAsEmpty) { EXPECT_EQ(FieldOf({{"A", "1"}}, "B"), ""); }

class UnitsRefusal : public testing::TestWithParam<RefusedText> {};

TEST_P(UnitsRefusal, NamesTheFileAndThePlace) { ExpectRefused(GetParam(), ParseUnits); }

INSTANTIATE_TEST_SUITE_P(
    Texts, UnitsRefusal,
    testing::Values(
        RefusedText{"NoJson", "units", "parse error"},
        RefusedText{"UnitsNoList", R"({"units":{}})", "units has to be a list"},
        RefusedText{"NoTagId", R"({"units":[{"keys":{}}]})", "units[0].tagId"},
        RefusedText{"NoKeys", R"({"units":[{"tagId":1}]})", "units[0].keys"},
        RefusedText{"UnknownKey", R"({"units":[{"tagId":1,"keys":{"Partnumber":"x"}}]})", "units[0].keys.Partnumber"},
        RefusedText{"NumberAsValue", R"({"units":[{"tagId":1,"keys":{"Ton":10}}]})", "units[0].keys.Ton"},
        RefusedText{"LineBreakInValue", R"({"units":[{"tagId":1,"keys":{"Ton":"1\n2"}}]})", "one line of text"},
        RefusedText{"ZeroInLine", R"({"units":[{"tagId":1,"keys":{},"etoDescription":["a\u0000b"]}]})",
                    "units[0].etoDescription[0]"},
        RefusedText{"ArchiveInAnotherFolder",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"..\\x.blb","place":"temp"}}]})",
                    "units[0].stored.file"},
        RefusedText{"TagIdNegative", R"({"units":[{"tagId":-1,"keys":{}}]})", "units[0].tagId"},
        RefusedText{"TagIdBeyond32Bits", R"({"units":[{"tagId":2147483648,"keys":{}}]})", "2147483648"},
        RefusedText{"TagIdThatWouldGoRound", R"({"units":[{"tagId":4294967303,"keys":{}}]})", "units[0].tagId"},
        RefusedText{"TagIdBeyond63Bits", R"({"units":[{"tagId":18446744073709551615,"keys":{}}]})", "units[0].tagId"},
        RefusedText{"TagIdBeyond64Bits", R"({"units":[{"tagId":99999999999999999999,"keys":{}}]})", "units[0].tagId"},
        RefusedText{"ArchiveInPlaceOfTheDatabase",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"Project.mdb","place":"project"}}]})",
                    "a name that no other file has there"},
        RefusedText{"ArchiveInPlaceOfTheUnits",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"UNITS.json","place":"project"}}]})",
                    "units[0].stored.file"},
        RefusedText{"ArchiveUnderAShortName",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"PROPER~1.JSO","place":"project"}}]})",
                    "units[0].stored.file"},
        RefusedText{"ArchiveInPlaceOfTheHandOver",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"qboutput.ini","place":"temp"}}]})",
                    "units[0].stored.file"},
        RefusedText{"ArchiveOfAnotherProject",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"../Other/a.blb","place":"project"}}]})",
                    "a file name without folder"},
        RefusedText{"ArchiveThatIsADevice",
                    R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"nul.blb","place":"temp"}}]})",
                    "units[0].stored.file"},
        RefusedText{"ArchiveOfAnAccessoryInPlaceOfTheDatabase",
                    R"({"units":[{"tagId":1,"keys":{},"accessories":[{"keys":{},)"
                    R"("stored":{"file":"project.mdb","place":"project"}}]}]})",
                    "units[0].accessories[0].stored.file"},
        RefusedText{"ArchiveNowhere", R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"x.blb"}}]})",
                    "units[0].stored.place"},
        RefusedText{
            "MisspeltEntry",
            R"({"units":[{"tagId":1,"keys":{},"stored":{"file":"x","place":"temp","entries":[{"nme":"Tag"}]}}]})",
            "units[0].stored.entries[0].nme"},
        RefusedText{"UnknownAccessoryKey", R"({"units":[{"tagId":1,"keys":{},"accessories":[{"keys":{"Ton":"1"}}]}]})",
                    "units[0].accessories[0].keys.Ton"},
        RefusedText{"MisspeltList", R"({"units":[{"tagId":1,"keys":{},"warranty":[]}]})", "units[0].warranty"}),
    ReasonOf);

}  // namespace
}  // namespace parvex::standin
