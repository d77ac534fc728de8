#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/zip/zip_writer.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

/// Project databases whose one table answers from a list of statements. Records what was opened and asked.
class FakeProjectDatabases : public ProjectDatabases {
 public:
  using Row = std::map<std::string, std::optional<std::string>, std::less<>>;

  std::vector<std::string> opened;
  std::vector<std::string> statements;
  std::map<std::string, std::vector<Row>> rows;  ///< by statement; any other statement yields no row
  bool unreadable = false;                       ///< opening fails
  bool refusing = false;                         ///< statements fail

  std::unique_ptr<Database> Open(std::string_view path) override;
};

/// Counts the look-ups in the ini files of another adapter.
class CountingProfile : public PrivateProfile {
 public:
  explicit CountingProfile(PrivateProfile& counted) : counted_(counted) {}
  int opened = 0;
  int read = 0;
  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
  std::shared_ptr<void> Hold(std::string_view file) override { return counted_.Hold(file); }

 private:
  PrivateProfile& counted_;
};

/// A machine with an installed legacy application, for which the quote builder's output and stored tag data can be laid
/// out.
class ExportMachine {
 public:
  FakeMachine machine;
  FakeProjectDatabases databases;
  CountingProfile profile{machine.machine.GetPrivateProfile()};
  Platform platform = [this] {
    Platform own = machine.platform;
    own.privateProfile = &profile;
    own.projectDatabases = &databases;
    return own;
  }();

  static constexpr const char* kTemp = "C:\\Korvane\\TQ5-VX\\Temp\\";
  static constexpr const char* kOutput = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";
  static constexpr const char* kProjectDatabase = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\project.mdb";

  /// Makes this the quote builder's output (ANSI bytes).
  void Select(std::string_view iniText) { machine.Write(kOutput, iniText); }

  /// Writes a blob file: an archive that holds this one entry.
  void WriteBlob(const std::string& path, std::string_view entry, std::string_view text) {
    ZipWriter archive;
    archive.Add(entry, text, true);
    machine.Write(path, archive.Finish());
  }
};

}  // namespace parvex::test
