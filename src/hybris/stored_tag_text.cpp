#include "hybris/stored_tag_text.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "formats/text/encoded_text.h"
#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "formats/zip/zip_reader.h"
#include "hybris/blob_folder.h"
#include "legacy_env/file_routines.h"

namespace parvex {
namespace {

constexpr std::string_view kTagFile = "Tag";

std::string TextOf(CodePage& codePage, std::string_view bytes) {
  const std::optional<std::string> marked = MarkedText(bytes);
  return marked ? WellFormed(*marked) : codePage.FromAnsi(bytes);
}

// The lines of a text, each with CR LF behind it. CR LF, LF and CR end a line; what follows the last one is a line of
// its own when it is not empty.
std::string WithUniformLineEnds(std::string_view text) {
  std::string lines;
  lines.reserve(text.size() + 2);
  std::size_t nextCr = text.find('\r');
  std::size_t nextLf = text.find('\n');
  for (std::size_t pos = 0; pos < text.size();) {
    const std::size_t end = std::min({nextCr, nextLf, text.size()});
    lines.append(text.substr(pos, end - pos)).append("\r\n");
    pos = end + (nextCr == end && nextLf == end + 1 ? 2 : 1);
    nextCr = nextCr < pos ? text.find('\r', pos) : nextCr;
    nextLf = nextLf < pos ? text.find('\n', pos) : nextLf;
  }
  return lines;
}

// Where a file "Tag" beside the blob is; empty for a blob that has this name itself.
std::string TagFileBeside(std::string_view blobPath) {
  std::string tagFile = std::string(FolderOf(blobPath)).append(kTagFile);
  return IsSameName(tagFile, blobPath) ? std::string() : tagFile;
}

// The bytes of a file "Tag" that an earlier run left beside the blob, which is deleted; null when there is none.
std::optional<std::string> TakeTagFile(const Platform& platform, const std::string& tagFile) {
  if (tagFile.empty() || !platform.files->IsFile(tagFile)) {
    return std::nullopt;
  }
  std::string bytes = platform.files->ReadAll(tagFile);
  platform.files->Remove(tagFile);
  return bytes;
}

bool IsTagFile(const PackedEntry& entry) { return !entry.isFolder && EqualIgnoringCase(entry.name, kTagFile); }

bool HasOrderConfiguration(std::string_view text) { return text.find("SAPDATA") != std::string_view::npos; }

// The archive's own file "Tag", taken out of the entries; null when it has none. The legacy application extracts it
// with the others, reads it and deletes it; the same comes of never writing it, and of deleting one that an earlier run
// left.
std::optional<PackedEntry> TakeTagEntry(std::vector<PackedEntry>& entries) {
  const auto tag = std::find_if(entries.begin(), entries.end(), IsTagFile);
  if (tag == entries.end()) {
    return std::nullopt;
  }
  PackedEntry taken = std::move(*tag);
  entries.erase(tag);
  return taken;
}

// Whether writing the entries may have changed the archive's own file: none of them has its name, but a link may lead
// from one to the other.
bool MayHaveChanged(Files& files, const std::vector<PackedEntry>& written, std::string_view fileName) {
  const auto liesInFolder = [](const PackedEntry& entry) { return entry.name.find('\\') != std::string::npos; };
  return std::any_of(written.begin(), written.end(), liesInFolder) || (!written.empty() && files.MayBeLink(fileName));
}

// The only file among the entries; null when there are several or none.
const PackedEntry* OnlyFile(const std::vector<PackedEntry>& entries) {
  const auto isFile = [](const PackedEntry& entry) { return !entry.isFolder; };
  const auto first = std::find_if(entries.begin(), entries.end(), isFile);
  const bool only = first != entries.end() && std::find_if(first + 1, entries.end(), isFile) == entries.end();
  return only ? &*first : nullptr;
}

// The text and its status, from the archive's own file "Tag", the one that was left beside it, and the other entries.
StoredTagText TextAmong(CodePage& codePage, const std::optional<PackedEntry>& tag,
                        const std::optional<std::string>& left, const std::vector<PackedEntry>& others) {
  const std::string_view lines = tag ? tag->bytes : left ? *left : std::string_view();
  if (std::string text = WithUniformLineEnds(TextOf(codePage, lines)); !text.empty()) {
    return {std::move(text), true, {}};
  }
  if (tag) {
    return {};  // it was the only entry, or there are several
  }
  if (const PackedEntry* file = OnlyFile(others)) {
    if (std::string text = TextOf(codePage, file->bytes); HasOrderConfiguration(text)) {
      return {std::move(text), false, {}};
    }
  }
  return {};
}

}  // namespace

bool HoldTagText(CodePage& codePage, const std::vector<PackedEntry>& entries) {
  const PackedEntry* only = OnlyFile(entries);
  return std::any_of(entries.begin(), entries.end(), IsTagFile) ||
         (only != nullptr && HasOrderConfiguration(TextOf(codePage, only->bytes)));
}

StoredTagText ReadStoredTagText(const Platform& platform, std::string_view fileName, NamedBlobs* named) {
  if (fileName.empty()) {
    return {};
  }
  RefuseDevicePath(fileName);
  std::string archive = platform.files->ReadIfFile(fileName).value_or(std::string());
  std::vector<PackedEntry> entries = Unpack(*platform.codePage, archive, fileName, kUnpackedAsFiles);
  const std::string tagFile = TagFileBeside(fileName);
  const std::optional<PackedEntry> tag = tagFile.empty() ? std::nullopt : TakeTagEntry(entries);
  ExtractBesideBlob(*platform.files, entries, fileName, named);
  const std::optional<std::string> left = TakeTagFile(platform, tagFile);
  StoredTagText read = TextAmong(*platform.codePage, tag, left, entries);
  if (!left && !MayHaveChanged(*platform.files, entries, fileName)) {
    read.archive = std::move(archive);
  }
  return read;
}

}  // namespace parvex
