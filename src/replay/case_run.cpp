#include "replay/case_run.h"

#include <exception>
#include <optional>
#include <utility>

#include "interface/kept_state.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/thread_state.h"
#include "protocol/reply_envelope.h"
#include "replay/answered_automation.h"
#include "replay/answered_machine.h"
#include "replay/kept_files.h"
#include "replay/machine_on_disk.h"
#include "replay/network_drive.h"
#include "replay/same_text.h"
#include "replay/script.h"

namespace parvex::replay {
namespace {

using recording::RecordedCase;

constexpr const char* kUnfinished = "unfinished";
constexpr const char* kWindows = "Windows";  // the platform that has networks

struct Ended {
  std::string outcome;  // as in case.json
  std::string reply;
  Json error;
};

// This thread as the case found it; afterwards as it was.
class ThreadOfCase {
 public:
  explicit ThreadOfCase(const Json& facts) : own_(ThisThread()) { PutBackThread(facts); }
  ~ThreadOfCase() { ThisThread() = own_; }
  ThreadOfCase(const ThreadOfCase&) = delete;
  ThreadOfCase& operator=(const ThreadOfCase&) = delete;

 private:
  ThreadState own_;
};

// A file of the machine becomes what the record says that others made of it.
class ForeignHand {
 public:
  ForeignHand(Files& files, const Members& members, NetworkDrive network)
      : files_(files), members_(members), network_(network) {}

  void operator()(const FileChange& change) const {
    const std::string path = network_.Path(change.path);
    if (change.member.empty()) {
      if (files_.IsFile(path)) {
        files_.Remove(path);
      }
      return;
    }
    const auto member = members_.find(change.member);
    if (member == members_.end()) {
      return;  // the facts say that it is missing
    }
    if (const std::size_t folder = path.find_last_of("\\/"); folder != std::string::npos) {
      files_.CreateFolder(std::string_view(path).substr(0, folder));
    }
    files_.Replace(path, member->second);
  }

