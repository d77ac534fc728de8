#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/zip/zip_writer.h"
#include "seams/host_system.h"

namespace parvex::test {

// Recorded calls out of texts.

inline constexpr const char* kFacts = R"({"format":1,"command":"getTags","outcome":"reply"})";

inline std::string Repeat(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    text += piece;
  }
  return text;
}

inline std::string Packed(const std::vector<std::pair<std::string, std::string>>& members) {
  ZipWriter writer;
  for (const auto& [name, bytes] : members) {
    writer.Add(name, bytes, true);
  }
  return writer.Finish();
}

/// With facts that are as they should be.
inline std::string PackedCase(std::vector<std::pair<std::string, std::string>> members) {
  members.insert(members.begin(), {"case.json", kFacts});
  return Packed(members);
}

/// A file in memory.
class StringFile : public HostSystem::File {
 public:
  explicit StringFile(std::string& bytes) : bytes_(bytes) {}
  void Append(std::string_view more) override { bytes_ += more; }
  void Overwrite(std::uint64_t at, std::string_view more) override { bytes_.replace(at, more.size(), more); }
  void Truncate(std::uint64_t size) override { bytes_.resize(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.substr(at, most); }

 private:
  std::string& bytes_;
};

}  // namespace parvex::test
