#include "hybris/stored_tag_text.h"

#include <algorithm>
#include <vector>

#include "hybris/packing.h"
#include "platform/text.h"

namespace parvex {
namespace {

constexpr std::string_view kTagFile = "Tag";

std::string TextOfUtf16(std::string_view bytes, bool lowByteFirst) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(lowByteFirst ? first | second << 8 : first << 8 | second));
  }
  return FromUtf16(units);
}

std::string TextOf(CodePage& codePage, std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    return FromUtf16(ToUtf16(bytes.substr(3)));
  }
  if (bytes.starts_with("\xFF\xFE")) {
    return TextOfUtf16(bytes.substr(2), true);
  }
  if (bytes.starts_with("\xFE\xFF")) {
    return TextOfUtf16(bytes.substr(2), false);
  }
  return codePage.FromAnsi(bytes);
}

// The lines of a text, each with CR LF behind it. CR LF, LF and CR end a line; what follows the last one is a line of its
// own when it is not empty.
std::string WithUniformLineEnds(std::string_view text) {
  std::string lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find_first_of("\r\n"), text.size());
    lines.append(text.substr(0, length)).append("\r\n");
    text.remove_prefix(length);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, text.size()));
  }
  return lines;
}

// The text of the file "Tag" in the blob's folder, which is deleted; empty when there is none. A blob that has this name
// itself is not taken for the file that came out of it.
std::string TakeTagFile(const Platform& platform, std::string_view blobPath) {
  const std::string tagFile = std::string(FolderOf(blobPath)).append(kTagFile);
  if (EqualIgnoringCase(tagFile, blobPath) || !platform.files.IsFile(tagFile)) {
    return {};
  }
  const std::string bytes = platform.files.ReadAll(tagFile);
  platform.files.Remove(tagFile);
  return WithUniformLineEnds(TextOf(platform.codePage, bytes));
}

// The only file among the entries; null when there are several or none.
const PackedEntry* OnlyFile(const std::vector<PackedEntry>& entries) {
  const auto isFile = [](const PackedEntry& entry) { return !entry.isFolder; };
  const auto first = std::find_if(entries.begin(), entries.end(), isFile);
  const bool only = first != entries.end() && std::find_if(first + 1, entries.end(), isFile) == entries.end();
  return only ? &*first : nullptr;
}

}  // namespace

StoredTagText ReadStoredTagText(const Platform& platform, std::string_view fileName) {
  if (fileName.empty() || !platform.files.IsFile(fileName)) {
    return {};
  }
  const std::string archive = platform.files.ReadAll(fileName);
  if (archive.empty()) {
    return {};
  }
  const std::vector<PackedEntry> entries = Unpack(platform.codePage, archive, fileName);
  ExtractBesideBlob(platform.files, entries, fileName);
  if (std::string text = TakeTagFile(platform, fileName); !text.empty()) {
    return {std::move(text), true};
  }
  if (const PackedEntry* file = OnlyFile(entries)) {
    if (std::string text = TextOf(platform.codePage, file->bytes); text.find("SAPDATA") != std::string::npos) {
      return {std::move(text), false};
    }
  }
  return {};
}

}  // namespace parvex
