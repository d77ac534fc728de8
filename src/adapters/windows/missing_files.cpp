#include "adapters/windows/missing_files.h"

#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

/// With its final backslash; empty for a path that depends on the current folder.
std::string_view FolderOf(std::string_view path) {
  const bool isWhole = path.starts_with("\\\\") || (path.size() > 2 && path.substr(1, 2) == ":\\");
  return isWhole ? path.substr(0, path.find_last_of("\\/") + 1) : std::string_view();
}

}  // namespace

bool MissingFiles::Knows(const std::string& path) { return names_.contains(path) && Watches(folder_); }

void MissingFiles::Note(const std::string& path) {
  const std::string_view folder = FolderOf(path);
  if (Watches(folder)) {
    names_.insert(path);
    return;
  }
  Forget();
  if (!folder.empty()) {
    folder_ = folder;
    changes_ = FindFirstChangeNotificationW(Widen(folder).c_str(), FALSE,
                                            FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME);
  }
}

void MissingFiles::Forget() {
  names_.clear();
  if (changes_ != INVALID_HANDLE_VALUE) {
    FindCloseChangeNotification(changes_);
    changes_ = INVALID_HANDLE_VALUE;
  }
}

bool MissingFiles::Watches(std::string_view folder) {
  if (changes_ == INVALID_HANDLE_VALUE || folder != folder_) {
    return false;
  }
  if (WaitForSingleObject(changes_, 0) == WAIT_TIMEOUT) {
    return true;
  }
  Forget();
  return false;
}

}  // namespace parvex::windows
