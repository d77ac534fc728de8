#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/posix/machine_folder.h"
#include "seams/code_page.h"
#include "seams/private_profile.h"

namespace parvex::posix {

/// The profile files of a machine folder. docs/private-profile.md describes the format and what counts as the same
/// name.
///
/// Every version of a file is parsed once; the last few files are kept. A version is told by the file's identity, size
/// and times; since times have a grain, a file that was changed a moment before it was read is read and compared again
/// on the next call. Values are found by a hash: a look-up costs the same in a file and a section of any size.
///
/// A file name without a folder is one in C:\Windows. A file that cannot be read has no sections. One of more than 1
/// GiB is an AutomationError (75). Belongs to one thread at a time.
class ProfileFiles : public PrivateProfile {
 public:
  ProfileFiles(MachineFolder& folder, CodePage& codePage);
  ~ProfileFiles() override;

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;

 private:
  class FileSection;
  struct Parsed;
  struct Known;

  std::shared_ptr<const Parsed> Current(const std::string& file);
  void Refresh(Known& known);
  void Write(const std::string& file, std::string_view section, std::string_view key, std::string_view value);

  MachineFolder& folder_;
  CodePage& codePage_;
  std::list<Known> known_;  // the one used last in front
};

}  // namespace parvex::posix
