#include "cli/cases/case_files.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/cases/case_steps.h"
#include "cli/page/file_text.h"
#include "cli/page/html_page.h"
#include "cli/terminal/printable.h"
#include "formats/text/letter_case.h"
#include "formats/text/machine_folder_places.h"
#include "formats/text/text.h"
#include "recording/case_layout.h"

namespace parvex::cli {
namespace {

using recording::Json;
using recording::KeptFile;

constexpr std::size_t kLargestText = 100'000;     // bytes of a file that is shown
constexpr std::size_t kLongestFileText = 20'000;  // of it, in UTF-16 units

// A file of the machine, in the states that the case has of it.
struct FileStates {
  std::string place;  // in a machine folder
  const KeptFile* before = nullptr;
  bool isNameOnly = false;
  std::vector<std::pair<std::string, const KeptFile*>> after;  // by the step's number
  bool isGone = false;
};

using Files = std::map<std::string, FileStates>;  // by folded place

FileStates& StatesOf(Files& files, std::string_view place) {
  FileStates& states = files[FoldName(place)];
  if (states.place.empty()) {
    states.place = place;
  }
  return states;
}

std::set<std::string> NamesOnly(const Json& facts) {
  std::set<std::string> names;
  if (const auto named = facts.find("namesOnly"); named != facts.end() && named->is_array()) {
    for (const Json& name : *named) {
      names.insert(name.is_string() ? name.get<std::string>() : "");
    }
  }
  return names;
}

void MarkGone(Files& files, const std::string& path) {
  if (const auto place = PlaceInMachineFolder(path)) {
    StatesOf(files, *place).isGone = true;
  }
}

// Files that a step says to be gone. One that is written again later has a state behind that.
void MarkGone(Files& files, const std::vector<Json>& lines) {
  for (const Json& line : lines) {
    const std::string op = TextIn(line, "op");
    if (TextIn(line, "kind") == "file" && (op == "gone" || op == "remove") && line.contains("path")) {
      MarkGone(files, TextIn(line, "path"));
    }
    if (const auto left = line.find("left"); left != line.end() && left->is_array()) {
      for (const Json& one : *left) {
        if (one.is_object() && one.contains("stored") && one["stored"].is_null()) {
          MarkGone(files, TextIn(one, "path"));
        }
      }
    }
  }
}

Files FilesOf(const recording::RecordedCase& read) {
  const std::set<std::string> namesOnly = NamesOnly(read.facts);
  Files files;
  for (const KeptFile& file : read.files) {
    std::string_view name = file.name;
    if (file.isFolder) {
      continue;
    }
    if (name.starts_with(recording::kMachine)) {
      FileStates& states = StatesOf(files, name.substr(recording::kMachine.size()));
      states.before = &file;
      states.isNameOnly = namesOnly.contains(file.name);
    } else if (name.starts_with(recording::kAfter)) {
      name.remove_prefix(recording::kAfter.size());
      const std::size_t slash = std::min(name.find('/'), name.size());
      StatesOf(files, name.substr(std::min(slash + 1, name.size())))
          .after.emplace_back(std::string(name.substr(0, slash)), &file);
    }
  }
  MarkGone(files, read.steps);
  return files;
}

// The text of a file, when it is one.
std::optional<std::string> TextOf(const KeptFile& file) {
  if (file.bytes.empty() || file.bytes.size() > kLargestText) {
    return std::nullopt;
  }
  const std::optional<std::string> text = TextOfFile(file.bytes);
  return text ? std::optional(std::string(FirstUnits(*text, kLongestFileText))) : std::nullopt;
}

std::string TextElement(const std::string& when, const KeptFile* file) {
  const auto text = file == nullptr ? std::nullopt : TextOf(*file);
  return text ? Element("p", when) + "<pre>" + EscapedLines(*text) + "</pre>\n" : "";
}

std::string TextsOf(const FileStates& states) {
  std::string texts = TextElement("before", states.before);
  for (const auto& [step, file] : states.after) {
    texts += TextElement("at step " + step, file);
  }
  return texts.empty() ? texts : Folded(states.place, texts);
}

std::string AfterText(const FileStates& states) {
  std::string text;
  for (const auto& [step, file] : states.after) {
    text += (text.empty() ? "" : ", ") + Counted(file->bytes.size(), "byte") + " at step " + step;
  }
  return states.isGone ? text + (text.empty() ? "" : ", ") + "removed" : text;
}

}  // namespace

std::string FilesTable(const recording::RecordedCase& read) {
  const std::vector<Column> columns = {{"File", false}, {"Before", true}, {"After", false}};
  std::string rows;
  std::string texts;
  for (const auto& [folded, states] : FilesOf(read)) {
    const std::string kind = states.isGone              ? " class=\"removed\""
                             : states.after.empty()     ? ""
                             : states.before == nullptr ? " class=\"added\""
                                                        : " class=\"changed\"";
    const std::string before = states.isNameOnly          ? "its name only"
                               : states.before == nullptr ? "none"
                                                          : Counted(states.before->bytes.size(), "byte");
    rows += TableRow("tr" + kind, columns, {states.place, before, AfterText(states)});
    texts += TextsOf(states);
  }
  return rows.empty() ? "<p>None.</p>\n" : TableElement("Files", columns, rows) + texts;
}

}  // namespace parvex::cli
