#include "recording/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>

#include "formats/zip/archive_file.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/thread_state.h"
#include "recording/case_layout.h"
#include "recording/recorded_case.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/recording/fake_system.h"

namespace parvex::recording {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kExport =
    "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
    "<ProjectName>Clinic</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>";
constexpr const char* kSelection =
    "[Header]\r\nAction=OK\r\n[PartNumber1]\r\nPartNumber=38AUZ1\r\nPDSG=38AQ1\r\nMarkFor=RTU-1\r\n"
    "FileName=C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb\r\nQuantity=2\r\n";

// A machine on which the workflow program leaves a selection of one tag.
class RecorderTest : public testing::Test {
 protected:
  RecorderTest() {
    machine.Write("C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb", "blob bytes");
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", "[Header]\r\nAction=CANCEL\r\n");
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\ubout.ini", "old");
    machine.processes.polls = 1;
    machine.processes.work = [this](const std::string&) {
      machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", kSelection);
    };
  }

  std::string Folder() const { return (records.Path() / "cases").string(); }
  // As the first call of a thread: what the protocol keeps per thread counts on.
  std::string Export(Recorder* with) {
    ForgetThisThread();
    return LegacyORLAPull(machine.platform, with).PullNGORLA(kExport);
  }
  std::string Export() { return Export(&recorder); }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const HostSystem::Entry& entry : system.List(Folder())) {
      names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  RecordedCase OnlyCase() {
    const std::vector<std::string> names = Names();
    EXPECT_EQ(names.size(), 1u);
    return ReadCase(system, Folder() + "/" + names.at(0));
  }

  test::FakeMachine machine;
  test::TemporaryFolder records;
  test::FakeSystem system;
  Recorder recorder{system, &machine.machine.GetOwnSettings(), Folder()};
};

const KeptFile* FileIn(const RecordedCase& read, const std::string& name) {
  const auto file = std::ranges::find(read.files, name, &KeptFile::name);
  return file == read.files.end() ? nullptr : &*file;
}

std::string BytesIn(const RecordedCase& read, const std::string& name) {
  const KeptFile* file = FileIn(read, name);
  return file == nullptr ? "(none)" : file->bytes;
}

// The first step of that kind and operation.
Json StepOf(const RecordedCase& read, const std::string& kind, const std::string& op, const std::string& at) {
  for (const Json& step : read.steps) {
    if (step.value("kind", "") == kind && step.value("op", "") == op && step["at"] == at) {
      return step;
    }
  }
  return nullptr;
}

TEST_F(RecorderTest, LeavesNothingWhileItIsOff) {
  Recorder off(system, &machine.machine.GetOwnSettings());
  Export(&off);
  EXPECT_EQ(system.steps, 0u);
}

TEST_F(RecorderTest, MakesOneCaseOfACall) {
  const std::string reply = Export();
  ASSERT_EQ(Names().size(), 1u);
  EXPECT_THAT(Names()[0], testing::MatchesRegex("20261122-101500-[0-9]+-[0-9]+-getHybrisXMLNoUI.pvxcase"));
  const RecordedCase read = OnlyCase();
  EXPECT_TRUE(read.isFinished);
  EXPECT_EQ(read.command, kExport);
  EXPECT_EQ(read.reply, reply);
  EXPECT_EQ(read.facts["format"], 1);
  EXPECT_EQ(read.facts["entryPoint"], "PullNGORLA");
  EXPECT_EQ(read.facts["command"], "getHybrisXMLNoUI");
  EXPECT_EQ(read.facts["outcome"], "reply");
  EXPECT_EQ(read.facts["codePage"], 1252);
  EXPECT_THAT(read.facts["missing"], IsEmpty());
  EXPECT_EQ(read.facts["thread"]["unstoredTagCount"], 0);
}

TEST_F(RecorderTest, KeepsAReplyThatIsHandedOverInPieces) {
  std::string reply;
  const auto take = [&](std::string_view piece) { reply += piece; };
  EXPECT_FALSE(LegacyORLAPull(machine.platform, &recorder).PullNGORLA(kExport, take));
  EXPECT_EQ(OnlyCase().reply, reply);
  EXPECT_THAT(reply, HasSubstr("<TAG>"));
}

TEST_F(RecorderTest, KeepsAReplyWhosePiecesTheCallerRefuses) {
  const std::string reply = Export(nullptr);
  int taken = 0;
  const auto take = [&](std::string_view) {
    ++taken;
    throw std::runtime_error("the reader went away");
  };
  ForgetThisThread();
  machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", "[Header]\r\nAction=CANCEL\r\n");
  EXPECT_THROW(LegacyORLAPull(machine.platform, &recorder).PullNGORLA(kExport, take), std::runtime_error);
  EXPECT_EQ(taken, 1);
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(read.facts["outcome"], "reply");
  EXPECT_EQ(read.reply, reply);
}

// What waits to be written is written before anybody else has his turn.
TEST_F(RecorderTest, HasWrittenAllBeforeMessagesOfTheHostRun) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", std::string("[Header]\r\nAction=CANCEL\r\n"));
  std::size_t seen = 0;
  struct LookingPump : MessagePump {
    std::function<void()> look;
    void RunPending() override { look(); }
    void Sleep(std::chrono::milliseconds) override {}
  } pump;
  pump.look = [&] {
    const RecordedCase read = ReadCase(system, Folder() + "/" + Names().at(0));
    seen = std::max(seen, read.steps.size());
    EXPECT_EQ(BytesIn(read, "machine/drive_c/Korvane/TQ5-VX/Temp/ubout.ini"), "old");
  };
  machine.platform.messagePump = &pump;
  Export();
  EXPECT_GT(seen, 3u);
}

