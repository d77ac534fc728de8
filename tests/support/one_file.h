#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "seams/automation_error.h"
#include "seams/files.h"

namespace parvex::test {

/// One file in memory, whatever the path, which may refuse to be replaced. Anything but reading and replacing it is a
/// mistake of the caller.
class OneFile : public Files {
 public:
  std::string bytes;
  std::optional<RuntimeError> refusal;
  int replaced = 0;

  bool IsFile(std::string_view) override { return true; }
  bool IsFolder(std::string_view) override { return false; }
  std::vector<std::string> ListFiles(std::string_view) override { return {}; }
  std::vector<std::string> ListFolders(std::string_view) override { return {}; }
  std::string ReadAll(std::string_view) override { return bytes; }
  void Replace(std::string_view, std::string_view content) override {
    if (refusal) throw MakeRuntimeError(*refusal, "refused");
    bytes = content;
    ++replaced;
  }
  void CreateNew(std::string_view, std::string_view) override { Unexpected(); }
  void Remove(std::string_view) override { Unexpected(); }
  void CreateFolder(std::string_view) override { Unexpected(); }
  void RemoveFolder(std::string_view) override { Unexpected(); }

 private:
  [[noreturn]] static void Unexpected() { throw std::logic_error("only one file is here"); }
};

}  // namespace parvex::test
