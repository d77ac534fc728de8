#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace parvex::cli {

/// A file that the program is to write, or standard output for "-". That it can be written is found out before the work
/// begins; it holds its old content until the new one is complete.
class OutputFile {
 public:
  /// A UsageError for a file that cannot be written.
  explicit OutputFile(const std::string& name);
  /// Without Write everything is as it was.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// To be called once; an AutomationError (75) when the bytes cannot be written completely.
  void Write(std::string_view bytes);

 private:
  std::string name_;
  std::filesystem::path target_;  ///< empty for standard output
  std::filesystem::path beside_;  ///< the new content until it is complete; the target itself where that is no file
  std::ofstream stream_;
};

}  // namespace parvex::cli
