#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "seams/host_system.h"

namespace parvex {

/// Writes a ZIP archive into a file piece by piece, every entry stored as it is. Each entry that has ended can be read
/// back from the file (UnpackUnfinished), though the archive's directory is written only at the end.
///
/// What the file refuses is an AutomationError; the entry that it happened to is then not part of the archive, and the
/// next one may be tried. Below 4 GiB and 65,535 entries; what goes beyond is an AutomationError (61).
class ArchiveFile {
 public:
  explicit ArchiveFile(HostSystem::File& file) : file_(file) {}

  /// An entry whose bytes are all at hand. `name` is UTF-8; one that ends with "/" stands for a folder. Gives the
  /// checksum of the bytes.
  std::uint32_t Add(std::string_view name, std::string_view bytes);

  /// An entry whose bytes come in pieces: Begin, Append any number of times, End; or Drop instead of End.
  void Begin(std::string_view name);
  void Append(std::string_view bytes);
  /// Gives the checksum of the bytes.
  std::uint32_t End();
  void Drop() noexcept;

  /// Writes the directory; nothing may be added after it.
  void Finish();

  /// How long the file is, as far as its entries go.
  std::uint64_t Size() const { return end_; }

 private:
  void CheckRoom(std::uint64_t more) const;
  void Enter(std::string_view name, const std::string& shared);

  HostSystem::File& file_;
  std::uint64_t end_ = 0;  // of the last whole entry
  std::string directory_;
  std::uint16_t entries_ = 0;
  // The entry that is being written.
  std::string name_;
  std::uint64_t length_ = 0;
  std::uint32_t checksum_ = 0;
};

/// The checksum that archives keep of an entry's bytes; `before` is that of the bytes in front of them.
std::uint32_t ChecksumOf(std::string_view bytes, std::uint32_t before = 0);

}  // namespace parvex
