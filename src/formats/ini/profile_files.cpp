#include "formats/ini/profile_files.h"

#include <algorithm>
#include <utility>

#include "formats/ini/profile_index.h"
#include "formats/ini/profile_text.h"
#include "seams/automation_error.h"

namespace parvex::ini {
namespace {

constexpr std::size_t kMostKnownFiles = 4;
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;

void RefuseTooLarge(const ProfileVersion& version, const std::string& file) {
  if (version.size > kMostBytes) {
    throw MakeFileError(RuntimeError::PathFileAccess, "read", file,
                        std::to_string(version.size) + " bytes are more than a profile file may have");
  }
}

// The leading integer as the platform's own conversion reads it: 0x, 0o and 0b begin other bases, in lower case only;
// nothing may stand between sign and digits; what is too large keeps its low 32 bits.
std::int32_t LeadingInteger(std::string_view text) {
  const auto skipped = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  text.remove_prefix(std::find_if_not(text.begin(), text.end(), skipped) - text.begin());
  const bool negative = text.starts_with('-');
  text.remove_prefix(negative || text.starts_with('+') ? 1 : 0);
  std::uint32_t base = 10;
  for (const auto& [prefix, prefixBase] : {std::pair("0x", 16u), std::pair("0o", 8u), std::pair("0b", 2u)}) {
    if (text.starts_with(prefix)) {
      base = prefixBase;
      text.remove_prefix(2);
      break;
    }
  }
  std::uint32_t value = 0;
  for (const char c : text) {
    const char letter = static_cast<char>(c | 0x20);
    std::uint32_t digit = base;
    if (c >= '0' && c <= '9') {
      digit = static_cast<std::uint32_t>(c - '0');
    } else if (letter >= 'a' && letter <= 'f') {
      digit = static_cast<std::uint32_t>(letter - 'a' + 10);
    }
    if (digit >= base) {
      break;
    }
    value = value * base + digit;
  }
  return static_cast<std::int32_t>(negative ? 0u - value : value);
}

// As the fallback is handed out: without trailing blanks and quotes, like a value.
std::string_view AsValue(std::string_view fallback) {
  fallback = UpToNul(fallback);
  return WithoutQuotes(fallback.substr(0, fallback.find_last_not_of(' ') + 1));
}

}  // namespace

// One version of one file, never changed once made.
struct ProfileFiles::Parsed {
  Parsed(std::string bytes, CodePage& codePage) : text(std::move(bytes), codePage), index(text) {}

  const ProfileText text;
  const ProfileIndex index;
};

struct ProfileFiles::Known {
  std::string file;
  ProfileVersion version;
  bool changesWillShow = false;          // no change after the reading can leave the version as it is
  std::shared_ptr<const Parsed> parsed;  // null while there is no such file
  std::weak_ptr<void> hold;              // while that lives, the file is not looked at again
};

// Keeps the version that it was made for, until it writes.
class ProfileFiles::FileSection : public ProfileSection {
 public:
  FileSection(ProfileFiles& files, std::string file, std::string section)
      : files_(files), file_(std::move(file)), section_(std::move(section)) {
    Look();
  }

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    const std::size_t most = std::max<std::size_t>(bufferSize, 1) - 1;
    if (const std::optional<std::string_view> value = Find(key)) {
      return parsed_->text.Read(WithoutQuotes(*value), most);
    }
    const std::string_view value = AsValue(fallback);
    return IsAsciiText(value) ? std::string(value.substr(0, most)) : CutToAnsi(value, most, files_.codePage_);
  }

  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    // The platform reads integers through a buffer of its own; digits beyond it do not count.
    constexpr std::size_t kBufferSize = 30;
    const std::string text = ReadString(key, {}, kBufferSize);
    return text.empty() ? fallback : LeadingInteger(text);
  }

  bool WriteString(std::string_view key, std::string_view value) override {
    try {
      files_.Write(file_, section_, files_.codePage_.ToAnsi(key), files_.codePage_.ToAnsi(value));
      Look();
    } catch (const AutomationError&) {
      return false;
    }
    return true;
  }

 private:
  void Look() {
    parsed_ = files_.Current(file_);
    found_ = parsed_ == nullptr ? nullptr : parsed_->index.FindSection(parsed_->text.Piece(section_));
  }

  std::optional<std::string_view> Find(std::string_view key) const {
    if (found_ == nullptr) {
      return std::nullopt;
    }
    if (IsAsciiText(key)) {
      return parsed_->index.FindValue(*found_, TrimProfileBlanks(UpToNul(key)));
    }
    const std::string ansi = files_.codePage_.ToAnsi(key);
    return parsed_->index.FindValue(*found_, parsed_->text.Piece(TrimProfileBlanks(UpToNul(ansi))));
  }

  // First what every look-up needs: thousands of sections may be kept.
  ProfileFiles& files_;
  const ProfileIndex::Section* found_ = nullptr;
  std::shared_ptr<const Parsed> parsed_;
  std::string file_;
  std::string section_;  // ANSI bytes
};