TEST_F(RecorderTest, KeepsFilesAsTheyWereBeforeTheCall) {
  Export();
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(BytesIn(read, "machine/drive_c/Korvane/TQ5-VX/Blobs/tag1.blb"), "blob bytes");
  EXPECT_EQ(BytesIn(read, "machine/drive_c/Korvane/TQ5-VX/Temp/QBOutput.ini"), "[Header]\r\nAction=CANCEL\r\n");
  EXPECT_EQ(BytesIn(read, "machine/drive_c/Korvane/TQ5-VX/Temp/ubout.ini"), "old");
  const KeptFile* folder = FileIn(read, "machine/drive_c/Korvane/TQ5-VX/Temp");
  ASSERT_NE(folder, nullptr);
  EXPECT_TRUE(folder->isFolder);
}

TEST_F(RecorderTest, KeepsRegistryValuesThatWereRead) {
  Export();
  const RecordedCase read = OnlyCase();
  const std::string bytes = BytesIn(read, "machine/registry.reg");
  test::TemporaryFolder again;
  test::WriteHostFile(again.Path() / "registry.reg", bytes);
  posix::Machine copy(again.Path());
  EXPECT_EQ(copy.GetRegistry().LocalMachineString("SOFTWARE\\Korvane\\KDQ47", "BinPath"), test::FakeMachine::kBinPath);
}

TEST_F(RecorderTest, KeepsWhatAProgramAndTheCallLeft) {
  Export();
  const RecordedCase read = OnlyCase();
  const Json start = StepOf(read, "process", "start", "before");
  const Json end = StepOf(read, "process", "end", "once");
  ASSERT_TRUE(end.is_object());
  EXPECT_EQ(end["start"], start["n"]);
  EXPECT_EQ(end["exitCode"], 0);
  ASSERT_EQ(end["left"].size(), 1u);
  EXPECT_EQ(BytesIn(read, end["left"][0]["stored"].get<std::string>()), kSelection);
  // The command's own selection was on disk before the program could fail.
  const Json left = StepOf(read, "file", "left", "once");
  EXPECT_LT(left["n"], start["n"]);
  EXPECT_EQ(BytesIn(read, left["stored"].get<std::string>()).substr(0, 4), machine.Read(left["path"]).substr(0, 4));
}

TEST_F(RecorderTest, TellsEachStepBeforeAndAfter) {
  Export();
  const RecordedCase read = OnlyCase();
  std::map<std::uint64_t, std::string> open;
  std::uint64_t time = 0;
  for (const Json& step : read.steps) {
    EXPECT_GE(step["us"].get<std::uint64_t>(), time);
    time = step["us"];
    const std::uint64_t number = step["n"];
    if (step["at"] == "before") {
      open[number] = step.dump();
    } else if (step["at"] == "after") {
      EXPECT_EQ(open.erase(number), 1u) << step.dump();
    }
  }
  EXPECT_THAT(open, IsEmpty());
  EXPECT_EQ(StepOf(read, "registry", "read", "before")["value"], "BinPath");
  EXPECT_TRUE(StepOf(read, "file", "remove", "before").is_object());
  EXPECT_TRUE(StepOf(read, "file", "replace", "before").is_object());
}

