#include "formats/zip/zip_reader.h"

#include <zlib.h>

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "formats/zip/checksum.h"
#include "formats/zip/entry_names.h"
#include "formats/zip/written_records.h"
#include "formats/zip/zip_records.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::string_view kBlob = "blob";

constexpr std::uint16_t kEncrypted = 0x0001 | 0x0040 | 0x2000;  // entry, strongly, directory
constexpr std::uint16_t kPatch = 0x0020;
constexpr std::uint16_t kInZip64 = 0xFFFF;
constexpr std::uint32_t kInZip64Long = 0xFFFFFFFF;

// Little-endian numbers at a place that the caller knows to exist.
std::uint16_t Read16(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1])
                                                                                << 8);
}

std::uint32_t Read32(std::string_view bytes, std::size_t at) {
  return Read16(bytes, at) | static_cast<std::uint32_t>(Read16(bytes, at + 2)) << 16;
}

// Names in messages keep to one line, and to the end: a NUL would cut the message off.
std::string Shown(std::string_view name) {
  constexpr std::size_t kShownUnits = 260;
  std::string shown(FirstUnits(WellFormed(name), kShownUnits));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
  return shown;
}

// What is refused, as messages call it.
std::string Subject(std::string_view what, std::string_view path) {
  return "the " + std::string(what) + " " + Quoted(Shown(path));
}

[[noreturn]] void Refuse(const std::string& subject, const std::string& reason) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, subject + " is refused: " + reason);
}

[[noreturn]] void RefuseEntryOf(const std::string& subject, std::string_view name, const std::string& reason) {
  Refuse(subject, "its entry " + Quoted(Shown(name)) + " " + reason);
}

// --- Names ---

// Refuses entries that cannot all be unpacked: two of one name, letter case ignored, or a file below another file. What
// lies below a path is sorted directly behind it.
void RefuseClashes(const std::vector<PackedEntry>& entries, const std::string& subject) {
  constexpr char kBeforeAllOthers = '\1';
  std::vector<std::pair<std::string, const PackedEntry*>> sorted;
  for (const PackedEntry& entry : entries) {
    sorted.emplace_back(FoldName(entry.name), &entry);
    std::replace(sorted.back().first.begin(), sorted.back().first.end(), '\\', kBeforeAllOthers);
  }
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    const auto& [path, entry] = sorted[i];
    const auto& [before, entryBefore] = sorted[i - 1];
    if (path == before || (!entryBefore->isFolder && path.starts_with(before + kBeforeAllOthers))) {
      RefuseEntryOf(subject, entry->name, "has a name that another entry takes");
    }
  }
}

// The entry of that name without its bytes.
PackedEntry NamedEntry(std::string_view name, const std::string& subject) {
  if (const std::optional<std::string> problem = ProblemOfPackedName(name)) {
    RefuseEntryOf(subject, name, *problem);
  }
  PackedEntry entry{WrittenName(name), {}, false};
  if (entry.name.back() == '\\') {
    entry.name.pop_back();
    entry.isFolder = true;
  }
  return entry;
}

// --- Records ---

// Where the entries are described.
struct Directory {
  std::size_t entries;
  std::size_t offset;
  std::size_t length;
};

// One entry as the directory describes it.
struct Listed {
  std::string_view rawName;  // as written
  std::string name;          // UTF-8
  std::uint16_t flags;
  std::uint16_t method;
  std::uint32_t crc;
  std::uint32_t packedLength;
  std::uint32_t length;
  std::uint32_t attributes;
  std::uint32_t offset;
};

class Archive {
 public:
  Archive(CodePage& codePage, std::string_view bytes, std::string subject, const UnpackLimits& limits)
      : codePage_(codePage), bytes_(bytes), subject_(std::move(subject)), limits_(limits) {}

