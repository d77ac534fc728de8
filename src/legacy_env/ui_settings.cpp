#include "legacy_env/ui_settings.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "legacy_env/install_paths.h"
#include "seams/automation_error.h"
#include "seams/durable_files.h"

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
  return binPath + "\\UIKeys.txt";
}

bool IsSettingOf(std::string_view line, std::string_view key) {
  return line.starts_with(key) && line.find('=') != std::string_view::npos;
}

std::string Rewritten(const std::string& line, std::string_view value) {
  if (IsSettingOf(line, "ToolBarActive") || IsSettingOf(line, "TreeViewActive")) {
    return line.substr(0, line.find('=') + 1).append(value);
  }
  return IsSettingOf(line, "SplitterPosition") ? std::string(kSplitterLine) : line;
}

std::string FindValue(const std::vector<std::string>& lines, std::string_view key) {
  const auto line = std::ranges::find_if(lines, [&](const std::string& each) { return IsSettingOf(each, key); });
  return line == lines.end() ? std::string() : line->substr(line->find('=') + 1);
}

std::string RewrittenText(const std::vector<std::string>& lines, std::string_view value) {
  std::string text;
  for (const std::string& line : lines) {
    text += Rewritten(line, value) + "\r\n";
  }
  return text;
}

}  // namespace

std::string getUIValue(const Platform& platform, std::string_view key) {
  return Under("KDQU470.getUIValue", [&] { return FindValue(ReadUiLines(platform, SettingsFile(platform)), key); });
}

std::vector<std::string> ReadUiLines(const Platform& platform, std::string_view path) {
  const std::string text = platform.codePage->FromAnsi(platform.files->ReadAll(path));
  std::vector<std::string> lines;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", from), text.size());
    lines.push_back(text.substr(from, end - from));
    from = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
  }
  return lines;
}

void setUIValue(const Platform& platform, std::string_view value) {
  Under("KDQU470.setUIValue", [&] {
    const std::string path = SettingsFile(platform);
    const std::shared_ptr<void> alone = platform.files->HoldForChange(path);
    const std::vector<std::string> lines = ReadUiLines(platform, path);
    if (lines.size() > kMostUiLines) {
      throw MakeRuntimeError(RuntimeError::SubscriptOutOfRange, path + " has " + std::to_string(lines.size()) +
                                                                    " lines; it may have at most " +
                                                                    std::to_string(kMostUiLines));
    }
    ReplaceOnDisk(*platform.files, path, platform.codePage->ToAnsi(RewrittenText(lines, value)));
  });
}

}  // namespace parvex
