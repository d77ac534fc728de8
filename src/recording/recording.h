#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "recording/case_writer.h"
#include "recording/file_history.h"
#include "recording/recording_settings.h"
#include "seams/platform.h"

namespace parvex::recording {

/// A call as it begins.
struct CallStart {
  std::string entryPoint;  ///< "Pull" or "PullNGORLA"
  std::string command;     ///< the command's name, empty when it has none
  std::string document;    ///< the command as it came: the bytes of a document, or the text
  Json thread;             ///< what the protocol keeps per thread, as it was before
  Json instance;           ///< the same of the instance
};

/// How a call ended.
struct CallEnd {
  enum class Outcome { Reply, Failure };
  Outcome outcome = Outcome::Reply;
  std::optional<std::string_view> document;  ///< the reply; nothing where the handler answers with no document
};

/// The recording of one call, from its beginning to its end. Nothing here throws but the constructor. The host system
/// and the machine outlive it.
class Recording {
 public:
  /// Throws when the case cannot be begun.
  Recording(HostSystem& system, const Platform& machine, const Settings& settings, const Json& machineFacts,
            const CallStart& start);
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  CaseWriter& Writer() { return writer_; }
  FileHistory& Files() { return files_; }
  const std::vector<std::string>& TemporaryFolders() const { return temporaryFolders_; }

  void NoteRegistryValue(std::string_view key, std::string_view valueName, const std::string& text) noexcept;

  /// Another call of the instance runs while this one waits, and is recorded under that name.
  void NoteNested(const std::string& name) noexcept;

  /// A piece of the reply's text, for who does not hand over all of it to End.
  void TakeReply(std::string_view piece) noexcept;

  /// Ends the recording: the case becomes an archive, or goes where only failures are kept, and old cases go.
  void End(const CallEnd& end) noexcept;
  void EndInError(const AutomationError& error) noexcept;
  /// The call ended in another exception.
  void EndInFailure(std::string_view what) noexcept;

 private:
  void Close(const char* outcome) noexcept;
  void KeepRegistry();

  HostSystem& system_;
  const Settings settings_;
  CaseWriter writer_;
  FileHistory files_;
  std::vector<std::string> temporaryFolders_;
  std::uint64_t began_;
  Json facts_;
  bool takesReply_ = false;
  // By key and value name in upper case; the key and the name as they were asked for, and the text.
  struct Value {
    std::string key;
    std::string name;
    std::string text;
  };
  std::map<std::pair<std::string, std::string>, Value> registry_;
};

}  // namespace parvex::recording