  // All records are checked before the first entry is unpacked.
  std::vector<PackedEntry> Entries() {
    const std::optional<std::size_t> end = FindEndRecord();
    if (!end) {
      return {};
    }
    const Directory directory = FindDirectory(*end);
    const std::vector<Listed> listed = ReadDirectory(directory);
    std::vector<PackedEntry> entries;
    for (const Listed& entry : listed) {
      entries.push_back(NamedEntry(entry.name, subject_));
      CheckKind(entry, entries.back().isFolder);
    }
    CheckFolders(entries);
    RefuseClashes(entries, subject_);
    CheckLimits(listed);
    const std::vector<std::string_view> data = LocateData(listed, directory.offset);
    for (std::size_t i = 0; i < listed.size(); ++i) {
      entries[i].bytes = UnpackEntry(listed[i], data[i]);
    }
    return entries;
  }

 private:
  // The end record is the last one whose comment reaches exactly to the end of the file.
  std::optional<std::size_t> FindEndRecord() const {
    using namespace end_record;
    if (bytes_.size() < kLength) {
      return std::nullopt;
    }
    const std::size_t last = bytes_.size() - kLength;
    const std::size_t first = last - std::min(last, kLongestComment);
    for (std::size_t at = last + 1; at-- > first;) {
      if (Read32(bytes_, at) == kSignature && Read16(bytes_, at + kCommentLength) == last - at) {
        return at;
      }
    }
    return std::nullopt;
  }

  Directory FindDirectory(std::size_t at) const {
    using namespace end_record;
    const std::string_view record = bytes_.substr(at, kLength);
    const std::uint16_t entries = Read16(record, kEntries);
    const std::uint32_t length = Read32(record, kDirectoryLength);
    const std::uint32_t offset = Read32(record, kDirectoryOffset);
    if (entries == kInZip64 || length == kInZip64Long || offset == kInZip64Long) {
      Refuse(subject_, "it is a ZIP64 archive");
    }
    if (Read16(record, kDisk) != 0 || Read16(record, kDirectoryDisk) != 0 ||
        Read16(record, kEntriesOnDisk) != entries) {
      Refuse(subject_, "it is one part of an archive");
    }
    if (std::uint64_t{offset} + length > at) {
      Refuse(subject_, "its directory lies outside of the file");
    }
    return {entries, offset, length};
  }

  std::vector<Listed> ReadDirectory(const Directory& directory) const {
    std::vector<Listed> listed;
    std::string_view rest = bytes_.substr(directory.offset, directory.length);
    while (listed.size() < directory.entries) {
      listed.push_back(TakeDirectoryRecord(rest));
      if (listed.size() > limits_.entries) {
        RefuseEntryOf(subject_, listed.back().name, "brings the archive to more entries than are unpacked");
      }
    }
    if (!rest.empty()) {
      Refuse(subject_, "its directory is longer than its entries");
    }
    return listed;
  }

  // Reads the first record of the rest of the directory and takes it off.
  Listed TakeDirectoryRecord(std::string_view& rest) const {
    using namespace directory_record;
    if (rest.size() < kLength || Read32(rest, 0) != kSignature) {
      Refuse(subject_, "its directory is damaged");
    }
    const std::size_t nameLength = Read16(rest, kNameLength);
    const std::size_t length = kLength + nameLength + Read16(rest, kExtraLength) + Read16(rest, kCommentLength);
    if (rest.size() < length) {
      Refuse(subject_, "its directory is damaged");
    }
    Listed entry;
    entry.rawName = rest.substr(kLength, nameLength);
    entry.flags = Read16(rest, kFlags);
    entry.name = (entry.flags & kNameIsUtf8) != 0 ? std::string(entry.rawName) : codePage_.FromAnsi(entry.rawName);
    entry.method = Read16(rest, kMethod);
    entry.crc = Read32(rest, kCrc);
    entry.packedLength = Read32(rest, kPackedLength);
    entry.length = Read32(rest, kUnpackedLength);
    entry.attributes = Read32(rest, kAttributes);
    entry.offset = Read32(rest, kOffset);
    if (Read16(rest, kDisk) != 0) {
      RefuseEntryOf(subject_, entry.name, "lies in another part of the archive");
    }
    rest.remove_prefix(length);
    return entry;
  }

