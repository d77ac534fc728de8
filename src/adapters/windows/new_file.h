#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace parvex::windows {

/// Whether a file that takes a name may take it from another one.
enum class NameOf { Nobody, Anybody };
/// Whether the bytes are on the disk before the file takes the name, which costs milliseconds.
enum class Durability { OfSystem, OnDisk };

/// A file that is written beside the one that it is to become, and takes its name; gone at the end unless it did. It
/// has the access list and the attributes of the file that it is to replace from the first byte on. Errors are those of
/// FileError and name the target.
///
/// The name changes hands in one step (MoveFileEx). A target that another program has open cannot be replaced so; where
/// that one lets files be deleted under it, ReplaceFile does it: for a moment nobody has the name, and the old file
/// stands beside it as "~parvex-*.old". Where it does not, it is waited for, a second at most.
class NewFile {
 public:
  /// Makes the file, under a name that nobody has. A read-only target and a folder are refused.
  explicit NewFile(std::string_view target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void Append(std::string_view bytes);
  /// To be called once; the handle is closed then.
  void TakeName(NameOf whose, Durability durability);

  HANDLE Handle() const { return handle_; }

 private:
  void Make(const std::wstring& folder, DWORD attributes);
  void Close();

  std::string target_;
  std::wstring wideTarget_;
  std::wstring beside_;
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  bool hasOwnName_ = false;
};

}  // namespace parvex::windows
