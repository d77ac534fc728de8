#include "cli/pull_command.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>

#include "cli/consumer.h"
#include "cli/host.h"
#include "cli/standard_streams.h"
#include "interface/legacy_orla_pull.h"
#include "interface/reply_envelope.h"
#include "journal/journalled_platform.h"
#include "journal/replay_routers.h"
#include "platform/text.h"

namespace parvex::cli {
namespace {

// Sends the content of one command file, writes the reply, and tells whether it is the failed reply.
using SendOne = bool (*)(LegacyORLAPull& pull, const std::string& bytes, CodePage& codePage);

bool SendDocument(LegacyORLAPull& pull, const std::string& bytes, CodePage&) {
  const xml::Document reply = pull.Pull(xml::Document::Load(bytes));
  if (reply) {
    WriteOutput(reply.Xml());
  }
  return IsFailedReply(reply);
}

// The text that a file's bytes are: UTF-16 or UTF-8 as its byte order mark says, else UTF-8 when it is well-formed,
// else text of the machine's ANSI code page.
std::string DecodeText(std::string_view bytes, CodePage& codePage) {
  const bool isLittleEndian = bytes.starts_with("\xFF\xFE");
  if (isLittleEndian || bytes.starts_with("\xFE\xFF")) {
    std::u16string units;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
      const auto low = static_cast<unsigned char>(bytes[isLittleEndian ? i : i + 1]);
      const auto high = static_cast<unsigned char>(bytes[isLittleEndian ? i + 1 : i]);
      units.push_back(static_cast<char16_t>(high << 8 | low));
    }
    return FromUtf16(units);
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    return std::string(bytes.substr(3));
  }
  const bool isUtf8 = FromUtf16(ToUtf16(bytes)) == bytes;
  return isUtf8 ? std::string(bytes) : codePage.FromAnsi(bytes);
}

bool SendText(LegacyORLAPull& pull, const std::string& bytes, CodePage& codePage) {
  const std::string reply = pull.PullNGORLA(DecodeText(bytes, codePage));
  WriteOutput(reply);
  // The reply may be a document of any size; only what begins as an envelope is worth reading again.
  return reply.starts_with("<LegacyORLA") && IsFailedReply(xml::Document::Parse(reply));
}

ExitStatus SendAll(const Platform& platform, const std::vector<std::string>& names,
                   const std::vector<std::string>& contents, SendOne sendOne) {
  LegacyORLAPull pull(platform);
  pull.SetConsumer(MakeConsumer());
  ExitStatus status = kReply;
  bool anyCallFailed = false;
  for (std::size_t i = 0; i < contents.size(); ++i) {
    try {
      status = sendOne(pull, contents[i], platform.codePage) ? kFailedReply : kReply;
    } catch (const AutomationError& error) {
      ReportError(names[i], error);
      anyCallFailed = true;
    }
  }
  return anyCallFailed ? kFailedCall : status;
}

ExitStatus SendAllJournalled(const Platform& platform, const PullOptions& options,
                             const std::vector<std::string>& contents, SendOne sendOne) {
  std::ofstream out(PathOf(options.journal), std::ios::binary);
  if (!out) {
    throw UsageError("cannot write " + options.journal + ": " + std::strerror(errno));
  }
  const ExitStatus status = [&] {
    journal::JournalledPlatform journalled(platform, out);
    return SendAll(journalled.Platform(), options.files, contents, sendOne);
  }();
  if (!out) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "the journal " + options.journal + " could not be written");
  }
  return status;
}

Platform WithRouters(const Platform& platform, MessageRouters& routers) {
  return {platform.registry,         platform.privateProfile, platform.files, platform.processes,
          platform.messagePump,      platform.messageBoxes,   routers,        platform.automation,
          platform.projectDatabases, platform.codePage};
}

struct Session {
  std::vector<std::string> contents;
  std::optional<journal::ReplayRouters> replay;
  std::optional<Host> host;
};

// Everything that can be wrong before the first file is sent.
void Prepare(const PullOptions& options, Session& session) {
  for (const std::string& file : options.files) {
    session.contents.push_back(ReadInput(file));
  }
  try {
    if (!options.replay.empty()) {
      session.replay.emplace(ReadInput(options.replay), options.replay);
    }
    session.host.emplace(options.machine);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
}

ExitStatus Send(const PullOptions& options, SendOne sendOne) {
  Session session;
  Prepare(options, session);
  const Platform own = session.host->Platform();
  const Platform platform = session.replay ? WithRouters(own, *session.replay) : own;
  return options.journal.empty() ? SendAll(platform, options.files, session.contents, sendOne)
                                 : SendAllJournalled(platform, options, session.contents, sendOne);
}

}  // namespace

ExitStatus SendThroughPull(const PullOptions& options) { return Send(options, SendDocument); }

ExitStatus SendThroughPullNgorla(const PullOptions& options) { return Send(options, SendText); }

void ReportError(const std::string& subject, const AutomationError& error) {
  std::fprintf(stderr, "parvex: %s%sautomation error 0x%08X, %s: %s\n", subject.c_str(), subject.empty() ? "" : ": ",
               static_cast<unsigned>(error.Number()), error.Source().c_str(), error.Description().c_str());
}

}  // namespace parvex::cli
