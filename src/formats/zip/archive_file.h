#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/zip/checksum.h"
#include "seams/host_system.h"

namespace parvex {

/// Writes a ZIP archive into a file piece by piece, every entry stored as it is. Each entry that has ended can be read
/// back from the file (UnpackUnfinished), though the archive's directory is written only at the end.
///
/// What the file refuses is an AutomationError; the entry that it happened to is then not part of the archive, and the
/// next one may be tried. Below 4 GiB and 65,535 entries; what goes beyond is an AutomationError (61).
///
/// Small entries may be gathered, since a system takes many small pieces slowly. They are then in the file when Flush
/// has been called, and one that the file refuses is told by its name.
class ArchiveFile {
 public:
  using Lost = std::function<void(std::string_view name, std::string_view why)>;

  explicit ArchiveFile(HostSystem::File& file) : file_(file) {}
  /// Gathers up to about `most` bytes; `lost` is told of an entry that was taken and could not be written.
  ArchiveFile(HostSystem::File& file, std::size_t most, Lost lost) : file_(file), most_(most), lost_(std::move(lost)) {}

  /// An entry whose bytes are all at hand. `name` is UTF-8; one that ends with "/" stands for a folder. Gives the
  /// checksum of the bytes.
  std::uint32_t Add(std::string_view name, std::string_view bytes);

  /// An entry whose bytes come in pieces: Begin, Append any number of times, End; or Drop instead of End.
  void Begin(std::string_view name);
  void Append(std::string_view bytes);
  /// Gives the checksum of the bytes.
  std::uint32_t End();
  void Drop() noexcept;

  /// Writes what was gathered.
  void Flush() noexcept;

  /// Writes the directory; nothing may be added after it.
  void Finish();

  /// How long the file is, as far as its entries go.
  std::uint64_t Size() const { return end_ + gathered_.size(); }

 private:
  // An entry that is gathered: its line of the directory, and how long it is with its record.
  struct Waiting {
    std::string name;
    std::string line;
    std::size_t length;
  };
  void CheckRoom(std::uint64_t more) const;
  void Gather(std::string_view record, std::string_view bytes, Waiting entry);
  std::string LineOf(std::string_view name, std::string_view shared);
  void Enter(std::string& line, std::uint64_t length) noexcept;
  void FlushOneByOne() noexcept;
  void AppendPiece();

  HostSystem::File& file_;
  std::size_t most_ = 0;
  Lost lost_;
  std::string gathered_;
  std::vector<Waiting> waiting_;
  std::size_t waitingLines_ = 0;  // their length
  std::uint64_t end_ = 0;         // of the last whole entry in the file
  std::string directory_;
  std::uint16_t entries_ = 0;
  // The entry that is being written.
  std::string name_;
  std::string piece_;  // of its bytes, what is gathered
  std::uint64_t length_ = 0;
  std::uint32_t checksum_ = 0;
};

}  // namespace parvex
