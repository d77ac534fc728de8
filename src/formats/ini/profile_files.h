#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/private_profile.h"

namespace parvex::ini {

/// Tells one version of a file from the next: who it is, its size, its times.
struct ProfileVersion {
  std::array<std::uint64_t, 5> marks{};
  std::uint64_t size = 0;
  bool operator==(const ProfileVersion&) const = default;
};

/// What only the platform knows of a profile file.
class ProfileVersions {
 public:
  struct Seen {
    ProfileVersion version;
    /// Whether whatever changes the file from now on is sure to give it another version. The times of files have a
    /// grain; a file that was changed a moment ago may change once more within it.
    bool isSettled = false;
  };

  virtual ~ProfileVersions() = default;
  /// As the file is now; nothing when the path means no file.
  virtual std::optional<Seen> Look(const std::string& file) = 0;
};

/// Private profile files, read and written by the rules that docs/private-profile.md describes.
///
/// Every version of a file is parsed once; the last few files are kept. A file that was changed a moment before it was
/// read is read and compared again on the next call. Values are found by a hash: a look-up costs the same in a file and
/// a section of any size.
///
/// A file name without a folder is one in the folder of Windows. A file that cannot be read has no sections. One of
/// more than 1 GiB is an AutomationError (75). Belongs to one thread at a time.
class ProfileFiles : public PrivateProfile {
 public:
  /// Of the last, the folder of Windows, without a final separator. The others must outlive this.
  ProfileFiles(Files& files, ProfileVersions& versions, CodePage& codePage, std::string windowsFolder);
  ~ProfileFiles() override;

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
  std::shared_ptr<void> Hold(std::string_view file) override;

 private:
  class FileSection;
  struct Parsed;
  struct Known;

  std::string WithFolder(std::string_view file) const;
  Known& KnownAs(const std::string& file);
  std::shared_ptr<const Parsed> Current(const std::string& file);
  void Refresh(Known& known);
  void Write(const std::string& file, std::string_view section, std::string_view key, std::string_view value);

  Files& files_;
  ProfileVersions& versions_;
  CodePage& codePage_;
  std::string windowsFolder_;
  std::list<Known> known_;  // the one used last in front
};

}  // namespace parvex::ini
