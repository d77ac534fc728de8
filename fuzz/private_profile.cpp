#include <optional>
#include <string>
#include <string_view>

#include "formats/ini/profile_index.h"
#include "formats/ini/profile_text.h"
#include "formats/text/windows_1252.h"
#include "fuzz/fuzz_input.h"

// A profile file, looked up by the index and line by line; then a value is set and read back. The input: a section, a
// key, another key and a value, each up to a line feed, and the file's bytes.

namespace parvex::ini {
namespace {

using fuzz::Require;

constexpr std::size_t kLongestName = 4096;

struct Wanted {
  std::string_view section;
  std::string_view key;
};

// The first key of that name in the first section of that name, line by line.
std::optional<std::string> PlainLookup(const ProfileText& file, const Wanted& wanted) {
  const std::string_view text = file.Text();
  const std::string section = file.Piece(wanted.section);
  const std::string key = file.Piece(wanted.key);
  bool inside = section.empty();
  for (std::size_t pos = 0; pos < text.size();) {
    const ProfileLine line = ProfileLineAt(text, pos);
    const std::string_view content = text.substr(line.begin, line.end - line.begin);
    pos = line.next;
    if (const auto name = SectionName(content)) {
      if (inside) {
        return std::nullopt;
      }
      inside = file.SameName(*name, section);
    } else if (inside && !line.IsBlank() && file.SameName(KeyName(content), key)) {
      const auto value = KeyValue(content);
      return value ? std::optional<std::string>(*value) : std::nullopt;
    }
  }
  return std::nullopt;
}

std::optional<std::string> IndexedLookup(const ProfileText& file, const Wanted& wanted) {
  const ProfileIndex index(file);
  const ProfileIndex::Section* section = index.FindSection(file.Piece(wanted.section));
  const auto value = section == nullptr ? std::nullopt : index.FindValue(*section, file.Piece(wanted.key));
  return value ? std::optional<std::string>(*value) : std::nullopt;
}

bool CanBeName(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0=[]", 6)) == std::string_view::npos;
}

std::string_view AsName(std::string_view text) { return TrimProfileBlanks(UpToNul(text)); }

void CheckSetting(const ProfileText& file, const Wanted& wanted, std::string_view otherKey, std::string_view value,
                  CodePage& codePage) {
  const std::optional<std::string> changed = file.WithValue(wanted.section, wanted.key, value);
  if (!changed) {
    Require(PlainLookup(file, wanted) == file.Piece(value), "what is left as it is has the value already");
    return;
  }
  const ProfileText after(*changed, codePage);
  // A file without a byte order mark may get one by what is written at its beginning.
  if (after.Encoding() != file.Encoding()) {
    return;
  }
  Require(PlainLookup(after, wanted) == after.Piece(value), "what was set is read back");
  Require(!after.WithValue(wanted.section, wanted.key, value), "what was set need not be set again");
  if (!file.SameName(file.Piece(wanted.key), file.Piece(otherKey))) {
    const Wanted other{wanted.section, otherKey};
    Require(PlainLookup(after, other) == PlainLookup(file, other), "no other key of the section changes");
  }
}

}  // namespace
}  // namespace parvex::ini

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  using namespace parvex::ini;
  fuzz::Input input(data, size);
  const std::string_view section = AsName(input.TakeUpTo('\n'));
  const std::string_view key = AsName(input.TakeUpTo('\n'));
  const std::string_view otherKey = AsName(input.TakeUpTo('\n'));
  const std::string_view value = AsName(input.TakeUpTo('\n'));
  posix::Windows1252 codePage;
  const ProfileText file(std::string(input.TakeRest()), codePage);

  for (const Wanted& wanted : {Wanted{section, key}, Wanted{section, otherKey}}) {
    if (wanted.section.size() < kLongestName / 4 && wanted.key.size() < kLongestName / 4) {
      fuzz::Require(IndexedLookup(file, wanted) == PlainLookup(file, wanted), "the index finds what a walk finds");
    }
  }
  if (CanBeName(section) && CanBeName(key) && CanBeName(otherKey) &&
      value.find_first_of("\r\n") == std::string_view::npos) {
    CheckSetting(file, {section, key}, otherKey, value, codePage);
  }
  return 0;
}
