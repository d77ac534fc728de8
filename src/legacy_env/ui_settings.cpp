#include "legacy_env/ui_settings.h"

#include <algorithm>
#include <cstddef>

#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "seams/automation_error.h"
#include "seams/durable_files.h"
#include "seams/file_parts.h"

namespace parvex {
namespace {

// There is no blank before WidthP: deliberate, the builder's own reader expects the text as it was always written.
constexpr std::string_view kSplitterLine = "SplitterPosition=<ColSplitter Index=\"0\"WidthP=\"22819\">";

// Carries out one of the two operations, whose failures all have its name as their source.
template <typename Operation>
auto Under(const char* name, Operation operation) {
  try {
    return operation();
  } catch (const AutomationError& error) {
    throw AutomationError(error.Number(), name, error.Description());
  }
}

std::string SettingsFile(const Platform& platform) {
  std::string binPath;
  if (!ReadBinPath(platform, binPath)) {
    throw AutomationError(kBinPathUnknown, kErrorSource, "Unable to read BinPath");
  }
  return binPath + "\\" + std::string(kUiKeysFile);
}

bool IsSettingOf(std::string_view line, std::string_view key) {
  return line.starts_with(key) && line.find('=') != std::string_view::npos;
}

std::string ReadText(const Platform& platform, std::string_view path) {
  const std::string bytes = ReadPart(*platform.files, path, 0, kLongestUiFile + 1);
  if (bytes.size() > kLongestUiFile) {
    throw MakeFileError(RuntimeError::PathFileAccess, "read", path,
                        "it has more than " + std::to_string(kLongestUiFile) + " bytes");
  }
  return platform.codePage->FromAnsi(bytes);
}

// Takes the first line off, without its line break.
std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  text.remove_prefix(line.size());
  text.remove_prefix(std::min<std::size_t>(text.size(), text.starts_with("\r\n") ? 2 : 1));
  return line;
}

std::size_t CountLines(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    TakeLine(text);
  }
  return count;
}

std::string FindValue(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    if (const std::string_view line = TakeLine(text); IsSettingOf(line, key)) {
      return std::string(line.substr(line.find('=') + 1));
    }
  }
  return {};
}

std::string Rewritten(std::string_view line, std::string_view value) {
  if (IsSettingOf(line, "ToolBarActive") || IsSettingOf(line, "TreeViewActive")) {
    return std::string(line.substr(0, line.find('=') + 1)).append(value);
  }
  return std::string(IsSettingOf(line, "SplitterPosition") ? kSplitterLine : line);
}

std::string RewrittenText(std::string_view text, std::string_view value) {
  std::string rewritten;
  while (!text.empty()) {
    rewritten += Rewritten(TakeLine(text), value) + "\r\n";
  }
  return rewritten;
}

}  // namespace

std::string getUIValue(const Platform& platform, std::string_view key) {
  return Under("KDQU470.getUIValue", [&] { return FindValue(ReadText(platform, SettingsFile(platform)), key); });
}

std::size_t CountUiLines(const Platform& platform, std::string_view path) {
  return CountLines(ReadText(platform, path));
}

void setUIValue(const Platform& platform, std::string_view value) {
  Under("KDQU470.setUIValue", [&] {
    const std::string path = SettingsFile(platform);
    const std::shared_ptr<void> alone = platform.files->HoldForChange(path);
    const std::string text = ReadText(platform, path);
    if (const std::size_t lines = CountLines(text); lines > kMostUiLines) {
      throw MakeRuntimeError(
          RuntimeError::SubscriptOutOfRange,
          path + " has " + std::to_string(lines) + " lines; it may have at most " + std::to_string(kMostUiLines));
    }
    ReplaceOnDisk(*platform.files, path, platform.codePage->ToAnsi(RewrittenText(text, value)));
  });
}

}  // namespace parvex
