#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "formats/zip/archive_file.h"
#include "journal/crossing_log.h"
#include "recording/journal_file.h"
#include "seams/host_system.h"

namespace parvex::recording {

using journal::Json;

/// Writes one case, step by step: a folder NAME.pvxcase.part that becomes the archive NAME.pvxcase. Members and
/// the line of what begins are with the system when a function returns, kept files and other lines when Flush has, or
/// soon: small ones are written together. Nothing here throws but the constructor: what cannot be written is noted, and
/// the facts say in the end what is missing.
class CaseWriter : public journal::CrossingLog {
 public:
  /// Makes the folder in `folder`, which exists. `largest` is how many bytes of files are kept. Throws when the folder
  /// cannot be made.
  CaseWriter(HostSystem& system, const std::string& folder, const std::string& command, std::uint64_t largest);
  ~CaseWriter() override;

  /// Without folder and suffix.
  const std::string& Name() const { return name_; }

  /// Writes a member of its own, which is there in one piece or not at all.
  void WriteMember(std::string_view member, std::string_view bytes) noexcept;

  /// The same for a member that may be large, straight into the archive.
  void KeepMember(std::string_view member, std::string_view bytes) noexcept;
  /// The same for one whose pieces come one by one, nothing else being kept meanwhile.
  void BeginMember(std::string_view member) noexcept;
  void AppendToMember(std::string_view piece) noexcept;
  void EndMember() noexcept;
  /// Leaves it out, if it has not ended.
  void DropMember(std::string_view why) noexcept;

  // The journal. Each line has the step's number `n`, `at` ("before", "after" or "once") and `us`, the microseconds
  // since the case began. A line "after" holds what is new to the line "before".
  std::uint64_t Begin(const Json& line) override;
  void End(std::uint64_t number, const Json& line, const AutomationError* error) override;
  void Note(const Json& line) override { NoteStep(NextStep(), line); }

  /// The number that the next line gets; for a line whose files are kept before it is written.
  std::uint64_t NextStep() noexcept { return ++steps_; }
  void NoteStep(std::uint64_t step, const Json& line) noexcept;

  /// To be called before anything runs that may end this program.
  void Flush() noexcept;
  std::uint64_t Steps() const { return steps_; }

  /// Keeps a file under the name of a member, once. Gives its checksum, nothing when it could not be kept.
  std::optional<std::uint32_t> Keep(const std::string& member, std::string_view bytes) noexcept;
  /// The same for a file that `read` gives piece by piece, until one that is shorter than kPiece.
  static constexpr std::size_t kPiece = 1u << 20;
  using ReadPiece = std::function<std::string(std::uint64_t at)>;
  std::optional<std::uint32_t> KeepPieces(const std::string& member, const ReadPiece& read) noexcept;

  void Missing(std::string_view what, std::string_view why) noexcept;

  /// Ends the case: `facts`, with what is missing, become case.json of the archive. Where the archive cannot be made,
  /// the folder stays with what it holds.
  void Finish(const Json& facts) noexcept;
  /// Removes all of it.
  void Discard() noexcept;

 private:
  void Write(std::uint64_t step, const char* at, const Json& line) noexcept;
  void CheckLimit(std::uint64_t more) const;
  void AddJournal();
  void AddMembers(const Json& facts);
  Json WithMissing(const Json& facts) const;
  bool IsOpen() const { return files_ != nullptr; }
  std::string Path(std::string_view member) const { return part_ + "/" + std::string(member); }

  HostSystem& system_;
  std::uint64_t largest_;
  std::string folder_;
  std::string name_;
  std::string part_;
  std::uint64_t began_;
  std::unique_ptr<HostSystem::File> journalFile_;
  std::optional<JournalFile> journal_;
  std::unique_ptr<HostSystem::File> files_;
  std::optional<ArchiveFile> archive_;
  std::uint64_t flushed_ = 0;                   // when files were
  std::string member_;                          // that is being written in pieces; empty after a failure
  std::map<std::string, std::string> members_;  // small ones, to be put into the archive
  std::map<std::uint64_t, Json> begun_;
  std::uint64_t steps_ = 0;
  std::uint64_t lost_ = 0;  // parts that are missing, also where there are too many to tell
  Json missing_ = Json::array();
};

}  // namespace parvex::recording
