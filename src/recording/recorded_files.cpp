#include "recording/recorded_files.h"

namespace parvex::recording {
namespace {

Json FileLine(const char* op, std::string_view path) {
  return {{"kind", "file"}, {"op", op}, {"path", std::string(path)}};
}

// What a line says of a file's content.
void Describe(Json& line, std::string_view bytes) { line["bytes"] = bytes.size(); }

}  // namespace

bool RecordedFiles::IsFile(std::string_view path) {
  const bool is = outside_.IsFile(path);
  if (Recording* recording = current_->recording.get()) {
    Asked(*recording, "isFile", path, is);
  }
  return is;
}

bool RecordedFiles::IsFolder(std::string_view path) {
  const bool is = outside_.IsFolder(path);
  if (Recording* recording = current_->recording.get()) {
    Asked(*recording, "isFolder", path, is);
  }
  return is;
}

// A question has a line only where its answer is news: many are asked again and again.
void RecordedFiles::Asked(Recording& recording, const char* op, std::string_view path, bool answer) {
  if (recording.Files().IsNewAnswer(std::string(op).append(" ").append(path), answer ? "yes" : "no")) {
    Json line = FileLine(op, path);
    line["result"] = answer;
    recording.Writer().Note(line);
    if (answer) {
      recording.Files().Named(path, op == std::string_view("isFolder"));
    }
  }
}

std::vector<std::string> RecordedFiles::ListFiles(std::string_view pattern) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.ListFiles(pattern);
  }
  return journal::Watch(recording->Writer(), FileLine("listFiles", pattern), [&](Json& line) {
    std::vector<std::string> names = outside_.ListFiles(pattern);
    line["result"] = names;
    const std::string folder(pattern.substr(0, pattern.find_last_of("\\/") + 1));
    if (!folder.empty() && outside_.IsFolder(folder)) {
      recording->Files().Named(folder, true);
    }
    for (const std::string& name : names) {
      recording->Files().Named(folder + name, false);
    }
    return names;
  });
}

std::vector<std::string> RecordedFiles::ListFolders(std::string_view folder) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.ListFolders(folder);
  }
  return journal::Watch(recording->Writer(), FileLine("listFolders", folder), [&](Json& line) {
    std::vector<std::string> names = outside_.ListFolders(folder);
    line["result"] = names;
    for (const std::string& name : names) {
      recording->Files().Named(std::string(folder).append("\\").append(name), true);
    }
    return names;
  });
}

std::string RecordedFiles::ReadAll(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.ReadAll(path);
  }
  return journal::Watch(recording->Writer(), FileLine("read", path), [&](Json& line) {
    std::string bytes = outside_.ReadAll(path);
    Describe(line, bytes);
    recording->Files().Read(path, bytes);
    return bytes;
  });
}

std::optional<std::string> RecordedFiles::ReadIfFile(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.ReadIfFile(path);
  }
  return journal::Watch(recording->Writer(), FileLine("read", path), [&](Json& line) {
    std::optional<std::string> bytes = outside_.ReadIfFile(path);
    if (bytes) {
      Describe(line, *bytes);
      recording->Files().Read(path, *bytes);
    } else {
      line["bytes"] = nullptr;
      recording->Files().ReadNone(path);
    }
    return bytes;
  });
}

void RecordedFiles::Replace(std::string_view path, std::string_view bytes) {
  ReplaceBy([](Files& files, std::string_view p, std::string_view b) { files.Replace(p, b); }, path, bytes);
}

void RecordedFiles::ReplaceOnDisk(std::string_view path, std::string_view bytes) {
  ReplaceBy(parvex::ReplaceOnDisk, path, bytes);
}

void RecordedFiles::ReplaceBy(Replacing replace, std::string_view path, std::string_view bytes) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return replace(outside_, path, bytes);
  }
  recording->Files().Use(path);
  Json line = FileLine("replace", path);
  Describe(line, bytes);
  journal::Watch(recording->Writer(), std::move(line), [&](Json&) {
    replace(outside_, path, bytes);
    recording->Files().Wrote(path);
    return true;
  });
}

void RecordedFiles::CreateNew(std::string_view path, std::string_view bytes) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.CreateNew(path, bytes);
  }
  recording->Files().Use(path);
  Json line = FileLine("createNew", path);
  Describe(line, bytes);
  journal::Watch(recording->Writer(), std::move(line), [&](Json&) {
    outside_.CreateNew(path, bytes);
    recording->Files().Wrote(path);
    return true;
  });
}

void RecordedFiles::Remove(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.Remove(path);
  }
  recording->Files().Use(path);
  journal::Watch(recording->Writer(), FileLine("remove", path), [&](Json&) {
    outside_.Remove(path);
    recording->Files().Removed(path);
    return true;
  });
}

void RecordedFiles::CreateFolder(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.CreateFolder(path);
  }
  journal::Watch(recording->Writer(), FileLine("createFolder", path), [&](Json&) {
    outside_.CreateFolder(path);
    return true;
  });
}

void RecordedFiles::RemoveFolder(std::string_view path) {
  const std::shared_ptr<Recording> recording = current_->recording;
  if (recording == nullptr) {
    return outside_.RemoveFolder(path);
  }
  recording->Files().UseFolder(path);
  journal::Watch(recording->Writer(), FileLine("removeFolder", path), [&](Json&) {
    outside_.RemoveFolder(path);
    recording->Files().AfterOutside();
    return true;
  });
}

}  // namespace parvex::recording
