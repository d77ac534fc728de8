#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cli/host/host.h"
#include "interface/command_table.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/thread_state.h"
#include "legacy_standin/sample/sample_machine.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

// While a command waits, for the builder, for a program or for the user at a box, the host's own messages run, and one
// of them may send another command to the same instance.

namespace parvex::test {
namespace {

/// A command document as a front end sends it.
struct Sent {
  std::string text;
  bool asText = false;  ///< to PullNGORLA

  std::string Name() const {
    const std::size_t begin = text.find("<NAME>") + 6;
    return text.substr(begin, text.find("</NAME>") - begin);
  }
};

/// What a call came to: its reply, or the error that left it.
struct Outcome {
  std::string reply;
  std::uint32_t error = 0;
  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << std::hex << outcome.error << " " << outcome.reply.substr(0, 600);
}

Outcome Send(LegacyORLAPull& pull, const Sent& command) {
  try {
    if (command.asText) {
      return {pull.PullNGORLA(command.text)};
    }
    const xml::Document reply = pull.Pull(xml::Document::Parse(command.text));
    return {reply ? reply.Xml() : std::string()};
  } catch (const AutomationError& error) {
    return {error.Description(), error.Number()};
  }
}

/// Runs what it is given at one of its turns, once.
class OneMessage {
 public:
  std::function<void()> message;
  int atTurn = 1;

  void Turn() {
    if (++turns_ >= atTurn && message) {
      const std::function<void()> run = std::exchange(message, nullptr);
      run();
    }
  }

 private:
  int turns_ = 0;
};

class CallingPump : public MessagePump {
 public:
  explicit CallingPump(OneMessage& message) : message_(message) {}
  void RunPending() override { message_.Turn(); }
  void Sleep(std::chrono::milliseconds) override {}

 private:
  OneMessage& message_;
};

class CallingBoxes : public MessageBoxes {
 public:
  explicit CallingBoxes(OneMessage& message) : message_(message) {}
  void Show(std::string_view, std::string_view, Icon) override { message_.Turn(); }

 private:
  OneMessage& message_;
};

/// Programs that have done their work before anybody looks, and are seen to run for one look more.
class EndedPrograms : public Processes {
 public:
  explicit EndedPrograms(Processes& real) : real_(real) {}
  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program) override {
    std::unique_ptr<Process> process = real_.Start(commandLine, windowStyle, program);
    while (process->ExitCode() == kStillActive) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return std::make_unique<SeenOnce>(std::move(process));
  }

 private:
  class SeenOnce : public Process {
   public:
    explicit SeenOnce(std::unique_ptr<Process> ended) : ended_(std::move(ended)) {}
    std::uint32_t ExitCode() override { return std::exchange(seen_, true) ? ended_->ExitCode() : kStillActive; }

   private:
    std::unique_ptr<Process> ended_;
    bool seen_ = false;
  };
  Processes& real_;
};

/// A sample machine with a second project, made once.
const std::filesystem::path& Template() {
  static const TemporaryFolder folder;
  static const std::filesystem::path machine = [] {
    const std::filesystem::path made = folder.Path() / "machine";
    standin::CreateSampleMachine(made, PARVEX_WORKFLOW);
    ForgetThisThread();
    cli::Host host(made.string());
    LegacyORLAPull pull(host.Platform());
    EXPECT_EQ(Send(pull, {ReadHostFile(made / "commands/project-01-add.xml")}).error, 0u);
    return made;
  }();
  return machine;
}

/// The program is not copied: it is large, and nobody changes it.
void CopyTemplate(const std::filesystem::path& machine) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Template())) {
    const std::filesystem::path copy = machine / std::filesystem::relative(entry.path(), Template());
    if (entry.is_directory()) {
      std::filesystem::create_directories(copy);
    } else if (entry.path().filename() == "kdwfm470.exe") {
      std::filesystem::create_hard_link(entry.path(), copy);
    } else {
      std::filesystem::create_directories(copy.parent_path());
      std::filesystem::copy_file(entry.path(), copy);
    }
  }
}

/// A copy of it, with one instance.
class Session {
 public:
  Session() {
    ForgetThisThread();
    CopyTemplate(machine);
    host_ = std::make_unique<cli::Host>(machine.string());
    Platform platform = host_->Platform();
    programs_ = std::make_unique<EndedPrograms>(*platform.processes);
    platform.processes = programs_.get();
    platform.messagePump = &pump_;
    platform.messageBoxes = &boxes_;
    pull = std::make_unique<LegacyORLAPull>(platform);
  }

