#include "replay/case_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "adapters/posix/machine.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/thread_state.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/recording/fake_system.h"

// A call is recorded on a machine of fakes and done again; then the record is changed in one place, and that is told.

namespace parvex::replay {
namespace {

using automation::Argument;
using recording::Json;
using recording::RecordedCase;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kExport =
    "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
    "<ProjectName>Clinic</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>";
constexpr const char* kRebuild =
    "<COMMAND><NAME>rebuildAllTags</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Clinic</VALUE></PARAMETER></"
    "COMMAND>";
constexpr const char* kNewTag =
    "<COMMAND><NAME>newTag</NAME><PARAMETER><NAME>PDSG</NAME><VALUE>A</VALUE></PARAMETER><PARAMETER>"
    "<NAME>projectName</NAME><VALUE>Clinic</VALUE></PARAMETER></COMMAND>";
constexpr const char* kAddProject =
    "<COMMAND><NAME>addProject</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Clinic</VALUE></PARAMETER></COMMAND>";
constexpr const char* kSelection =
    "[Header]\r\nAction=OK\r\n[PartNumber1]\r\nPartNumber=38AUZ1\r\nPDSG=38AQ1\r\nMarkFor=RTU-1\r\n"
    "FileName=C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb\r\nQuantity=2\r\n";
constexpr const char* kOutput = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";
const std::string kBuilder = "KDQU470.CKDBuilder";
const std::string kBroker = kBuilder + ".Framework.ServiceBroker";

std::shared_ptr<const Platform> FolderAsMachine(const std::string& folder, unsigned) {
  struct Held {
    explicit Held(const std::string& path) : machine(path), platform(machine.AsPlatform()) {}
    posix::Machine machine;
    Platform platform;
  };
  const auto held = std::make_shared<Held>(folder);
  return {held, &held->platform};
}

class CaseRunTest : public testing::Test {
 protected:
  CaseRunTest() {
    machine.Write("C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb", "blob bytes");
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\ubout.ini", "old");
    machine.processes.polls = 1;
    machine.processes.work = [this](const std::string&) { machine.Write(kOutput, kSelection); };
    machine.automation.Offer(kBuilder);
    machine.automation.Answer(kBuilder + ".UILoaded", {false, true});
    machine.automation.AnswerObject(kBuilder + ".Framework");
    machine.automation.AnswerObject(kBroker);
  }

  RecordedCase RecordPull(const std::string& command) {
    return Recorded([&](LegacyORLAPull& pull) { pull.Pull(xml::Document::Parse(command)); });
  }
  RecordedCase RecordText(const std::string& command) {
    return Recorded([&](LegacyORLAPull& pull) { pull.PullNGORLA(command); });
  }

  RunResult Run(const RecordedCase& recorded, bool lenient = false) {
    test::TemporaryFolder folder;
    return RunCase(system, recorded, {folder.Path().string(), FolderAsMachine, lenient});
  }

  test::FakeMachine machine;
  test::TemporaryFolder records;
  test::FakeSystem system;
  recording::Recorder recorder{system, &machine.machine.GetOwnSettings(), (records.Path() / "cases").string()};

