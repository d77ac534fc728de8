#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/program.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

class Return : public SampleWalk {
 protected:
  Outcome Run(const std::vector<std::string>& arguments, const std::string& document) const {
    std::vector<std::string> all = {"--machine", Sample(), "--journal", Journal(), "return"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.push_back("-");
    return RunParvex(all, {.input = document});
  }
  std::string Exported(std::vector<std::string> tags) const {
    tags.insert(tags.begin(), {"--machine", Sample(), "export", "--project", "Riverside Clinic", "--tags"});
    return RunParvex(tags).out;
  }
  bool BroughtBack() const { return std::filesystem::exists(Installed("Temp/QPblob.tmp")); }
};

TEST_F(Return, BringsBackTheVeryBytesThatWereExported) {
  const Outcome outcome = Run({}, Exported({"CH-1"}));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "") << "no boxes for components";
  const std::string archive = ReadHostFile(Installed("Projects/Riverside Clinic/tag1103.blb"));
  EXPECT_NE(archive, "");
  EXPECT_EQ(archive, ReadHostFile(Installed("Temp/QPblob.tmp")));
  EXPECT_TRUE(std::filesystem::exists(Installed("Temp/input.ini")));
}

TEST_F(Return, NeedsToBeToldWhichOfSeveralTags) {
  const std::string document = Exported({"RTU-1", "CH-1"});
  const Outcome untold = Run({}, document);
  EXPECT_EQ(untold.status, 2);
  EXPECT_THAT(untold.err, HasSubstr("2 tags: say with --tag"));
  for (const char* number : {"0", "3"}) {
    EXPECT_EQ(Run({"--tag", number}, document).status, 2) << number;
  }
  for (const char* number : {"-1", "x", "", "1 ", "+1", "99999999999999999999"}) {
    EXPECT_EQ(Run({"--tag", number}, document).status, 2) << number;
  }
  EXPECT_FALSE(BroughtBack());
  EXPECT_EQ(Run({"--tag", "2"}, document).status, 0);
  EXPECT_EQ(ReadHostFile(Installed("Projects/Riverside Clinic/tag1103.blb")),
            ReadHostFile(Installed("Temp/QPblob.tmp")));
}

TEST_F(Return, TakesATagByItsName) {
  const std::string document = Exported({"RTU-1", "CH-1"});
  EXPECT_EQ(Run({"--tag", "CH-1"}, document).status, 0);
  EXPECT_EQ(ReadHostFile(Installed("Projects/Riverside Clinic/tag1103.blb")),
            ReadHostFile(Installed("Temp/QPblob.tmp")));
  const Outcome misspelt = Run({"--tag", "CH1"}, document);
  EXPECT_EQ(misspelt.status, 2);
  EXPECT_THAT(misspelt.err, HasSubstr("has no tag \"CH1\"; did you mean \"CH-1\"?"));
}

std::string Renamed(std::string document, const std::vector<std::string>& names) {
  std::size_t from = 0;
  for (const std::string& name : names) {
    from = document.find("<MARKFOR>", from) + std::string("<MARKFOR>").size();
    document.replace(from, document.find("</MARKFOR>", from) - from, name);
  }
  return document;
}

TEST_F(Return, NeverGuessesATag) {
  const std::string document = Exported({"RTU-1", "CH-1"});
  const Outcome twice = Run({"--tag", "AHU"}, Renamed(document, {"AHU", "AHU"}));
  EXPECT_EQ(twice.status, 2);
  EXPECT_THAT(twice.err, HasSubstr("several tags \"AHU\": say which by its place, 1, 2"));
  const std::string crossed = Renamed(document, {"2", "x"});
  const Outcome both = Run({"--tag", "2"}, crossed);
  EXPECT_EQ(both.status, 2);
  EXPECT_THAT(both.err, HasSubstr("\"2\" is the name of tag 1 of - and the place of another: say \"#1\" or \"#2\""));
  EXPECT_FALSE(BroughtBack());
  EXPECT_EQ(Run({"--tag", "#2"}, crossed).status, 0);
  EXPECT_EQ(ReadHostFile(Installed("Projects/Riverside Clinic/tag1103.blb")),
            ReadHostFile(Installed("Temp/QPblob.tmp")));
  EXPECT_EQ(Run({"--tag", "2"}, Renamed(document, {"1", "2"})).status, 0) << "name and place of the same tag";
}

