#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "protocol/legacy_link.h"
#include "recording/recorded_machine.h"
#include "recording/recorder.h"
#include "seams/xml.h"

namespace parvex {

/// What an instance holds, with the machine that tells of its use once a call was recorded.
struct RecordedLink {
  explicit RecordedLink(const Platform& platform) : outside(platform), link(platform) {}

  const Platform outside;
  std::optional<recording::RecordedMachine> machine;
  LegacyLink link;
};

/// A call that may be recorded: its recording is the instance's current one for as long as this lives. A nested call
/// has one of its own, and the outer one goes on behind it.
class RecordedCall {
 public:
  /// `document` gives the command as it came. Null for `recorder` where nothing is ever recorded. Throws nothing.
  RecordedCall(RecordedLink& instance, recording::Recorder* recorder, const char* entryPoint,
               const xml::Document& command, const std::function<std::string()>& document) noexcept;
  ~RecordedCall();
  RecordedCall(const RecordedCall&) = delete;
  RecordedCall& operator=(const RecordedCall&) = delete;

  /// Carries the call out and tells how it ended; `text` makes of the reply what is given to the caller.
  template <typename Call, typename Text>
  auto Carry(Call call, Text text) {
    if (recording_ == nullptr) {
      return text(call());
    }
    return Watched([&] {
      const xml::Document reply = call();
      auto answer = text(reply);
      Answered(reply, answer);
      return answer;
    });
  }

  /// The same for a call whose reply is given to `take` in pieces. Gives the reply. What `take` throws goes on to the
  /// caller, and is not how the call ended.
  xml::Document CarryInPieces(const std::function<xml::Document()>& call,
                              const std::function<void(std::string_view piece)>& take);

 private:
  template <typename Call>
  auto Watched(Call call) {
    try {
      return call();
    } catch (const AutomationError& error) {
      recording_->EndInError(error);
      throw;
    } catch (const std::exception& failure) {
      recording_->EndInFailure(failure.what());
      throw;
    }
  }
  void Answered(const xml::Document& reply, const std::string& text) noexcept;
  void Answered(const xml::Document& reply, const xml::Document&) noexcept;
  void End(const xml::Document& reply, std::string_view text) noexcept;

  RecordedLink& instance_;
  std::shared_ptr<recording::Recording> recording_;
  std::shared_ptr<recording::Recording> outer_;
  bool isCurrent_ = false;
};

}  // namespace parvex