 private:
  template <typename Call>
  RecordedCase Recorded(Call call) {
    ForgetThisThread();
    LegacyORLAPull pull(machine.platform, &recorder);
    try {
      call(pull);
    } catch (const AutomationError&) {
      // The case says so.
    }
    const std::string folder = (records.Path() / "cases").string();
    std::vector<HostSystem::Entry> entries = system.List(folder);
    std::ranges::sort(entries, {}, &HostSystem::Entry::name);
    return recording::ReadCase(system, folder + "/" + entries.back().name);
  }
};

// The first line of that kind and place in time.
Json& Line(RecordedCase& recorded, const std::string& kind, const std::string& at, const std::string& op = {}) {
  for (Json& line : recorded.steps) {
    if (line.value("kind", "") == kind && line["at"] == at && (op.empty() || line.value("op", "") == op)) {
      return line;
    }
  }
  ADD_FAILURE() << "no " << kind << " " << op;
  return recorded.steps.front();
}

std::string Told(const RunResult& result) {
  std::string text;
  for (const Difference& one : result.differences) {
    text += std::to_string(one.step) + " " + one.what + ": " + one.expected + " / " + one.actual + "\n";
  }
  return text;
}

std::uint64_t StepOfFirst(const RunResult& result) {
  return result.differences.empty() ? 0 : result.differences[0].step;
}

void RemoveStep(RecordedCase& recorded, const Json& number) {
  std::erase_if(recorded.steps, [number](const Json& line) { return line["n"] == number; });
}

TEST_F(CaseRunTest, ReproducesWhatWasRecorded) {
  machine.routers.answers = {{true, "<Projects/>"}};
  for (const RecordedCase& recorded :
       {RecordText(kExport), RecordPull(kRebuild), RecordPull(kNewTag), RecordPull(kAddProject)}) {
    const RunResult result = Run(recorded);
    EXPECT_EQ(Told(result), "");
    EXPECT_GT(result.steps, 0u);
    EXPECT_EQ(result.outcome, recorded.facts["outcome"].get<std::string>());
  }
}

TEST_F(CaseRunTest, LeavesThisThreadAsItWas) {
  const RecordedCase recorded = RecordText(kExport);
  ForgetThisThread();
  ThisThread().binPath = "C:\\Mine\\";
  Run(recorded);
  EXPECT_EQ(ThisThread().binPath, "C:\\Mine\\");
  ForgetThisThread();
}

TEST_F(CaseRunTest, TellsAnotherReply) {
  RecordedCase recorded = RecordText(kExport);
  recorded.reply = recorded.reply->replace(recorded.reply->find("RTU-1"), 5, "RTU-9");
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].what, "reply");
  EXPECT_THAT(result.differences[0].expected, HasSubstr("RTU-9"));
  EXPECT_THAT(result.differences[0].actual, HasSubstr("RTU-1"));
}

TEST_F(CaseRunTest, TellsAnotherRequestWithItsStep) {
  machine.routers.answers = {{true, ""}};
  RecordedCase recorded = RecordPull(kAddProject);
  Json& line = Line(recorded, "router", "before");
  line["request"] = "<COMMAND><NAME>addProject</NAME></COMMAND>";
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].step, line["n"]);
  EXPECT_EQ(result.differences[0].what, "router");
  EXPECT_EQ(result.differences[0].expected, line["request"].get<std::string>());
  EXPECT_THAT(result.differences[0].actual, HasSubstr("Clinic"));
}

TEST_F(CaseRunTest, ComparesRequestsAsXml) {
  machine.routers.answers = {{true, ""}};
  RecordedCase recorded = RecordPull(kAddProject);
  Json& line = Line(recorded, "router", "before");
  std::string laidOut = line["request"];
  laidOut.insert(laidOut.find("<NAME>"), "\r\n\t");
  line["request"] = "<?xml version=\"1.0\"?>\r\n" + laidOut;
  EXPECT_EQ(Told(Run(recorded)), "");
}

TEST_F(CaseRunTest, TellsAStepThatTheRecordLacks) {
  RecordedCase recorded = RecordPull(kRebuild);
  const Json put = Line(recorded, "automation", "before", "call");
  RemoveStep(recorded, put["n"]);
  const RunResult result = Run(recorded);
  EXPECT_GT(StepOfFirst(result), put["n"].get<std::uint64_t>());
  ASSERT_FALSE(result.IsReproduced());
  EXPECT_EQ(result.differences[0].what, kBuilder + " call " + std::string(put["member"]));
}

TEST_F(CaseRunTest, TellsAStepThatNobodyAsksFor) {
  RecordedCase recorded = RecordPull(kNewTag);
  const auto call =
      std::ranges::find_if(recorded.steps, [](const Json& line) { return line.value("op", "") == "call"; });
  ASSERT_NE(call, recorded.steps.end());
  const Json added = {{"n", 777u}, {"at", "before"}, {"kind", "messageBox"}, {"text", "a"}, {"caption", "b"}};
  const auto at = recorded.steps.insert(call, added);
  recorded.steps.insert(at + 1, Json{{"n", 777u}, {"at", "after"}});
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].step, 777u);
  EXPECT_EQ(result.differences[0].actual, "nothing");
  EXPECT_EQ(Told(Run(recorded, true)), "");
}

