#include "adapters/posix/registry_file.h"

#include <utility>

#include "adapters/posix/host_file.h"
#include "formats/text/encoded_text.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::string_view kNewFile = "Windows Registry Editor Version 5.00\r\n";

std::string PathOf(RegistryHive hive, std::string_view key) {
  std::string path = hive == RegistryHive::CurrentUser ? "HKEY_CURRENT_USER\\" : "HKEY_LOCAL_MACHINE\\";
  path += key;
  return path;
}

std::string QuotedAndEscaped(std::string_view text) {
  return Quoted(ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\"", "\\\""));
}

// Behind bytes of a registry text, whatever they end with.
std::string Appended(std::string bytes, std::string_view text, CodePage& codePage) {
  const TextEncoding encoding = EncodingOf(bytes);
  if (!IsUtf16(encoding)) {
    return bytes + (encoding == TextEncoding::Utf8 ? std::string(text) : codePage.ToAnsi(text));
  }
  bytes.resize(bytes.size() / 2 * 2);
  return bytes + BytesOf(ToUtf16(text), encoding);
}

}  // namespace

std::optional<std::string> RegistryFile::LocalMachineString(std::string_view key, std::string_view valueName) {
  return Text().LocalMachineString(key, valueName);
}

std::optional<std::string> RegistryFile::Read(RegistryHive hive, std::string_view key, std::string_view valueName) {
  return Text().Value(PathOf(hive, key), valueName);
}

void RegistryFile::Write(RegistryHive hive, std::string_view key, std::string_view valueName, std::string_view text) {
  if (Read(hive, key, valueName) == text) {
    return;
  }
  std::string bytes =
      VersionOf(file_) ? ReadHostFile(file_, file_.string()) : WithMark(kNewFile, TextEncoding::Utf16Little);
  // Empty lines in front, for the file may end in the middle of a line, and that line want to go on in the next.
  const std::string section =
      "\r\n\r\n[" + PathOf(hive, key) + "]\r\n" + QuotedAndEscaped(valueName) + "=" + QuotedAndEscaped(text) + "\r\n";
  WriteHostFile(file_, Appended(std::move(bytes), section, codePage_), IfPresent::Replace, file_.string(),
                Durability::OnDisk);
  settled_ = false;
}

const RegistryText& RegistryFile::Text() {
  const std::optional<FileVersion> version = VersionOf(file_);
  if (version != version_ || !settled_) {
    version_ = version;
    settled_ = !version || IsSettled(*version);
    text_ = version ? ReadText() : RegistryText();
  }
  return text_;
}

RegistryText RegistryFile::ReadText() const {
  try {
    return RegistryText(ReadHostFile(file_, file_.string()), codePage_);
  } catch (const AutomationError&) {
    return {};  // a registry that may not be read has no values
  }
}

}  // namespace parvex::posix
