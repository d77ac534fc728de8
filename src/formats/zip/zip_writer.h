#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace parvex {

/// Writes ZIP archives as the installed application stores a tag's data in them. The same entries give the same bytes:
/// every time stamp is the format's first day. Archives stay below 4 GiB and 65,535 entries.
class ZipWriter {
 public:
  /// Adds an entry behind those that exist. `name` is UTF-8 and written as it stands; a name that ends with "/" stands
  /// for a folder. The bytes are deflated, or stored as they are.
  void Add(std::string_view name, std::string_view bytes, bool deflate);

  /// The archive of all entries added so far.
  std::string Finish() const;

 private:
  std::string localRecords_;
  std::string directory_;
  std::uint16_t entries_ = 0;
};

}  // namespace parvex
