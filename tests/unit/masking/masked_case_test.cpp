#include "masking/masked_case.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "codec/bin_encoder.h"
#include "formats/zip/zip_writer.h"
#include "tests/support/raised_by.h"

namespace parvex::masking {
namespace {

using parvex::test::ErrorIn;
using recording::Json;
using recording::RecordedCase;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class MaskedCaseTest : public testing::Test {
 protected:
  MaskedCaseTest() {
    ZipWriter writer;
    writer.Add("Tag", "<Product MarkFor=\"RTU-1\"/>", true);
    blob = writer.Finish();
    whole.facts = {{"format", 1},
                   {"codePage", 1252},
                   {"command", "getTags"},
                   {"program", "C:\\Users\\Grete\\front.exe"},
                   {"instance", {{"tagNames", {{"counter", 1}, {"taken", Json::parse(R"([["RTU47", "B"]])")}}}}}};
    whole.command =
        "<COMMAND><NAME>getTags</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Harbour</VALUE></PARAMETER></COMMAND>";
    whole.reply = "<PROJECT><NAME>Harbour</NAME><BLOB>" + EncodeBase64(blob) + "</BLOB></PROJECT>";
    const std::string path = "C:\\Korvane\\TQ5-VX\\Projects\\Harbour\\a.blb";
    whole.steps = {{{"n", 1}, {"at", "before"}, {"kind", "router"}, {"request", whole.command}},
                   {{"n", 1}, {"at", "after"}, {"answer", "no tag \"RTU-1\" in Harbour"}, {"success", true}},
                   {{"n", 2}, {"at", "before"}, {"kind", "file"}, {"op", "read"}, {"path", path}},
                   {{"n", 2}, {"at", "after"}, {"bytes", blob.size()}},
                   {{"n", 3},
                    {"at", "before"},
                    {"kind", "automation"},
                    {"op", "call"},
                    {"member", "AddTag"},
                    {"args", {"x", "y", "RTU47", "RTU47", "Q"}}},
                   {{"n", 3}, {"at", "after"}, {"changed", {{4, "Z"}}}},
                   {{"n", 4},
                    {"at", "before"},
                    {"kind", "automation"},
                    {"member", "CallService"},
                    {"args", Json::parse(R"([[["Command Line", "\\\\\\RTU47\\K\\12\\P\\7"]]])")}},
                   {{"n", 5},
                    {"at", "before"},
                    {"kind", "ini"},
                    {"op", "write"},
                    {"path", "a.ini"},
                    {"section", "s"},
                    {"key", "MarkFor"},
                    {"value", "W"}},
                   {{"n", 6},
                    {"at", "before"},
                    {"kind", "database"},
                    {"op", "update"},
                    {"path", path},
                    {"row", {{"sKey", "CompanyName"}, {"sValue", "V"}}}},
                   {{"n", 7},
                    {"at", "once"},
                    {"kind", "file"},
                    {"op", "left"},
                    {"path", path},
                    {"stored", "after/7/drive_c/Korvane/TQ5-VX/Projects/Harbour/a.blb"}}};
    whole.files = {{"machine/drive_c/Korvane/TQ5-VX/Projects/Harbour", "", true},
                   {"machine/drive_c/Korvane/TQ5-VX/Projects/Harbour/a.blb", blob, false},
                   {"after/7/drive_c/Korvane/TQ5-VX/Projects/Harbour/a.blb", blob, false}};
  }

  RecordedCase Masked(const Options& options = {.key = {3, 4}}) { return MaskCase(whole, options).masked; }
  static std::string TextOfCase(const RecordedCase& read) {
    std::string text = read.facts.dump() + read.command + read.reply.value_or("");
    for (const Json& step : read.steps) {
      text += step.dump();
    }
    for (const recording::KeptFile& file : read.files) {
      text += file.name + file.bytes;
    }
    return text;
  }
  std::string NameNow(const std::string& before, const Options& options = {.key = {3, 4}}) {
    for (const Replaced& one : MaskCase(whole, options).table) {
      if (one.before == before) {
        return one.after;
      }
    }
    return "(none)";
  }

  std::string blob;
  RecordedCase whole;
};

TEST_F(MaskedCaseTest, HoldsTheSameNameEverywhereAndNoneOfTheOldOnes) {
  const RecordedCase masked = Masked();
  const std::string now = NameNow("Harbour");
  EXPECT_THAT(TextOfCase(masked), AllOf(Not(HasSubstr("Harbour")), Not(HasSubstr("Grete")), Not(HasSubstr("RTU-1"))));
  EXPECT_THAT(masked.command, HasSubstr("<VALUE>" + now + "</VALUE>"));
  EXPECT_EQ(masked.steps[0]["request"], masked.command);
  EXPECT_EQ(masked.steps[1]["answer"], "no tag \"" + NameNow("RTU-1") + "\" in " + now);
  EXPECT_EQ(masked.steps[2]["path"], "C:\\Korvane\\TQ5-VX\\Projects\\" + now + "\\a.blb");
  EXPECT_EQ(masked.steps[9]["stored"], "after/7/drive_c/Korvane/TQ5-VX/Projects/" + now + "/a.blb");
  EXPECT_EQ(masked.files[1].name, "machine/drive_c/Korvane/TQ5-VX/Projects/" + now + "/a.blb");
}

TEST_F(MaskedCaseTest, HasTheBase64OfTheMaskedFileAndItsLength) {
  const RecordedCase masked = Masked();
  EXPECT_NE(masked.files[1].bytes, blob);
  EXPECT_EQ(masked.files[1].bytes, masked.files[2].bytes);
  EXPECT_THAT(*masked.reply, HasSubstr("<BLOB>" + EncodeBase64(masked.files[1].bytes) + "</BLOB>"));
  EXPECT_EQ(masked.steps[3]["bytes"], masked.files[1].bytes.size());
}

TEST_F(MaskedCaseTest, HasShortNamesMaskedInTheirPlacesInTheJournal) {
  const RecordedCase masked = Masked();
  EXPECT_NE(masked.facts["instance"]["tagNames"]["taken"][0][1], "B");
  EXPECT_EQ(masked.facts["instance"]["tagNames"]["taken"][0][0], "RTU47");
  EXPECT_EQ(masked.steps[4]["args"][2], "RTU47");
  EXPECT_NE(masked.steps[4]["args"][4], "Q");
  EXPECT_NE(masked.steps[5]["changed"][0][1], "Z");
  EXPECT_EQ(masked.steps[5]["changed"][0][0], 4);
  EXPECT_THAT(masked.steps[6]["args"][0][0][1].get<std::string>(),
              testing::MatchesRegex("\\\\\\\\\\\\RTU47\\\\[^K]\\\\12\\\\[^P]\\\\[^7]"));
  EXPECT_NE(masked.steps[7]["value"], "W");
  EXPECT_EQ(masked.steps[7]["key"], "MarkFor");
  EXPECT_NE(masked.steps[8]["row"]["sValue"], "V");
  EXPECT_EQ(masked.steps[8]["row"]["sKey"], "CompanyName");
}

TEST_F(MaskedCaseTest, IsAnotherOneWithAnotherKey) {
  EXPECT_NE(TextOfCase(Masked()), TextOfCase(Masked({.key = {3, 5}})));
  EXPECT_EQ(TextOfCase(Masked()), TextOfCase(Masked()));
  EXPECT_NE(NewKey().low, NewKey().low);
}

TEST_F(MaskedCaseTest, HasItsTableAsText) {
  const std::string text = TextOf(MaskCase(whole, {.key = {3, 4}}).table);
  EXPECT_THAT(text, AllOf(testing::StartsWith("kind\tbefore\tafter\n"),
                          HasSubstr("name\tHarbour\t" + NameNow("Harbour") + "\n"), HasSubstr("name\tGrete\t")));
}

TEST_F(MaskedCaseTest, IsRefusedWhenItDoesNotReproduce) {
  const RunCase onlyWhole = [&](const RecordedCase& run) {
    return std::string(run.command == whole.command ? "" : "step 1: something");
  };
  EXPECT_THAT(ErrorIn([&] {
                MaskCase(whole, {.key = {3, 4}}, onlyWhole);
              }),
              HasSubstr("it would not reproduce any more:\nstep 1: something"));
  const RunCase never = [](const RecordedCase&) { return std::string("step 2"); };
  EXPECT_THAT(ErrorIn([&] {
                MaskCase(whole, {.key = {3, 4}}, never);
              }),
              HasSubstr("it does not reproduce unmasked, either:\nstep 2"));
  const RunCase always = [](const RecordedCase&) { return std::string(); };
  EXPECT_THAT(MaskCase(whole, {.key = {3, 4}}, always).table, Not(IsEmpty()));
}

TEST_F(MaskedCaseTest, IsRefusedInACodePageThatIsNotKnown) {
  whole.facts["codePage"] = 1250;
  EXPECT_THAT(ErrorIn([&] { MaskCase(whole, {.key = {3, 4}}); }), HasSubstr("code page 1250"));
}

TEST_F(MaskedCaseTest, StaysUnfinishedWhenItsHostDied) {
  whole.isFinished = false;
  whole.reply.reset();
  EXPECT_FALSE(Masked().isFinished);
  EXPECT_FALSE(Masked().reply);
}

TEST_F(MaskedCaseTest, MayHaveNamesThatLieCloseToEachOther) {
  std::string tags;
  for (int room = 100; room < 1000; ++room) {
    tags += "<TAG><NAME>" + std::to_string(room) + "A</NAME></TAG>";
  }
  whole.reply = "<TAGLIST>" + tags + "</TAGLIST>";
  const std::string masked = *Masked().reply;
  EXPECT_EQ(masked.size(), whole.reply->size());
  EXPECT_NE(masked, *whole.reply);
}

// What another version writes, or another program, may be of any type.
TEST_F(MaskedCaseTest, TakesValuesOfAnyType) {
  whole.facts["instance"] = 5;
  whole.steps[4]["args"] = "x";
  whole.steps[5]["changed"] = {5, {"a"}};
  whole.steps[8]["row"] = nullptr;
  whole.steps[3]["bytes"] = "Harbour";
  EXPECT_THAT(TextOfCase(Masked()), Not(HasSubstr("Harbour")));
}

}  // namespace
}  // namespace parvex::masking