TEST_F(RecorderTest, HasWrittenTheStartBeforeAProgramRuns) {
  std::optional<RecordedCase> seen;
  machine.processes.work = [&](const std::string&) { seen = ReadCase(system, Folder() + "/" + Names().at(0)); };
  Export();
  ASSERT_TRUE(seen);
  EXPECT_FALSE(seen->isFinished);
  EXPECT_EQ(seen->command, kExport);
  EXPECT_EQ(seen->facts["outcome"], "unfinished");
  EXPECT_TRUE(StepOf(*seen, "process", "start", "before").is_object());
  EXPECT_EQ(StepOf(*seen, "process", "end", "once"), nullptr);
  EXPECT_EQ(BytesIn(*seen, "machine/drive_c/Korvane/TQ5-VX/Temp/ubout.ini"), "old");
}

TEST_F(RecorderTest, GivesTheSameReplyAndLeavesTheSameFiles) {
  const auto filesLeft = [&] {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(machine.folder.Path())) {
      if (entry.is_regular_file()) {
        files[entry.path().string()] = test::ReadHostFile(entry.path());
      }
    }
    return files;
  };
  const std::string plain = Export(nullptr);
  const auto plainFiles = filesLeft();
  machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", "[Header]\r\nAction=CANCEL\r\n");
  machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\ubout.ini", "old");
  EXPECT_EQ(Export(), plain);
  EXPECT_EQ(filesLeft(), plainFiles);
}

TEST_F(RecorderTest, TellsFailureAndError) {
  machine.processes.work = [this](const std::string&) {
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", "[Header]\r\nAction=CANCEL\r\n");
  };
  Export();
  EXPECT_EQ(OnlyCase().facts["outcome"], "failure");
  std::filesystem::remove_all(Folder());
  EXPECT_THROW(LegacyORLAPull(machine.platform, &recorder).PullNGORLA("<x/>"), AutomationError);
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(read.facts["outcome"], "error");
  EXPECT_EQ(read.facts["error"]["number"], "0x800A005B");
  EXPECT_EQ(read.reply, std::nullopt);
}

TEST_F(RecorderTest, KeepsOnlyFailuresWhereAskedTo) {
  machine.machine.GetOwnSettings().Write(RegistryHive::CurrentUser, kKey, kOnlyFailuresValue, "1");
  Export();
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THROW(LegacyORLAPull(machine.platform, &recorder).PullNGORLA("<x/>"), AutomationError);
  EXPECT_EQ(Names().size(), 1u);
}

TEST_F(RecorderTest, RecordsRequestsToTheRouter) {
  machine.routers.answers = {{true, "<Projects/>"}};
  LegacyORLAPull(machine.platform, &recorder)
      .Pull(xml::Document::Parse("<COMMAND><NAME>getProjectList</NAME></COMMAND>"));
  const RecordedCase read = OnlyCase();
  const auto router = std::ranges::find_if(read.steps, [](const Json& step) { return step.contains("answer"); });
  ASSERT_NE(router, read.steps.end());
  EXPECT_EQ((*router)["answer"], "<Projects/>");
  EXPECT_EQ((*router)["at"], "after");
}

// Whatever fails in the recording, the call does not notice.
TEST_F(RecorderTest, ChangesNoCallWhenTheSystemFailsAtAnyStep) {
  const std::string plain = Export(nullptr);
  Export();
  const std::uint64_t all = system.steps;
  ASSERT_GT(all, 20u);
  for (std::uint64_t failing = 0; failing < all; ++failing) {
    std::filesystem::remove_all(Folder());
    system.stepsLeft = failing;
    ASSERT_EQ(Export(), plain) << failing;
    for (const std::string& name : Names()) {
      const std::string path = Folder() + "/" + name;
      if (std::filesystem::is_regular_file(path) || std::filesystem::exists(path + "/" + std::string(kFacts))) {
        EXPECT_NO_THROW(ReadCase(system, path)) << failing;
      }
    }
  }
}

