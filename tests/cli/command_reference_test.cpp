// What `parvex commands` tells of the protocol's commands, held against what they do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "formats/text/text.h"
#include "interface/command_table.h"
#include "tests/cli/reply_schema.h"
#include "tests/cli/sample_walk.h"

namespace parvex::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using SortedJson = nlohmann::json;

std::vector<std::string> AllCommandNames() {
  std::vector<std::string> names;
  for (const auto& table : {PullCommands(), PullNgorlaCommands()}) {
    for (const CommandEntry& entry : table) {
      if (std::ranges::find(names, entry.name) == names.end()) {
        names.emplace_back(entry.name);
      }
    }
  }
  return names;
}

SortedJson DescribedAsJson(const std::string& name) {
  return SortedJson::parse(RunParvex({"commands", name, "--json"}).out);
}

/// Whether a text is the pattern, in which "..." stands for any text.
bool Matches(std::string_view text, std::string_view pattern) {
  const std::size_t gap = pattern.find("...");
  if (gap == std::string_view::npos) {
    return text == pattern;
  }
  if (!text.starts_with(pattern.substr(0, gap))) {
    return false;
  }
  text.remove_prefix(gap);
  pattern.remove_prefix(gap + 3);
  for (;; text.remove_prefix(1)) {
    if (Matches(text, pattern)) {
      return true;
    }
    if (text.empty()) {
      return false;
    }
  }
}

TEST(CommandReference, TellsAllAboutEachCommand) {
  const std::vector<std::string> names = AllCommandNames();
  EXPECT_EQ(names.size(), 26u);
  for (const std::string& name : names) {
    const Outcome text = RunParvex({"commands", name});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_THAT(text.out, StartsWith(name + ": "));
    const SortedJson json = DescribedAsJson(name);
    for (const SortedJson& parameter : json["parameters"]) {
      EXPECT_THAT(text.out, HasSubstr("\n  " + parameter["name"].get<std::string>() + " "));
      EXPECT_NE(parameter["meaning"], "") << name << parameter;
      EXPECT_TRUE(!parameter["needed"] || parameter["example"] != "") << name << parameter;
    }
    EXPECT_THAT(json["entryPoints"], Not(IsEmpty()));
    EXPECT_THAT(json["failures"], Not(IsEmpty())) << name;
    for (const SortedJson& failure : json["failures"]) {
      EXPECT_THAT(text.out, HasSubstr("\n      " + failure["cause"].get<std::string>() + "\n"));
      EXPECT_TRUE(failure["text"] != "" || failure["kind"] == "noDocument" || failure["kind"] == "callEnds") << name;
    }
    EXPECT_THAT(text.out, HasSubstr("\n  " + json["reply"]["example"].get<std::string>() + "\n"));
  }
}

TEST(CommandReference, NamesTheEntryPointsThatServeTheCommand) {
  for (const std::string& name : AllCommandNames()) {
    const auto serves = [&](std::span<const CommandEntry> table) {
      return std::ranges::find(table, std::string_view(name), &CommandEntry::name) != table.end();
    };
    std::vector<std::string> entryPoints;
    if (serves(PullCommands())) {
      entryPoints.push_back("Pull");
    }
    if (serves(PullNgorlaCommands())) {
      entryPoints.push_back("PullNGORLA");
    }
    EXPECT_EQ(DescribedAsJson(name)["entryPoints"].get<std::vector<std::string>>(), entryPoints) << name;
  }
}

TEST(CommandReference, AsJsonWithoutANameIsAllOfThem) {
  const SortedJson all = SortedJson::parse(RunParvex({"commands", "--json"}).out);
  std::vector<std::string> names;
  for (const SortedJson& command : all) {
    names.push_back(command["name"]);
  }
  EXPECT_EQ(names, AllCommandNames());
  EXPECT_EQ(all[0], DescribedAsJson(names[0]));
}

TEST(CommandReference, OfACommandThatDoesNotExistIsWrongUsageAndSuggestsOne) {
  const Outcome misspelt = RunParvex({"commands", "getprojctlist"});
  EXPECT_EQ(misspelt.status, 2);
  EXPECT_EQ(misspelt.err, "parvex: there is no command \"getprojctlist\"; did you mean \"getProjectList\"?\n");
  EXPECT_EQ(RunParvex({"commands", "something"}).err,
            "parvex: there is no command \"something\"; \"parvex commands\" lists them\n");
  EXPECT_EQ(RunParvex({"commands", "--xml"}).status, 2);
}