  OneMessage message;
  std::unique_ptr<LegacyORLAPull> pull;

 private:
  TemporaryFolder folder_;

 public:
  const std::filesystem::path machine = folder_.Path() / "machine";

 private:
  std::unique_ptr<cli::Host> host_;
  std::unique_ptr<EndedPrograms> programs_;
  CallingPump pump_{message};
  CallingBoxes boxes_{message};
};

Sent Sample(const std::string& name, bool asText = false) {
  return {ReadHostFile(Template() / "commands" / (name + ".xml")), asText};
}

Sent WayBack() {
  Session session;
  const std::string quote = Send(*session.pull, Sample("getHybrisXMLNoUI", true)).reply;
  const std::size_t begin = quote.find("<TAG>");
  const std::string tag = quote.substr(begin, quote.find("</TAG>") + 6 - begin);
  return {"<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS>" + tag +
              "</TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>",
          true};
}

/// One command document for every command that is served.
const std::vector<Sent>& EveryCommand() {
  static const std::vector<Sent> commands = [] {
    std::vector<Sent> all;
    for (const char* name : {"project-02-set-properties",
                             "project-03-list",
                             "project-04-copy",
                             "project-05-rename",
                             "project-06-properties",
                             "project-07-archive",
                             "project-08-delete",
                             "report-01-available",
                             "report-02-one",
                             "report-03-several",
                             "report-04-submittal",
                             "report-05-schedule",
                             "tag-01-list",
                             "tag-02-fetch",
                             "tag-03-rename",
                             "tag-04-copy",
                             "tag-05-delete",
                             "tag-06-new",
                             "tag-07-configure",
                             "tag-08-rebuild-all",
                             "getOptions",
                             "getHybrisXML"}) {
      all.push_back(Sample(name));
    }
    all.push_back(
        {"<COMMAND><NAME>addProject</NAME><PARAMETER><NAME>projectName</NAME><VALUE>Quay</VALUE></PARAMETER>"
         "</COMMAND>"});
    all.push_back(
        {"<COMMAND><NAME>retrieveProject</NAME><PARAMETER><NAME>projectName</NAME><VALUE>None</VALUE>"
         "</PARAMETER></COMMAND>"});
    all.push_back(
        {"<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>chkShowPrices</NAME><VALUE>0</VALUE></PARAMETER>"
         "</COMMAND>"});
    all.push_back(Sample("getHybrisXML", true));
    all.push_back(Sample("getHybrisXMLNoUI", true));
    all.push_back(Sample("getHybrisXMLNoUI-two-tags", true));
    all.push_back(WayBack());
    return all;
  }();
  return commands;
}

bool Drives(const Sent& command) {
  const auto entry = std::ranges::find(PullCommands(), command.Name(), &CommandEntry::name);
  return !command.asText && entry != PullCommands().end() && entry->drivesLegacyObjects;
}

/// What a command comes to when nothing disturbs it; worked out once. Not to be asked for while a session lives, since
/// the thread forgets that session's machine.
const Outcome& Alone(const Sent& command) {
  static std::map<std::string, Outcome> known;
  const std::string key = command.text + (command.asText ? "t" : "d");
  if (!known.contains(key)) {
    Session session;
    known[key] = Send(*session.pull, command);
  }
  return known[key];
}

bool Exports(const Sent& command) { return command.Name().starts_with("getHybrisXML"); }

bool HandsOver(const Sent& command) { return Exports(command) || command.Name() == "RebuildTag"; }

void ExpectHandOverRefused(const Outcome& seen) {
  EXPECT_EQ(seen.error, 0x800A0046u) << seen;
  EXPECT_NE(seen.reply.find("a call of this thread holds them"), std::string::npos) << seen;
}

/// `outer` waits, and at that turn of the host's messages every command there is comes in, each on a machine of its
/// own.
void NestEveryCommandIn(const Sent& outer, int turn) {
  const Outcome outerAlone = Alone(outer);
  ASSERT_EQ(outerAlone.error, 0u) << outerAlone;
  for (const Sent& nested : EveryCommand()) {
    SCOPED_TRACE(nested.Name() + " at turn " + std::to_string(turn) + " of " + outer.Name());
    const Outcome nestedAlone = Alone(nested);
    Session session;
    std::optional<Outcome> seen;
    session.message.atTurn = turn;
    session.message.message = [&] { seen = Send(*session.pull, nested); };
    const Outcome outerSeen = Send(*session.pull, outer);
    EXPECT_EQ(outerSeen, outerAlone);
    ASSERT_TRUE(seen) << "it never came to its turn";
    if (Drives(outer) && Drives(nested)) {
      EXPECT_EQ(seen->error, 0x800A005Bu) << *seen;
      EXPECT_NE(seen->reply.find(outer.Name()), std::string::npos) << seen->reply;
    } else if (Exports(outer) && HandsOver(nested)) {
      ExpectHandOverRefused(*seen);
    } else {
      EXPECT_EQ(*seen, nestedAlone);
    }
    EXPECT_EQ(Send(*session.pull, Sample("getOptions")).error, 0u) << "the instance serves the next call";
  }
}