  // The upper half of the attributes holds the file's type where a Unix system wrote the archive, the lower those of
  // DOS.
  void CheckKind(const Listed& entry, bool isFolder) const {
    constexpr std::uint32_t kReparsePoint = 0x0400;
    const std::uint32_t unixType = entry.attributes >> 28;
    const std::uint32_t expectedType = isFolder ? 0x4 : 0x8;
    if ((unixType != 0 && unixType != expectedType) || (entry.attributes & kReparsePoint) != 0) {
      RefuseEntryOf(subject_, entry.name, "is a link or another special file");
    }
    if ((entry.flags & kEncrypted) != 0) {
      RefuseEntryOf(subject_, entry.name, "is encrypted");
    }
    if ((entry.flags & kPatch) != 0 || (entry.method != kStored && entry.method != kDeflated)) {
      RefuseEntryOf(subject_, entry.name,
                    "is packed by a method that is not read (" + std::to_string(entry.method) + ")");
    }
    if (entry.packedLength == kInZip64Long || entry.length == kInZip64Long || entry.offset == kInZip64Long) {
      RefuseEntryOf(subject_, entry.name, "is a ZIP64 entry");
    }
    if (isFolder && entry.length != 0) {
      RefuseEntryOf(subject_, entry.name, "is a folder with content");
    }
    if (entry.method == kStored && entry.packedLength != entry.length) {
      RefuseEntryOf(subject_, entry.name, "is damaged: it is stored with two lengths");
    }
  }

  // Of an entry, every folder that it makes or lies in counts once.
  void CheckFolders(const std::vector<PackedEntry>& entries) const {
    std::unordered_set<std::string> folders;
    for (const PackedEntry& entry : entries) {
      std::size_t end = entry.isFolder ? entry.name.size() : entry.name.rfind('\\');
      while (end != std::string::npos && folders.insert(ToUpper(std::string_view(entry.name).substr(0, end))).second) {
        if (folders.size() > limits_.folders) {
          RefuseEntryOf(subject_, entry.name, "brings the archive to more folders than are unpacked");
        }
        end = end == 0 ? std::string::npos : entry.name.rfind('\\', end - 1);
      }
    }
  }

  void CheckLimits(const std::vector<Listed>& listed) const {
    std::uint64_t total = 0;
    for (const Listed& entry : listed) {
      total += entry.length;
      if (entry.length > limits_.entry) {
        RefuseEntryOf(subject_, entry.name, "has " + std::to_string(entry.length) + " bytes, more than are unpacked");
      }
      if (total > limits_.total) {
        RefuseEntryOf(subject_, entry.name, "brings the archive to more bytes than are unpacked");
      }
    }
  }

  // The packed data of every entry. Entries lie in front of the directory, and none shares a byte with another.
  std::vector<std::string_view> LocateData(const std::vector<Listed>& listed, std::size_t directoryOffset) const {
    struct Extent {
      std::size_t begin;
      std::size_t end;
      const Listed* entry;
    };
    std::vector<Extent> extents;
    std::vector<std::string_view> data;
    for (const Listed& entry : listed) {
      const std::size_t begin = DataBegin(entry, directoryOffset);
      const std::size_t end = begin + entry.packedLength;
      if (end > directoryOffset) {
        RefuseEntryOf(subject_, entry.name, "reaches into the directory");
      }
      extents.push_back({entry.offset, end, &entry});
      data.push_back(bytes_.substr(begin, entry.packedLength));
    }
    std::sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
    for (std::size_t i = 1; i < extents.size(); ++i) {
      if (extents[i].begin < extents[i - 1].end) {
        RefuseEntryOf(subject_, extents[i].entry->name, "overlaps another entry");
      }
    }
    return data;
  }