ProfileFiles::ProfileFiles(Files& files, ProfileVersions& versions, CodePage& codePage, std::string windowsFolder)
    : files_(files), versions_(versions), codePage_(codePage), windowsFolder_(std::move(windowsFolder)) {}
ProfileFiles::~ProfileFiles() = default;

std::unique_ptr<ProfileSection> ProfileFiles::Section(std::string_view section, std::string_view file) {
  const std::string ansi = codePage_.ToAnsi(section);
  return std::make_unique<FileSection>(*this, WithFolder(file), std::string(TrimProfileBlanks(UpToNul(ansi))));
}

std::shared_ptr<void> ProfileFiles::Hold(std::string_view file) {
  const std::string path = WithFolder(file);
  Known& known = KnownAs(path);
  known.hold.reset();  // an earlier one holds an earlier version
  Refresh(known);
  // With the hold goes what was parsed: who read a large selection writes a large document next, and needs the room.
  const std::shared_ptr<void> hold(this, [this, path = path](void*) {  // no constant: moved without an allocation
    known_.remove_if([&](const Known& k) { return k.file == path && k.hold.expired(); });
  });
  known.hold = hold;
  return hold;
}

std::string ProfileFiles::WithFolder(std::string_view file) const {
  const bool bare = !file.empty() && file.find_first_of("\\/:") == std::string_view::npos;
  return (bare ? windowsFolder_ + "\\" : "") + std::string(file);
}

ProfileFiles::Known& ProfileFiles::KnownAs(const std::string& file) {
  const auto known = std::find_if(known_.begin(), known_.end(), [&](const Known& k) { return k.file == file; });
  if (known == known_.end()) {
    if (known_.size() == kMostKnownFiles) {
      known_.pop_back();
    }
    known_.push_front({file, {}, false, nullptr, {}});
  } else {
    known_.splice(known_.begin(), known_, known);
  }
  return known_.front();
}

std::shared_ptr<const ProfileFiles::Parsed> ProfileFiles::Current(const std::string& file) {
  Known& known = KnownAs(file);
  if (known.hold.expired()) {
    Refresh(known);
  }
  return known.parsed;
}

void ProfileFiles::Refresh(Known& known) {
  const std::optional<ProfileVersions::Seen> seen = versions_.Look(known.file);
  if (!seen) {
    known.parsed = nullptr;
    return;
  }
  if (known.parsed != nullptr && known.version == seen->version && known.changesWillShow) {
    return;
  }
  RefuseTooLarge(seen->version, known.file);
  try {
    std::string bytes = files_.ReadAll(known.file);
    if (known.parsed == nullptr || known.parsed->text.Bytes() != bytes) {
      known.parsed = nullptr;  // the room of the old version goes before the new one takes its own
      known.parsed = std::make_shared<const Parsed>(std::move(bytes), codePage_);
    }
  } catch (const AutomationError&) {
    known.parsed = nullptr;
    return;
  }
  known.version = seen->version;
  const auto after = seen->isSettled ? versions_.Look(known.file) : std::nullopt;
  known.changesWillShow = after && after->version == seen->version;
}

void ProfileFiles::Write(const std::string& file, std::string_view section, std::string_view key,
                         std::string_view value) {
  const std::shared_ptr<void> alone = files_.HoldForChange(file);
  KnownAs(file).hold.reset();  // what is held is the version before
  const std::shared_ptr<const Parsed> now = Current(file);
  if (now == nullptr && versions_.Look(file)) {
    files_.ReadAll(file);  // says why it cannot be read
  }
  const ProfileText none({}, codePage_);
  const ProfileText& text = now == nullptr ? none : now->text;
  std::optional<std::string> changed = text.WithValue(section, UpToNul(key), UpToNul(value));
  if (!changed) {
    return;
  }
  files_.Replace(file, *changed);
  // Read again, and compared, before it is used: others may have written too.
  Known& known = KnownAs(file);
  known.parsed = std::make_shared<const Parsed>(*std::move(changed), codePage_);
  known.changesWillShow = false;
}

}  // namespace parvex::ini