TEST_F(CaseRunTest, TellsAnotherFileThatWasLeft) {
  RecordedCase recorded = RecordText(kExport);
  const std::string stored = Line(recorded, "process", "once", "end")["left"][0]["stored"];
  std::ranges::find(recorded.files, stored, &recording::KeptFile::name)->bytes = "[Header]\r\nAction=Cancel\r\n";
  EXPECT_FALSE(Run(recorded).IsReproduced());
}

TEST_F(CaseRunTest, TellsAFileThatTheCallLeftInAnotherWay) {
  RecordedCase recorded = RecordText(kExport);
  Json& left = Line(recorded, "file", "once", "left");
  std::ranges::find(recorded.files, std::string(left["stored"]), &recording::KeptFile::name)->bytes += "x";
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].what, left["path"].get<std::string>());
  EXPECT_THAT(result.differences[0].expected, testing::EndsWith("x"));
}

TEST_F(CaseRunTest, TellsAFileThatIsMissing) {
  RecordedCase recorded = RecordText(kExport);
  const Json kept = {{"n", 888u},    {"at", "once"},          {"kind", "file"},
                     {"op", "left"}, {"path", "C:\\new.txt"}, {"stored", "after/888/drive_c/new.txt"}};
  recorded.steps.push_back(kept);
  recorded.files.push_back({"after/888/drive_c/new.txt", "new", false});
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].what, "C:\\new.txt");
  EXPECT_EQ(result.differences[0].actual, "no such file");
}

TEST_F(CaseRunTest, TellsAFileThatTheRecordDoesNotHave) {
  RecordedCase recorded = RecordText(kExport);
  const std::string left = Line(recorded, "file", "once", "left")["path"];
  std::erase_if(recorded.steps, [&](const Json& line) { return line.value("path", "") == left; });
  const RunResult result = Run(recorded);
  EXPECT_THAT(Told(result), HasSubstr("0 " + left + ": no such file / "));
}

TEST_F(CaseRunTest, GivesBackTheExitCode) {
  machine.processes.work = {};
  machine.processes.exitCode = 3;
  RecordedCase recorded = RecordText(kExport);
  EXPECT_EQ(Told(Run(recorded)), "");
}

TEST_F(CaseRunTest, RaisesRecordedErrorsAgain) {
  machine.automation.failAt = kBroker + ".CallService";
  RecordedCase recorded = RecordPull(kNewTag);
  EXPECT_EQ(recorded.facts["outcome"], "error");
  EXPECT_EQ(Told(Run(recorded)), "");
  const auto failing = std::ranges::find_if(recorded.steps, [](const Json& line) {
    return line.contains("error") && line["error"]["number"] == recording::Json("0x80004005");
  });
  ASSERT_NE(failing, recorded.steps.end());
  (*failing)["error"]["description"] = "another reason";
  const RunResult result = Run(recorded);
  ASSERT_FALSE(result.IsReproduced());
  EXPECT_THAT(Told(result), HasSubstr("outcome: error 0x80004005"));
  EXPECT_THAT(Told(result), HasSubstr("another reason"));
}

TEST_F(CaseRunTest, GivesBackArgumentsThatACallChanged) {
  machine.automation.Do(kBroker + ".CallService", [](std::span<Argument> arguments) -> automation::Value {
    auto& items = *std::get<automation::CollectionRef>(arguments[2].value);
    for (auto& [key, item] : items) {
      if (item.byReference) {
        item.value = automation::ObjectRef();
      }
    }
    return true;
  });
  RecordedCase recorded = RecordPull(kNewTag);
  EXPECT_EQ(Told(Run(recorded)), "");
}

// The host died while the program ran.
TEST_F(CaseRunTest, EndsWhereTheRecordEnds) {
  RecordedCase recorded = RecordText(kExport);
  recorded.isFinished = false;
  recorded.facts["outcome"] = "unfinished";
  recorded.reply.reset();
  const auto end = std::ranges::find_if(recorded.steps, [](const Json& line) { return line.value("op", "") == "end"; });
  recorded.steps.erase(end, recorded.steps.end());
  RunResult result = Run(recorded);
  EXPECT_EQ(Told(result), "");
  EXPECT_EQ(result.outcome, "unfinished");
  EXPECT_THAT(result.notes, ElementsAre(HasSubstr("which was reached")));
  // Or before it had started.
  const Json number = Line(recorded, "process", "before", "start")["n"];
  std::erase_if(recorded.steps, [&](const Json& line) { return line["n"] == number && line["at"] == "after"; });
  result = Run(recorded);
  EXPECT_EQ(Told(result), "");
  EXPECT_EQ(result.outcome, "unfinished");
}

