#include "replay/answered_files.h"

namespace parvex::replay {
namespace {

Json FileLine(const char* op, std::string_view path) {
  return {{"kind", "file"}, {"op", op}, {"path", std::string(path)}};
}

}  // namespace

void AnsweredFiles::RaiseErrorOfLook(const char* op, std::string_view path) {
  if (const std::optional<AutomationError> error = script_->ErrorOfLook(op, path)) {
    throw *error;
  }
}

std::vector<std::string> AnsweredFiles::ListFiles(std::string_view pattern) {
  RaiseErrorOfLook("listFiles", pattern);
  return machine_.ListFiles(network_.Path(pattern));
}

std::vector<std::string> AnsweredFiles::ListFolders(std::string_view folder) {
  RaiseErrorOfLook("listFolders", folder);
  return machine_.ListFolders(network_.Path(folder));
}

std::string AnsweredFiles::ReadAll(std::string_view path) {
  RaiseErrorOfLook("read", path);
  return machine_.ReadAll(network_.Path(path));
}

std::optional<std::string> AnsweredFiles::ReadIfFile(std::string_view path) {
  RaiseErrorOfLook("read", path);
  return machine_.ReadIfFile(network_.Path(path));
}

void AnsweredFiles::Replace(std::string_view path, std::string_view bytes) {
  script_->Serve(FileLine("replace", path), [&](const Step*) {
    machine_.Replace(network_.Path(path), bytes);
    return true;
  });
}

void AnsweredFiles::CreateNew(std::string_view path, std::string_view bytes) {
  script_->Serve(FileLine("createNew", path), [&](const Step*) {
    machine_.CreateNew(network_.Path(path), bytes);
    return true;
  });
}

void AnsweredFiles::Remove(std::string_view path) {
  script_->Serve(FileLine("remove", path), [&](const Step*) {
    machine_.Remove(network_.Path(path));
    return true;
  });
}

void AnsweredFiles::CreateFolder(std::string_view path) {
  script_->Serve(FileLine("createFolder", path), [&](const Step*) {
    machine_.CreateFolder(network_.Path(path));
    return true;
  });
}

void AnsweredFiles::RemoveFolder(std::string_view path) {
  script_->Serve(FileLine("removeFolder", path), [&](const Step*) {
    machine_.RemoveFolder(network_.Path(path));
    return true;
  });
}

}  // namespace parvex::replay