TEST_F(Return, OfATagThatDidNotComeFromTheLegacyApplicationIsRefused) {
  const Outcome outcome =
      Run({}, "<PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG></ATTRIBUTES_LIST></TAG></TAGS></PROJECT>");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("was not brought back: Tag document BLOB is missing"));
  EXPECT_THAT(outcome.err, HasSubstr("Only units that originated in ORLA can be returned to ORLA"));
  EXPECT_EQ(Journalled("messageBox").size(), 1u);
  EXPECT_EQ(Run({}, "<PROJECT><TAGS><TAG/></TAGS></PROJECT>").status, 1);
  EXPECT_FALSE(BroughtBack());
}

TEST_F(Return, OfWhatIsNoHybrisDocumentIsWrongUsage) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"no xml", "no XML document"},
      {"<TAG/>", "its root is TAG"},
      {"<PROJECT><TAGS/></PROJECT>", "holds no tag"},
      {FailedReply("User Canceled"), "a failed reply: User Canceled"}};
  for (const auto& [text, named] : cases) {
    const Outcome outcome = Run({}, text);
    EXPECT_EQ(outcome.status, 2) << text;
    EXPECT_THAT(outcome.err, HasSubstr(named));
  }
}

TEST_F(Return, ThatCannotWriteTheHandOverIsAFailedCall) {
  const std::string document = Exported({"CH-1"});
  std::filesystem::remove_all(Installed("Temp"));
  const Outcome outcome = Run({}, document);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("QPblob.tmp"));
}

const std::string kBlob = "<BLOB><![CDATA[";

std::string Wrapped(const std::string& document, const char* lineEnd) {
  const std::size_t blob = document.find(kBlob) + kBlob.size();
  return document.substr(0, blob + 8) + lineEnd + document.substr(blob + 8);
}

TEST_F(Return, OfStoredDataThatWouldComeBackAsOtherBytesIsRefusedAndNothingIsSent) {
  const std::string document = Exported({"CH-1"});
  const std::size_t blob = document.find(kBlob) + kBlob.size();
  const std::string cut = document.substr(0, blob) + "!" + document.substr(blob + 1);
  const std::string none = document.substr(0, blob) + document.substr(document.find("]]></BLOB>"));
  for (const auto& [changed, named] : {std::pair(Wrapped(document, "\n"), "no Base64 throughout"),
                                       {Wrapped(document, "  "), "no Base64 throughout"},
                                       {cut, "no Base64 throughout"},
                                       {none, "has no stored data"}}) {
    const Outcome outcome = Run({}, changed);
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("the tag of - was not brought back as it was exported: "));
    EXPECT_THAT(outcome.err, HasSubstr(named));
    EXPECT_FALSE(BroughtBack());
  }
}

TEST_F(Return, LenientlyBringsBackWhatTheProtocolMakesOfStoredData) {
  EXPECT_EQ(Run({"--lenient"}, Wrapped(Exported({"CH-1"}), "\n")).status, 0);
  EXPECT_TRUE(BroughtBack());
  EXPECT_NE(ReadHostFile(Installed("Projects/Riverside Clinic/tag1103.blb")),
            ReadHostFile(Installed("Temp/QPblob.tmp")));
}

TEST_F(Return, IsCheckedByWhatLiesInTheHandOver) {
  const std::string document = Exported({"CH-1"});
  std::filesystem::remove_all(Installed("Temp"));
  std::filesystem::create_directories(Installed("Temp"));
  EXPECT_EQ(Run({}, document).status, 0);
  const std::string note = ReadHostFile(Installed("Temp/input.ini"));
  EXPECT_THAT(note, HasSubstr("QPblob.tmp"));
}

}  // namespace
}  // namespace parvex::test
