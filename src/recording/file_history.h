#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "recording/case_writer.h"
#include "seams/files.h"

namespace parvex::recording {

/// The files of the machine that a call has to do with: each is kept as it was before the call first used it, and
/// again whenever somebody else is found to have changed it; and as the call left it. Nothing here throws, and the
/// machine's files are only read.
class FileHistory {
 public:
  FileHistory(CaseWriter& writer, Files& files) : writer_(writer), files_(files) {}
  FileHistory(const FileHistory&) = delete;
  FileHistory& operator=(const FileHistory&) = delete;

  /// A file is going to be used, its content not being at hand.
  void Use(std::string_view path) noexcept;
  /// A file was read, and holds this; or there is none.
  void Read(std::string_view path, std::string_view bytes) noexcept;
  void ReadNone(std::string_view path) noexcept;
  /// The call has written or removed a file that was used before.
  void Wrote(std::string_view path) noexcept;
  void Removed(std::string_view path) noexcept;
  /// A folder is going to be removed with all that is in it.
  void UseFolder(std::string_view path) noexcept;

  /// Something was asked for, and exists; or is known by a listing.
  void Named(std::string_view path, bool isFolder) noexcept;
  /// Whether this answer to such a question is a new one, so that it is worth a line.
  bool IsNewAnswer(std::string_view question, std::string_view answer) noexcept;

  /// Before anything outside runs that may end this program: keeps what the call has written so far.
  void BeforeOutside() noexcept;
  /// After it: it may have changed any file.
  void AfterOutside() noexcept { ++epoch_; }

  /// Keeps all files of a folder, as far as they are not large. To be called before a program runs, that its changes
  /// can be told.
  void LookAt(const std::string& folder) noexcept;
  /// What has changed in the folder since: kept below "after/STEP/". For the line of that step: pairs of path and
  /// member, null for a file that has gone.
  Json ChangesIn(const std::string& folder, std::uint64_t step) noexcept;

  /// Keeps what the call has left, and placeholders for what was only asked for, and gives the names of those.
  std::vector<std::string> Finish() noexcept;

 private:
  struct Known {
    std::string path;
    std::string member;  ///< in a machine folder
    bool exists = false;
    bool isKept = false;
    bool isOurs = false;        ///< written by the call and not kept since
    bool isPassedOver = false;  ///< too large to look at
    std::uint32_t checksum = 0;
    std::optional<std::string> version;  ///< of what the checksum is of, where that can be told
    std::uint64_t epoch = 0;
  };
  Known* Find(std::string_view path, bool& isNew);
  void Keep(Known& known, std::string_view member);
  void KeepChanged(Known& known);
  void PassOver(const std::string& path);
  void Changed(Known& known, std::string_view bytes);
  bool IsUnchanged(const Known& known);
  std::optional<std::uint32_t> ChecksumNow(const std::string& path);

  CaseWriter& writer_;
  Files& files_;
  std::map<std::string, Known, std::less<>> known_;          // by folded member
  std::map<std::string, std::string, std::less<>> members_;  // folded member, by path as it is spelled
  std::map<std::string, std::string, std::less<>> answers_;
  std::map<std::string, std::string, std::less<>> named_;  // files only asked for: member by folded member
  std::map<std::string, std::string, std::less<>> namedFolders_;
  std::uint64_t epoch_ = 0;
  std::size_t ours_ = 0;
  // An ini file is used many times in a row.
  std::string usedLast_;
  std::uint64_t usedEpoch_ = 0;
};

}  // namespace parvex::recording