class ExampleOf : public SampleWalk, public testing::WithParamInterface<std::string> {
 protected:
  /// Carries out the example of a command on the sample machine.
  Outcome Run(const SortedJson& command) {
    const std::string request = command["request"];
    EXPECT_EQ(RunParvex({"commands", command["name"], "--xml"}).out, request);
    const std::string file = Sample() + "/example.xml";
    WriteHostFile(file, request);
    EXPECT_EQ(RunParvex({"lint", file}).status, 0) << RunParvex({"lint", file}).out;
    EXPECT_EQ(SchemaProblem(RunParvex({"commands", "--schema", "requests"}).out, request), "");
    const bool byPull = command["entryPoints"][0] == "Pull";
    return RunParvex({"--machine", Sample(), byPull ? "pull" : "pull-ngorla", file});
  }
};

TEST_P(ExampleOf, RunsOnTheSampleMachineAndIsAnsweredAsTheReferenceTells) {
  const SortedJson command = DescribedAsJson(GetParam());
  if (command["runsAfter"] != "") {
    EXPECT_EQ(Run(DescribedAsJson(command["runsAfter"])).status, 0);
  }
  const Outcome outcome = Run(command);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::string example = command["reply"]["example"];
  EXPECT_TRUE(Matches(outcome.out, example + "\r\n")) << outcome.out << "is not " << example;
}

INSTANTIATE_TEST_SUITE_P(EachCommand, ExampleOf, testing::ValuesIn(AllCommandNames()),
                         [](const auto& info) { return info.param; });

TEST(RequestSchema, RefusesWhatNoCommandIs) {
  const std::string schema = RunParvex({"commands", "--schema", "requests"}).out;
  EXPECT_EQ(SchemaProblem(schema, CommandText("addProject", {{"projectName", "A"}})), "");
  EXPECT_NE(SchemaProblem(schema, CommandText("addproject", {{"projectName", "A"}})), "");
  EXPECT_NE(SchemaProblem(schema, CommandText("addProject", {{"projectName", "A"}, {"projectName", "B"}})), "");
  EXPECT_NE(SchemaProblem(schema, "<COMMAND/>"), "");
  EXPECT_NE(SchemaProblem(schema, "<COMMAND><NAME>addProject</NAME><PARAMETER><NAME>x</NAME></PARAMETER></COMMAND>"),
            "");
  EXPECT_NE(SchemaProblem(schema, "<Command><NAME>addProject</NAME></Command>"), "");
}

TEST(ReplySchema, RefusesWhatNoReplyIs) {
  const std::string schema = RunParvex({"commands", "--schema", "replies"}).out;
  const std::string envelope = "<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>";
  const std::string quote =
      "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"\"/><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST>"
      "<TAGS/></PROJECT>";
  EXPECT_EQ(SchemaProblem(schema, envelope), "");
  EXPECT_EQ(SchemaProblem(schema, quote), "");
  for (const auto& [good, bad] : std::vector<std::pair<std::string, std::string>>{
           {">0<", ">1<"}, {"<errorMessage/>", ""}, {"LegacyORLA", "LegacyOrla"}}) {
    EXPECT_NE(SchemaProblem(schema, ReplaceAll(envelope, good, bad)), "") << bad;
  }
  for (const auto& [good, bad] : std::vector<std::pair<std::string, std::string>>{
           {"<TAGS/>", ""}, {" LEGACY_PROJECTNAME=\"\"", ""}, {"<BRAND/>", ""}, {"<TAGS/>", "<TAGS><TAG/></TAGS>"}}) {
    EXPECT_NE(SchemaProblem(schema, ReplaceAll(quote, good, bad)), "") << bad;
  }
}

TEST(ReplySchema, IsAskedForByName) {
  EXPECT_EQ(RunParvex({"commands", "--schema"}).status, 2);
  const Outcome outcome = RunParvex({"commands", "--schema", "quotes"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("requests or replies"));
}

TEST(RepliesOfOneRun, AreParted) {
  EXPECT_EQ(RepliesIn("<A/>\r\n<B>\r\n</B>\r\n"), (std::vector<std::string>{"<A/>\r\n", "<B>\r\n</B>\r\n"}));
}

}  // namespace
}  // namespace parvex::test
