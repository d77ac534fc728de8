#include "interface/recorded_link.h"

#include <exception>
#include <utility>

#include "interface/kept_state.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

std::string NameOf(const xml::Document& command) {
  try {
    return GetCommandName(command);
  } catch (const AutomationError&) {
    return {};
  }
}

// From the first recorded call on, the instance asks a machine that tells of it.
void Watch(RecordedLink& instance) {
  if (instance.machine) {
    return;
  }
  recording::RecordedMachine& machine = instance.machine.emplace(instance.outside);
  LegacyLink& link = instance.link;
  link.router = machine.Watched(std::move(link.router));
  link.reportServer = machine.Watched(std::move(link.reportServer));
  link.builder = machine.Watched(std::move(link.builder));
  link.platform = machine.Platform();
}

}  // namespace

RecordedCall::RecordedCall(RecordedLink& instance, recording::Recorder* recorder, const char* entryPoint,
                           const xml::Document& command, const std::function<std::string()>& document) noexcept
    : instance_(instance) {
  if (recorder != nullptr) {
    recording_ = recorder->Begin(instance.outside, [&]() -> recording::CallStart {
      return {entryPoint, NameOf(command), document(), ThreadFacts(), InstanceFacts(instance.link)};
    });
  }
  if (recording_ != nullptr) {
    try {
      Watch(instance);
    } catch (...) {
      recording_ = nullptr;
    }
  }
  if (instance_.machine) {
    std::shared_ptr<recording::Recording>& current = instance_.machine->Current().recording;
    if (current != nullptr && recording_ != nullptr) {
      current->NoteNested(recording_->Writer().Name());
    }
    outer_ = std::exchange(current, recording_);
    isCurrent_ = true;
  }
}

RecordedCall::~RecordedCall() {
  if (isCurrent_) {
    instance_.machine->Current().recording = std::move(outer_);
  }
}

xml::Document RecordedCall::CarryInPieces(const std::function<xml::Document()>& call,
                                          const std::function<void(std::string_view piece)>& take) {
  if (recording_ == nullptr) {
    xml::Document reply = call();
    if (reply) {
      reply.WriteXml(take);
    }
    return reply;
  }
  std::exception_ptr refused;
  xml::Document answered = Watched([&] {
    xml::Document reply = call();
    if (reply) {
      reply.WriteXml([&](std::string_view piece) {
        recording_->TakeReply(piece);
        try {
          if (refused == nullptr) {
            take(piece);
          }
        } catch (...) {
          refused = std::current_exception();
        }
      });
    }
    End(reply, {});
    return reply;
  });
  if (refused != nullptr) {
    std::rethrow_exception(refused);
  }
  return answered;
}

void RecordedCall::Answered(const xml::Document& reply, const std::string& text) noexcept { End(reply, text); }

void RecordedCall::Answered(const xml::Document& reply, const xml::Document&) noexcept {
  std::string bytes;
  try {
    bytes = reply ? reply.Bytes() : std::string();
  } catch (const std::exception& failure) {
    recording_->Writer().Missing("reply.xml", failure.what());
  } catch (...) {
    recording_->Writer().Missing("reply.xml", "unknown failure");
  }
  End(reply, bytes);
}

void RecordedCall::End(const xml::Document& reply, std::string_view text) noexcept {
  recording::CallEnd end;
  try {
    if (reply) {
      end.outcome = IsFailedReply(reply) ? recording::CallEnd::Outcome::Failure : recording::CallEnd::Outcome::Reply;
      end.document = text;
    }
  } catch (...) {
    end.document = text;
  }
  recording_->End(end);
}

}  // namespace parvex
