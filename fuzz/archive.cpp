#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "formats/text/file_names.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "fuzz/fuzz_input.h"
#include "hybris/blob_folder.h"
#include "seams/automation_error.h"

// An archive is unpacked into a folder of which every path is looked at. The input: the archive's bytes.

namespace parvex {
namespace {

using fuzz::Require;

constexpr std::string_view kFolder = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\";
constexpr std::string_view kBlob = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\tag.blb";

/// Takes what is written and holds the writer to the one folder.
class WatchedFolder : public Files {
 public:
  bool IsFile(std::string_view path) override { return path == kBlob; }
  bool IsFolder(std::string_view path) override { return path.find('~') == std::string_view::npos; }
  std::vector<std::string> ListFiles(std::string_view pattern) override {
    return pattern == kBlob ? std::vector<std::string>{"tag.blb"} : std::vector<std::string>{};
  }
  std::vector<std::string> ListFolders(std::string_view) override { return {}; }
  std::string ReadAll(std::string_view) override { return {}; }
  void Replace(std::string_view path, std::string_view) override { Look(path); }
  void CreateNew(std::string_view path, std::string_view) override { Look(path); }
  void Remove(std::string_view) override { Require(false, "nothing is removed"); }
  void CreateFolder(std::string_view path) override { Look(path); }
  void RemoveFolder(std::string_view) override { Require(false, "no folder is removed"); }

 private:
  static void Look(std::string_view path) {
    Require(path.starts_with(kFolder), "nothing is written outside of the blob's folder");
    std::string_view rest = path.substr(kFolder.size());
    Require(!rest.empty() && rest.find_first_of(":/<>|?*\"") == std::string_view::npos,
            "only ordinary names are written");
    Require(std::none_of(rest.begin(), rest.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }),
            "no control characters are written");
    rest.remove_suffix(rest.ends_with('\\') ? 1 : 0);
    for (;;) {
      const std::string_view part = rest.substr(0, rest.find('\\'));
      Require(IsFileName(part), "every component is the name of a file, and of no device");
      if (part.size() == rest.size()) {
        return;
      }
      rest.remove_prefix(part.size() + 1);
    }
  }
};

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  posix::Windows1252 codePage;
  WatchedFolder folder;
  try {
    const std::vector<PackedEntry> entries = Unpack(codePage, bytes, kBlob, kUnpackedAsFiles);
    for (const PackedEntry& entry : entries) {
      fuzz::Require(entry.bytes.size() <= kLargestPackedEntry, "no entry is larger than is unpacked");
    }
    ExtractBesideBlob(folder, entries, kBlob);
  } catch (const AutomationError& error) {
    fuzz::Require(error.Description().find(kBlob) != std::string::npos, "a refusal names the blob");
  }
  return 0;
}