TEST_F(CaseRunTest, ReachesAnotherStepThanTheRecordEndsAt) {
  RecordedCase recorded = RecordText(kExport);
  recorded.facts["outcome"] = "unfinished";
  const auto start =
      std::ranges::find_if(recorded.steps, [](const Json& line) { return line.value("op", "") == "start"; });
  recorded.steps.erase(start + 1, recorded.steps.end());
  recorded.steps.back()["command"] = "another.exe";
  const RunResult result = Run(recorded);
  ASSERT_EQ(result.differences.size(), 1u) << Told(result);
  EXPECT_EQ(result.differences[0].step, recorded.steps.back()["n"]);
  EXPECT_EQ(result.outcome, "unfinished");
}

TEST_F(CaseRunTest, ChangesFilesThatOthersChangedMeanwhile) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Bin\\UIKeys.txt", "before");
  machine.routers.onRequest = [this](const std::string&, std::string& answer) {
    answer = "<Projects/>";
    return true;
  };
  RecordedCase recorded = RecordText(kExport);
  const auto end = std::ranges::find_if(recorded.steps, [](const Json& line) { return line.value("op", "") == "end"; });
  const Json changed = {{"n", 999u},       {"at", "once"},
                        {"kind", "file"},  {"op", "changed"},
                        {"path", kOutput}, {"stored", "after/999/drive_c/Korvane/TQ5-VX/Temp/QBOutput.ini"}};
  recorded.steps.insert(end + 1, changed);
  recorded.files.push_back({changed["stored"], "[Header]\r\nAction=Cancel\r\n", false});
  // The call sees what it became, and answers something else than the record says.
  EXPECT_THAT(Told(Run(recorded)), HasSubstr("outcome: reply / failure"));
}

// The blob is on a share, as a case from Windows has it.
TEST_F(CaseRunTest, FindsFilesOfANetwork) {
  RecordedCase recorded = RecordText(kExport);
  const std::string shared = "\\\\SERVER\\Blobs\\tag1.blb";
  const std::string local = "C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb";
  for (recording::KeptFile& file : recorded.files) {
    if (file.name.ends_with("Blobs/tag1.blb")) {
      file.name = "machine/unc/SERVER/Blobs/tag1.blb";
    }
    if (const std::size_t at = file.bytes.find(local); at != std::string::npos) {
      file.bytes.replace(at, local.size(), shared);
    }
  }
  std::erase_if(recorded.files, [](const auto& file) { return file.name.find("TQ5-VX/Blobs") != std::string::npos; });
  for (Json& line : recorded.steps) {
    if (line.value("path", "") == local) {
      line["path"] = shared;
    }
  }
  EXPECT_EQ(Told(Run(recorded)), "");
}

TEST_F(CaseRunTest, SaysWhatTheRecordLacks) {
  RecordedCase recorded = RecordText(kExport);
  recorded.facts["missing"] = Json::array({{{"what", "machine/a"}, {"why", "disk full"}}});
  EXPECT_THAT(Run(recorded).notes, ElementsAre("the record lacks machine/a: disk full"));
}

TEST_F(CaseRunTest, TakesACaseOfWrongTypesWithoutHarm) {
  RecordedCase recorded;
  recorded.facts = Json::parse(R"({"format":1,"outcome":5,"thread":[],"instance":{"tagNames":7},"missing":"x"})");
  recorded.steps.push_back(Json::parse(R"({"n":1,"at":"before","kind":"router","request":[]})"));
  recorded.steps.push_back(Json::parse(R"({"n":1,"at":"after","error":"none","left":5})"));
  recorded.steps.push_back(Json::parse(R"({"n":2,"at":"once","kind":"process","op":"end","left":[1,{"path":3}]})"));
  EXPECT_FALSE(Run(recorded).IsReproduced());
}

}  // namespace
}  // namespace parvex::replay
