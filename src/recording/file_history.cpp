#include "recording/file_history.h"

#include <utility>

#include "formats/text/letter_case.h"
#include "recording/case_layout.h"
#include "recording/quietly.h"
#include "seams/automation_error.h"
#include "seams/file_parts.h"
#include "seams/machine_locks.h"

namespace parvex::recording {
namespace {

constexpr std::size_t kFilePiece = CaseWriter::kPiece;
// Of a temporary folder that a program shares with others, what is looked at.
constexpr std::size_t kMostFilesLookedAt = 1'000;
constexpr std::size_t kLargestFileLookedAt = 4u << 20;

std::string Machine(const std::string& member) { return std::string(kMachine) + member; }

}  // namespace

// What is known of a path; a new entry for one that is not. Null for a path that cannot be kept.
FileHistory::Known* FileHistory::Find(std::string_view path, bool& isNew) {
  isNew = false;
  auto spelled = members_.find(path);
  if (spelled == members_.end()) {
    const std::optional<std::string> member = MemberOf(path);
    if (!member) {
      writer_.Missing(path, "its name cannot stand in an archive");
    }
    spelled = members_.emplace(path, member ? FoldName(*member) : std::string()).first;
  }
  if (spelled->second.empty()) {
    return nullptr;
  }
  const auto known = known_.find(spelled->second);
  if (known != known_.end()) {
    return &known->second;
  }
  isNew = true;
  Known fresh;
  fresh.path = path;
  fresh.member = *MemberOf(path);
  fresh.epoch = epoch_;
  return &known_.emplace(spelled->second, std::move(fresh)).first->second;
}

void FileHistory::Use(std::string_view path) noexcept {
  if (usedLast_ == path && usedEpoch_ == epoch_) {
    return;
  }
  Quietly(writer_, path, [&] {
    usedLast_ = path;
    usedEpoch_ = epoch_;
    bool isNew = false;
    Known* known = Find(path, isNew);
    if (known == nullptr || (!isNew && (known->epoch == epoch_ || known->isOurs))) {
      return;
    }
    if (isNew) {
      known->exists = files_.IsFile(path);
      if (known->exists) {
        Keep(*known, Machine(known->member));
      }
      return;
    }
    KeepChanged(*known);
  });
}

void FileHistory::Read(std::string_view path, std::string_view bytes) noexcept {
  Quietly(writer_, path, [&] {
    bool isNew = false;
    Known* known = Find(path, isNew);
    if (known == nullptr || (!isNew && known->epoch == epoch_ && known->exists)) {
      return;
    }
    if (!isNew) {
      Changed(*known, bytes);
      return;
    }
    known->exists = true;
    if (const auto checksum = writer_.Keep(Machine(known->member), bytes)) {
      known->checksum = *checksum;
      known->isKept = true;
    }
  });
}

void FileHistory::ReadNone(std::string_view path) noexcept {
  Quietly(writer_, path, [&] {
    bool isNew = false;
    if (Known* known = Find(path, isNew)) {
      if (known->exists && !known->isOurs) {
        writer_.Note({{"kind", "file"}, {"op", "gone"}, {"path", known->path}});
      }
      known->exists = false;
      known->epoch = epoch_;
    }
  });
}

void FileHistory::Wrote(std::string_view path) noexcept {
  Quietly(writer_, path, [&] {
    bool isNew = false;
    if (Known* known = Find(path, isNew)) {
      ours_ += known->isOurs ? 0 : 1;
      known->isOurs = true;
      known->exists = true;
      known->epoch = epoch_;
    }
  });
}

void FileHistory::Removed(std::string_view path) noexcept {
  Quietly(writer_, path, [&] {
    bool isNew = false;
    if (Known* known = Find(path, isNew)) {
      ours_ -= known->isOurs ? 1 : 0;
      known->isOurs = false;
      known->exists = false;
      known->epoch = epoch_;
    }
  });
}

void FileHistory::UseFolder(std::string_view path) noexcept {
  Quietly(writer_, path, [&] {
    const std::string inside = std::string(path) + "\\";
    for (const std::string& name : files_.ListFiles(inside)) {
      Use(inside + name);
    }
    for (const std::string& name : files_.ListFolders(path)) {
      UseFolder(inside + name);
    }
    Named(path, true);
  });
}

void FileHistory::Named(std::string_view path, bool isFolder) noexcept {
  Quietly(writer_, path, [&] {
    const std::optional<std::string> member = MemberOf(path);
    if (!member) {
      return;
    }
    if (!isFolder) {
      named_.emplace(FoldName(*member), *member);
    } else if (namedFolders_.emplace(FoldName(*member), *member).second) {
      writer_.Keep(Machine(*member) + "/", {});
    }
  });
}

bool FileHistory::IsNewAnswer(std::string_view question, std::string_view answer) noexcept {
  bool isNew = true;
  Quietly(writer_, question, [&] {
    const auto known = answers_.find(question);
    if (known == answers_.end()) {
      answers_.emplace(question, answer);
    } else if (known->second == answer) {
      isNew = false;
    } else {
      known->second = answer;
    }
  });
  return isNew;
}

void FileHistory::BeforeOutside() noexcept {
  if (ours_ == 0) {
    return;
  }
  for (auto& [folded, known] : known_) {
    if (!known.isOurs) {
      continue;
    }
    Quietly(writer_, known.path, [&, &file = known] {
      file.isOurs = false;
      const std::uint64_t step = writer_.NextStep();
      const std::string member = AfterStep(step) + file.member;
      Keep(file, member);
      writer_.NoteStep(step, {{"kind", "file"}, {"op", "left"}, {"path", file.path}, {"stored", member}});
    });
  }
  ours_ = 0;
}

void FileHistory::LookAt(const std::string& folder) noexcept {
  Quietly(writer_, folder, [&] {
    Named(folder, true);
    std::size_t count = 0;
    for (const std::string& name : files_.ListFiles(folder + "\\")) {
      if (name == kLockFile) {
        continue;
      }
      const std::string path = folder + "\\" + name;
      if (++count > kMostFilesLookedAt) {
        writer_.Missing(folder, "it holds more files than are looked at");
        return;
      }
      if (ReadPart(files_, path, kLargestFileLookedAt, 1).empty()) {
        Use(path);
      } else {
        PassOver(path);
      }
    }
  });
}

void FileHistory::PassOver(const std::string& path) {
  bool isNew = false;
  Known* known = Find(path, isNew);
  if (known != nullptr && isNew) {
    known->isPassedOver = true;
    known->exists = true;
    writer_.Missing(path, "it is larger than what is looked at before a program");
  }
}

Json FileHistory::ChangesIn(const std::string& folder, std::uint64_t step) noexcept {
  Json changes = Json::array();
  Quietly(writer_, folder, [&] {
    const std::string inside = folder + "\\";
    for (const std::string& name : files_.ListFiles(inside)) {
      if (name == kLockFile) {
        continue;
      }
      const std::string path = inside + name;
      bool isNew = false;
      Known* known = Find(path, isNew);
      if (known == nullptr || known->isPassedOver) {
        continue;
      }
      if (!isNew && IsUnchanged(*known)) {
        known->epoch = epoch_;
        continue;
      }
      if (isNew || !known->exists || ChecksumNow(path) != known->checksum) {
        const std::string member = AfterStep(step) + known->member;
        known->exists = true;
        Keep(*known, member);
        changes.push_back({{"path", path}, {"stored", member}});
      }
      known->epoch = epoch_;
    }
    const std::string below = FoldName(MemberOf(folder).value_or("?") + "/");
    for (auto known = known_.lower_bound(below); known != known_.end() && known->first.starts_with(below); ++known) {
      if (known->second.exists && !files_.IsFile(known->second.path)) {
        known->second.exists = false;
        known->second.epoch = epoch_;
        changes.push_back({{"path", known->second.path}, {"stored", nullptr}});
      }
    }
  });
  return changes;
}

std::vector<std::string> FileHistory::Finish() noexcept {
  BeforeOutside();
  std::vector<std::string> names;
  for (const auto& [folded, member] : named_) {
    Quietly(writer_, member, [&, &name = member, &key = folded] {
      if (!known_.contains(key)) {
        writer_.Keep(Machine(name), {});
        names.push_back(name);
      }
    });
  }
  return names;
}

void FileHistory::Keep(Known& known, std::string_view member) {
  const std::string path = known.path;
  known.version = VersionOf(files_, path);
  const auto checksum =
      writer_.KeepPieces(std::string(member), [&](std::uint64_t at) { return ReadPart(files_, path, at, kFilePiece); });
  known.isKept = checksum.has_value();
  known.checksum = checksum.value_or(0);
  known.epoch = epoch_;
}

// Looks whether somebody else has changed a file since.
void FileHistory::KeepChanged(Known& known) {
  if (IsUnchanged(known)) {
    known.epoch = epoch_;
    return;
  }
  const std::optional<std::uint32_t> now = ChecksumNow(known.path);
  known.epoch = epoch_;
  if (!now) {
    ReadNone(known.path);
    return;
  }
  if (known.exists && known.checksum == *now) {
    return;
  }
  known.exists = true;
  const std::uint64_t step = writer_.NextStep();
  const std::string member = AfterStep(step) + known.member;
  Keep(known, member);
  writer_.NoteStep(step, {{"kind", "file"}, {"op", "changed"}, {"path", known.path}, {"stored", member}});
}

void FileHistory::Changed(Known& known, std::string_view bytes) {
  known.epoch = epoch_;
  if (known.isOurs || (known.exists && known.checksum == ChecksumOf(bytes))) {
    return;
  }
  known.exists = true;
  known.version.reset();
  const std::uint64_t step = writer_.NextStep();
  const std::string member = AfterStep(step) + known.member;
  known.checksum = writer_.Keep(member, bytes).value_or(0);
  writer_.NoteStep(step, {{"kind", "file"}, {"op", "changed"}, {"path", known.path}, {"stored", member}});
}

// Without reading it, which may be much.
bool FileHistory::IsUnchanged(const Known& known) {
  return known.exists && known.version && VersionOf(files_, known.path) == known.version;
}

std::optional<std::uint32_t> FileHistory::ChecksumNow(const std::string& path) {
  if (!files_.IsFile(path)) {
    return std::nullopt;
  }
  std::uint32_t checksum = 0;
  std::uint64_t at = 0;
  for (;;) {
    const std::string piece = ReadPart(files_, path, at, kFilePiece);
    checksum = ChecksumOf(piece, checksum);
    at += piece.size();
    if (piece.size() < kFilePiece) {
      return checksum;
    }
  }
}

}  // namespace parvex::recording