TEST_F(RecorderTest, SaysWhatAFullDiskMadeItLeaveOut) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb", std::string(100'000, 'b'));
  machine.processes.work = [this](const std::string&) {
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", kSelection);
    system.room = 50'000;
  };
  Export();
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(FileIn(read, "machine/drive_c/Korvane/TQ5-VX/Blobs/tag1.blb"), nullptr);
  EXPECT_THAT(read.facts["missing"].dump(), HasSubstr("tag1.blb"));
  EXPECT_THAT(read.facts["missing"].dump(), HasSubstr("the disk is full"));
}

TEST_F(RecorderTest, AWholeCaseLacksNothingThoughItsFolderCannotGo) {
  system.keepsFolders = true;
  Export();
  std::size_t whole = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
    if (entry.is_regular_file()) {
      EXPECT_EQ(ReadCase(system, entry.path().string()).facts["missing"], Json::array());
      ++whole;
    } else {
      EXPECT_THAT(test::ReadHostFile(entry.path() / std::string(kFacts)), testing::Not(HasSubstr("somebody looks")));
    }
  }
  EXPECT_EQ(whole, 1u);
}

TEST_F(RecorderTest, LeavesOutAFileThatIsTooLarge) {
  machine.machine.GetOwnSettings().Write(RegistryHive::CurrentUser, kKey, kMegabytesValue, "1");
  machine.Write("C:\\Korvane\\TQ5-VX\\Blobs\\tag1.blb", std::string(1'100'000, 'b'));
  Export();
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(FileIn(read, "machine/drive_c/Korvane/TQ5-VX/Blobs/tag1.blb"), nullptr);
  EXPECT_THAT(read.facts["missing"].dump(), HasSubstr("more bytes than are kept"));
}

TEST_F(RecorderTest, ChangesNoCallWhereTheFolderCannotBeMade) {
  const std::string plain = Export(nullptr);
  test::WriteHostFile(records.Path() / "file", "");
  Recorder nowhere(system, nullptr, (records.Path() / "file" / "cases").string());
  EXPECT_EQ(Export(&nowhere), plain);
}

TEST_F(RecorderTest, GivesANestedCallACaseOfItsOwn) {
  LegacyORLAPull pull(machine.platform, &recorder);
  machine.routers.answers = {{true, "<Projects/>"}};
  bool isNested = false;
  machine.processes.work = [&](const std::string&) {
    if (!std::exchange(isNested, true)) {
      pull.Pull(xml::Document::Parse("<COMMAND><NAME>getProjectList</NAME></COMMAND>"));
    }
    machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", kSelection);
  };
  pull.PullNGORLA(kExport);
  const std::vector<std::string> names = Names();
  ASSERT_EQ(names.size(), 2u);
  const auto nested =
      std::ranges::find_if(names, [](const auto& name) { return name.ends_with("getProjectList.pvxcase"); });
  const auto outer = std::ranges::find_if(names, [](const auto& name) { return name.ends_with("NoUI.pvxcase"); });
  ASSERT_NE(nested, names.end());
  ASSERT_NE(outer, names.end());
  const RecordedCase read = ReadCase(system, Folder() + "/" + *outer);
  const auto told =
      std::ranges::find_if(read.steps, [](const Json& step) { return step.value("kind", "") == "nested"; });
  ASSERT_NE(told, read.steps.end());
  EXPECT_EQ((*told)["case"].get<std::string>() + ".pvxcase", *nested);
  EXPECT_FALSE(std::ranges::any_of(read.steps, [](const Json& step) { return step.contains("answer"); }));
  EXPECT_TRUE(StepOf(read, "process", "end", "once").is_object());
}

TEST_F(RecorderTest, RecordsAnInstanceFromTheCallOnThatItIsSwitchedOn) {
  Recorder byRegistry(system, &machine.machine.GetOwnSettings());
  LegacyORLAPull pull(machine.platform, &byRegistry);
  machine.routers.answers = {{true, "<Projects/>"}, {true, "<Projects/>"}, {true, "<Projects/>"}};
  const auto ask = [&] { pull.Pull(xml::Document::Parse("<COMMAND><NAME>getProjectList</NAME></COMMAND>")); };
  ask();
  SaveFolder(machine.machine.GetOwnSettings(), Folder());
  ask();
  SaveFolder(machine.machine.GetOwnSettings(), "");
  ask();
  EXPECT_EQ(machine.routers.requests.size(), 3u);
  const RecordedCase read = OnlyCase();
  EXPECT_EQ(std::ranges::count_if(read.steps, [](const Json& step) { return step.contains("answer"); }), 1);
}

}  // namespace
}  // namespace parvex::recording