 private:
  Files& files_;
  const Members& members_;
  NetworkDrive network_;
};

// The builder is told of a consumer, of which it takes note.
automation::ObjectRef ConsumerOf(const std::shared_ptr<Script>& script) {
  std::string name = script->NameOfConsumer();
  return name.empty() ? nullptr : AnsweredObject(std::move(name), script);
}

Ended Pull(LegacyORLAPull& pull, const std::string& command) {
  const xml::Document reply = pull.Pull(xml::Document::Load(command));
  return {reply && IsFailedReply(reply) ? "failure" : "reply", reply ? reply.Bytes() : std::string(), nullptr};
}

Ended PullNgorla(LegacyORLAPull& pull, const std::string& command) {
  std::string text;
  const bool hasFailed = pull.PullNGORLA(command, [&](std::string_view piece) { text += piece; });
  return {hasFailed ? "failure" : "reply", std::move(text), nullptr};
}

Ended Carry(LegacyORLAPull& pull, const RecordedCase& recorded) {
  try {
    return TextAt(recorded.facts, "entryPoint") == "Pull" ? Pull(pull, recorded.command)
                                                          : PullNgorla(pull, recorded.command);
  } catch (const RecordEnds&) {
    return {kUnfinished, {}, nullptr};
  } catch (const AutomationError& error) {
    return {"error", {}, journal::ErrorJson(error)};
  } catch (const std::exception& failure) {
    return {"error", {}, {{"description", failure.what()}}};
  }
}

std::string ErrorText(const Json& error) {
  return "error " + TextAt(error, "number") + " of " + TextAt(error, "source") + ": " + TextAt(error, "description");
}

std::string OutcomeText(const std::string& outcome, const Json& error) {
  return outcome == "error" ? ErrorText(error) : outcome == kUnfinished ? "the call never came to its end" : outcome;
}

void CompareOutcome(const RecordedCase& recorded, const Ended& ended, const Script& script, bool isOtherParser,
                    RunResult& result) {
  const std::string outcome = TextAt(recorded.facts, "outcome");
  const Json& error = Member(recorded.facts, "error");
  if (outcome == kUnfinished) {
    // Where the host died between two steps nothing is left that could be compared.
    result.notes.push_back(script.HasEnded()
                               ? "the record ends at step " + std::to_string(script.LastStep()) + ", which was reached"
                               : "the record ends before the call did; here the call went on: " +
                                     OutcomeText(ended.outcome, ended.error));
    return;
  }
  const bool isSame = outcome == ended.outcome && (outcome != "error" || SameError(error, ended.error, isOtherParser));
  if (!isSame) {
    result.differences.push_back({0, "outcome", OutcomeText(outcome, error), OutcomeText(ended.outcome, ended.error)});
  }
  const std::string reply = recorded.reply.value_or("");
  if (outcome != "error" && ended.outcome != "error" && ended.outcome != kUnfinished && !SameText(reply, ended.reply)) {
    result.differences.push_back({0, "reply", reply, ended.reply});
  }
}

// What may explain a difference, or is no part of the comparison.
void NoteLimits(const RecordedCase& recorded, RunResult& result) {
  for (const Json& missing : Member(recorded.facts, "missing")) {
    result.notes.push_back("the record lacks " + TextAt(missing, "what") + ": " + TextAt(missing, "why"));
  }
  for (const Json& line : recorded.steps) {
    if (TextAt(line, "kind") == "nested") {
      result.notes.push_back("another call ran meanwhile (" + TextAt(line, "case") +
                             "): the files that it changed are in the record, what it changed in memory is not");
    }
  }
  if (const std::string driving = TextAt(Member(recorded.facts, "instance"), "driving"); !driving.empty()) {
    result.notes.push_back("the call came while " + driving + " waited");
  }
  if (FlagAt(Member(recorded.facts, "thread"), "waits")) {
    result.notes.push_back("the call came while another call of its thread waited, which held the hand-over files");
  }
}

unsigned CodePageOf(const RecordedCase& recorded) {
  const std::uint64_t codePage = CountAt(recorded.facts, "codePage");
  return codePage == 0 || codePage > 0xFFFF ? 1252 : static_cast<unsigned>(codePage);
}

}  // namespace

RunResult RunCase(HostSystem& system, const RecordedCase& recorded, const RunOptions& options) {
  RunResult result;
  NoteLimits(recorded, result);
  const Members members = MembersOf(recorded);
  std::string made;
  const KeptFiles before = FilesBefore(recorded, made);
  const KeptFiles after = FilesAfter(recorded, members, before);
  const HostSystem::Facts here = system.ThisProgram();
  const NetworkDrive network = here.platform == kWindows ? NetworkDrive() : NetworkDrive(before, after);
  LayOut(system, options.folder, network.Moved(before));
  const std::shared_ptr<const Platform> machine = options.machine(options.folder, CodePageOf(recorded));
  const auto script = std::make_shared<Script>(recorded, ForeignHand(*machine->files, members, network));
  result.steps = script->Count();
  AnsweredMachine answered(*machine, script, network);
  Ended ended;
  {
    const ThreadOfCase thread(Member(recorded.facts, "thread"));
    LegacyORLAPull pull(answered.Platform());
    pull.PutBack(Member(recorded.facts, "instance"),
                 [&](const std::string& name) { return AnsweredObject(name, script); });
    pull.SetConsumer(ConsumerOf(script));
    ended = Carry(pull, recorded);
  }
  script->Finish(options.lenient);
  result.outcome = ended.outcome;
  result.differences = std::move(script->Differences());
  const bool isOtherParser = TextAt(Member(recorded.facts, "machine"), "xml") != here.xmlEngine;
  CompareOutcome(recorded, ended, *script, isOtherParser, result);
  const bool isOtherPlatform = TextAt(recorded.facts, "platform") != here.platform;
  for (Difference& difference : CompareFiles(system, options.folder, network.Moved(after), isOtherPlatform)) {
    result.differences.push_back(std::move(difference));
  }
  return result;
}

}  // namespace parvex::replay