TEST(NestedCalls, EveryServedCommandIsTried) {
  for (const auto& [table, asText] : {std::pair{PullCommands(), false}, std::pair{PullNgorlaCommands(), true}}) {
    for (const CommandEntry& entry : table) {
      EXPECT_TRUE(std::ranges::any_of(EveryCommand(), [&](const Sent& sent) {
        return sent.Name() == entry.name && sent.asText == asText;
      })) << entry.name;
    }
  }
}

// Turns 1 and 2 come before there is a builder, 3 and 4 while its window loads.
TEST(NestedCalls, DisturbNoBuilderCommand) {
  NestEveryCommandIn(Sample("tag-06-new"), 1);
  for (const char* name : {"tag-06-new", "tag-07-configure", "tag-08-rebuild-all"}) {
    NestEveryCommandIn(Sample(name), 3);
  }
}

TEST(NestedCalls, DisturbNoExport) {
  NestEveryCommandIn(Sample("getHybrisXML"), 1);
  NestEveryCommandIn(Sample("getHybrisXMLNoUI", true), 1);
  NestEveryCommandIn(Sample("getHybrisXMLNoUI-two-tags", true), 1);
}

TEST(NestedCalls, DisturbNoReportWhoseUserReadsABox) {
  Sent report = Sample("report-02-one");
  report.text.replace(report.text.find("UnitReport"), 10, "NoSuchReport");
  NestEveryCommandIn(report, 1);
}

TEST(NestedCalls, DisturbNoReturnWhoseUserReadsABox) { NestEveryCommandIn(WayBack(), 1); }

TEST(NestedCalls, OneInAnotherNestedOneDisturbsNeither) {
  const Sent inner = Sample("getHybrisXMLNoUI", true);
  const Sent middle = Sample("tag-06-new");
  const Sent outer = Sample("getHybrisXML");
  const Outcome outerAlone = Alone(outer);
  const Outcome middleAlone = Alone(middle);
  Session session;
  Outcome middleSeen;
  Outcome innerSeen;
  session.message.message = [&] {
    session.message.message = [&] { innerSeen = Send(*session.pull, inner); };
    middleSeen = Send(*session.pull, middle);
  };
  EXPECT_EQ(Send(*session.pull, outer), outerAlone);
  EXPECT_EQ(middleSeen, middleAlone);
  ExpectHandOverRefused(innerSeen);
}

TEST(NestedCalls, AnExportIsServedAgainWhenTheOneThatWaitedIsOver) {
  const Sent exported = Sample("getHybrisXMLNoUI", true);
  Session session;
  session.message.message = [&] { ExpectHandOverRefused(Send(*session.pull, exported)); };
  Send(*session.pull, exported);
  EXPECT_EQ(Send(*session.pull, exported).error, 0u);
}

TEST(NestedCalls, AnExportThatFailsLetsTheHandOverFilesGo) {
  const Sent exported = Sample("getHybrisXMLNoUI", true);
  Session session;
  session.message.message = [&] {
    WriteHostFile(session.machine / "drive_c/Korvane/TQ5-VX/Temp/HBInput.ini", "no selection");
    ExpectHandOverRefused(Send(*session.pull, exported));
  };
  Send(*session.pull, exported);
  session.message.message = {};
  EXPECT_EQ(Send(*session.pull, exported).error, 0u);
}

TEST(NestedCalls, AnInstanceThatAMessageDestroysEndsWithItsLastCall) {
  for (const Sent& outer : {Sample("tag-06-new"), Sample("getHybrisXMLNoUI", true), WayBack()}) {
    const Outcome alone = Alone(outer);
    Session session;
    session.message.message = [&] { session.pull.reset(); };
    LegacyORLAPull& pull = *session.pull;
    EXPECT_EQ(Send(pull, outer), alone) << outer.Name();
    EXPECT_EQ(session.pull, nullptr);
  }
}

}  // namespace
}  // namespace parvex::test
