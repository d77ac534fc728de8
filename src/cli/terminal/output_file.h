#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "seams/host_system.h"

namespace parvex::cli {

/// A file that the program is to write, or standard output for "-". That it can be written is found out before the work
/// begins; it holds its old content until the new one is complete, and keeps its access rights. Read-only files,
/// folders and links are refused; pipes and devices are written to as they are.
class OutputFile {
 public:
  using Readers = HostSystem::Readers;

  /// A UsageError for a file that cannot be written.
  explicit OutputFile(const std::string& name, Readers readers = Readers::AsUsual);
  /// Without Write everything is as it was.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// To be called once; an AutomationError (75, or 61 for a full disk) when the bytes cannot be written completely.
  void Write(std::string_view bytes);

 private:
  std::unique_ptr<HostSystem> system_;
  std::unique_ptr<HostSystem::Replacement> file_;  ///< null for standard output
};

}  // namespace parvex::cli