  // Where an entry's data begins: behind its local record, which has to say the same as the directory. (Lengths and CRC
  // may be missing there, so the directory's count.)
  std::size_t DataBegin(const Listed& entry, std::size_t directoryOffset) const {
    using namespace local_record;
    if (std::uint64_t{entry.offset} + kLength > directoryOffset || Read32(bytes_, entry.offset) != kSignature) {
      RefuseEntryOf(subject_, entry.name, "is not where the directory says");
    }
    const std::string_view record = bytes_.substr(entry.offset, kLength);
    const std::string_view rawName = bytes_.substr(entry.offset + kLength, Read16(record, kNameLength));
    const bool encrypted = (Read16(record, kFlags) & kEncrypted) != 0;
    if (rawName != entry.rawName || Read16(record, kMethod) != entry.method || encrypted) {
      RefuseEntryOf(subject_, entry.name, "is described in two ways");
    }
    return std::size_t{entry.offset} + kLength + rawName.size() + Read16(record, kExtraLength);
  }

  std::string UnpackEntry(const Listed& entry, std::string_view data) const {
    std::string bytes = entry.method == kStored ? std::string(data) : Inflate(entry, data);
    if (ChecksumOf(bytes) != entry.crc) {
      RefuseEntryOf(subject_, entry.name, "is damaged: its checksum is wrong");
    }
    return bytes;
  }

  // Never writes more than the declared length, which was checked before.
  std::string Inflate(const Listed& entry, std::string_view data) const {
    constexpr int kRawStream = -MAX_WBITS;
    std::string bytes(entry.length, '\0');
    z_stream stream{};
    if (inflateInit2(&stream, kRawStream) != Z_OK) {
      Refuse(subject_, "zlib does not start");
    }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    const int result = inflate(&stream, Z_FINISH);
    const bool complete = result == Z_STREAM_END && stream.avail_in == 0 && stream.avail_out == 0;
    inflateEnd(&stream);
    if (!complete) {
      RefuseEntryOf(subject_, entry.name, "is damaged: its data does not unpack to its length");
    }
    return bytes;
  }

  CodePage& codePage_;
  std::string_view bytes_;
  std::string subject_;
  UnpackLimits limits_;
};

}  // namespace

std::vector<PackedEntry> Unpack(CodePage& codePage, std::string_view archive, std::string_view path,
                                const UnpackLimits& limits) {
  return Archive(codePage, archive, Subject(limits.what, path), limits).Entries();
}

std::string WithDirectory(std::string_view unfinished) {
  using namespace local_record;
  std::size_t at = 0;
  std::string directory;
  std::uint16_t entries = 0;
  while (unfinished.size() - at >= kLength && Read32(unfinished, at) == kSignature && entries < kInZip64 - 1) {
    const std::uint64_t length = Read32(unfinished, at + kStoredLength);
    const std::size_t nameLength = Read16(unfinished, at + kNameLength);
    const std::uint64_t end = std::uint64_t{at} + kLength + nameLength + Read16(unfinished, at + kExtraLength) + length;
    if (Read16(unfinished, at + kMethod) != kStored || end > unfinished.size()) {
      break;
    }
    const std::string_view record = unfinished.substr(at, kLength + nameLength);
    directory += DirectoryRecord(record.substr(kLength), record.substr(4, kLength - 4), static_cast<std::uint32_t>(at));
    ++entries;
    at = static_cast<std::size_t>(end);
  }
  return std::string(unfinished.substr(0, at)) + directory + EndRecord(entries, directory.size(), at);
}

void RefuseEntry(std::string_view blobPath, std::string_view name, const std::string& reason) {
  RefuseEntryOf(Subject(kBlob, blobPath), name, reason);
}

}  // namespace parvex
