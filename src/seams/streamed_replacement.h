#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "seams/host_system.h"

namespace parvex {

/// What is written to a pipe or a device: nothing can be read back from it, and it has no place to go back to. So it is
/// kept in memory until it is whole, and TakeName, which the platform has, writes it.
class StreamedReplacement : public HostSystem::Replacement {
 public:
  void Append(std::string_view bytes) override { bytes_ += bytes; }
  void Overwrite(std::uint64_t at, std::string_view bytes) override { bytes_.replace(at, bytes.size(), bytes); }
  void Truncate(std::uint64_t size) override { bytes_.resize(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.substr(at, most); }

 protected:
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace parvex
