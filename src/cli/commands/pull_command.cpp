#include "cli/commands/pull_command.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "cli/reference/described_command.h"
#include "cli/session/consumer.h"
#include "cli/session/kept_findings.h"
#include "cli/session/replies.h"
#include "cli/terminal/standard_streams.h"
#include "formats/text/encoded_text.h"
#include "formats/text/unicode.h"
#include "interface/legacy_orla_pull.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex::cli {
namespace {

// The command's name before it is sent: the document becomes a request of its own on the way. Empty when it has none,
// which the call will say.
std::string NameIn(const xml::Document& command) {
  const xml::Node name = command.First(".//COMMAND/NAME");
  return name ? name.Text() : std::string();
}

// How the sending of one command went.
struct Sent {
  bool isFailed;     // the reply is the failed one
  std::string hint;  // why, where it is the command's name; empty otherwise
};

// Sends the content of one command file and writes the reply.
using SendOne = Sent (*)(LegacyORLAPull& pull, const std::string& bytes, CodePage& codePage);

Sent SendDocument(LegacyORLAPull& pull, const std::string& bytes, CodePage&) {
  const xml::Document command = xml::Document::Load(bytes);
  const std::string name = NameIn(command);
  const xml::Document reply = pull.Pull(command);
  if (reply) {
    reply.WriteXml(WriteDocument);
  }
  const bool isFailed = IsFailedReply(reply);
  return {isFailed, isFailed ? HintAbout(name, true) : ""};
}

// The text that a file's bytes are: UTF-16 or UTF-8 as its byte order mark says, else UTF-8 when it is well-formed,
// else text of the machine's ANSI code page.
std::string DecodeText(std::string_view bytes, CodePage& codePage) {
  if (std::optional<std::string> marked = MarkedText(bytes)) {
    return *std::move(marked);
  }
  return IsWellFormed(bytes) ? std::string(bytes) : codePage.FromAnsi(bytes);
}

Sent SendText(LegacyORLAPull& pull, const std::string& bytes, CodePage& codePage) {
  const std::string text = DecodeText(bytes, codePage);
  const bool isFailed = pull.PullNGORLA(text, WriteDocument);
  return {isFailed, isFailed ? HintAbout(NameIn(xml::Document::Parse(text)), false) : ""};
}

ExitStatus SendAll(Session& session, const std::vector<std::string>& names, const std::vector<std::string>& contents,
                   SendOne sendOne) {
  Platform platform = session.Platform();
  KeptFindings findings(platform.notes);
  platform.notes = &findings;
  LegacyORLAPull pull(platform, session.Recorder());
  pull.SetConsumer(MakeConsumer());
  ExitStatus status = kReply;
  bool anyCallFailed = false;
  for (std::size_t i = 0; i < contents.size(); ++i) {
    try {
      const Sent sent = sendOne(pull, contents[i], *platform.codePage);
      status = sent.isFailed ? kFailedReply : kReply;
      if (!sent.hint.empty()) {
        TellError(names[i] + ": " + sent.hint);
      }
    } catch (const AutomationError& error) {
      ReportError(names[i], error);
      anyCallFailed = true;
    }
    for (const std::string& answer : findings.TakeAnswers()) {
      TellError(names[i] + ": the message router: " + answer);
    }
  }
  return anyCallFailed ? kFailedCall : status;
}

ExitStatus Send(const SessionOptions& options, const std::vector<std::string>& files, SendOne sendOne) {
  std::vector<std::string> contents;
  for (const std::string& file : files) {
    contents.push_back(ReadInput(file));
  }
  Session session(options);
  const ExitStatus status = SendAll(session, files, contents, sendOne);
  session.Close();
  return status;
}

}  // namespace

ExitStatus SendThroughPull(const SessionOptions& options, const std::vector<std::string>& files) {
  return Send(options, files, SendDocument);
}

ExitStatus SendThroughPullNgorla(const SessionOptions& options, const std::vector<std::string>& files) {
  return Send(options, files, SendText);
}

}  // namespace parvex::cli
