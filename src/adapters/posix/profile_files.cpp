#include "adapters/posix/profile_files.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "adapters/posix/file_version.h"
#include "adapters/posix/host_file.h"
#include "formats/ini/profile_index.h"
#include "formats/ini/profile_text.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostKnownFiles = 4;
constexpr std::int64_t kMostBytes = std::int64_t{1} << 30;

void RefuseTooLarge(const FileVersion& version, const std::string& file) {
  if (version.size > kMostBytes) {
    throw MakeFileError(RuntimeError::PathFileAccess, "read", file,
                        std::to_string(version.size) + " bytes are more than a profile file may have");
  }
}

std::string WithFolder(std::string_view file) {
  const bool bare = !file.empty() && file.find_first_of("\\/:") == std::string_view::npos;
  return (bare ? "C:\\Windows\\" : "") + std::string(file);
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
  std::filesystem::path host;
  FileVersion version;
  bool changesWillShow = false;          // no change after the reading can leave the version as it is
  std::shared_ptr<const Parsed> parsed;  // null while there is no such file
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
    return fallback.empty() ? std::string() : CutToAnsi(AsValue(fallback), most);
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

  std::string CutToAnsi(std::string_view text, std::size_t most) const {
    if (IsAsciiText(text)) {
      return std::string(text.substr(0, most));
    }
    return files_.codePage_.FromAnsi(std::string_view(files_.codePage_.ToAnsi(text)).substr(0, most));
  }

  ProfileFiles& files_;
  std::string file_;
  std::string section_;  // ANSI bytes
  std::shared_ptr<const Parsed> parsed_;
  const ProfileIndex::Section* found_ = nullptr;
};

ProfileFiles::ProfileFiles(MachineFolder& folder, CodePage& codePage) : folder_(folder), codePage_(codePage) {}
ProfileFiles::~ProfileFiles() = default;

std::unique_ptr<ProfileSection> ProfileFiles::Section(std::string_view section, std::string_view file) {
  const std::string ansi = codePage_.ToAnsi(section);
  return std::make_unique<FileSection>(*this, WithFolder(file), std::string(TrimProfileBlanks(UpToNul(ansi))));
}

std::shared_ptr<const ProfileFiles::Parsed> ProfileFiles::Current(const std::string& file) {
  auto known = std::find_if(known_.begin(), known_.end(), [&](const Known& k) { return k.file == file; });
  if (known == known_.end()) {
    if (known_.size() == kMostKnownFiles) {
      known_.pop_back();
    }
    known_.push_front({file, {}, {}, false, nullptr});
  } else {
    known_.splice(known_.begin(), known_, known);
  }
  Refresh(known_.front());
  return known_.front().parsed;
}

void ProfileFiles::Refresh(Known& known) {
  std::optional<FileVersion> version = known.host.empty() ? std::nullopt : VersionOf(known.host);
  if (!version) {
    known.host = folder_.Resolve(known.file).value_or(std::filesystem::path());
    version = VersionOf(known.host);
  }
  if (!version) {
    known.parsed = nullptr;
    return;
  }
  if (known.parsed != nullptr && known.version == *version && known.changesWillShow) {
    return;
  }
  RefuseTooLarge(*version, known.file);
  const std::int64_t now = NowInNanoseconds();  // a change while it is read is later
  try {
    std::string bytes = ReadHostFile(known.host, known.file);
    if (known.parsed == nullptr || known.parsed->text.Bytes() != bytes) {
      known.parsed = nullptr;  // the room of the old version goes before the new one takes its own
      known.parsed = std::make_shared<const Parsed>(std::move(bytes), codePage_);
    }
  } catch (const AutomationError&) {
    known.parsed = nullptr;
    return;
  }
  known.version = *version;
  known.changesWillShow = IsSettled(*version, now) && VersionOf(known.host) == version;
}

void ProfileFiles::Write(const std::string& file, std::string_view section, std::string_view key,
                         std::string_view value) {
  std::string bytes;
  if (const std::optional<std::filesystem::path> host = folder_.Resolve(file)) {
    RefuseTooLarge(VersionOf(*host).value_or(FileVersion()), file);
    bytes = ReadHostFile(*host, file);
  }
  const ProfileText text(std::move(bytes), codePage_);
  if (const std::optional<std::string> changed = text.WithValue(section, UpToNul(key), UpToNul(value))) {
    WriteHostFile(folder_.Target(file), *changed, IfPresent::Replace, file);
  }
}

}  // namespace parvex::posix
