#include "cli/quote/content_differences.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <unordered_map>
#include <utility>

#include "cli/page/file_text.h"
#include "cli/quote/changed_runs.h"
#include "formats/text/text.h"
#include "formats/text/xml_pieces.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

// Gives each text a number, the same one to equal texts.
class Numbers {
 public:
  std::uint32_t Of(std::string_view text) {
    return numbers_.try_emplace(std::string(text), static_cast<std::uint32_t>(numbers_.size())).first->second;
  }

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
};

// What both contents share, so that the same is one number in both.
struct Names {
  Numbers texts;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> paths;  // by the path above and the last name

  std::uint32_t PathBelow(std::uint32_t above, std::string_view name) {
    return paths.try_emplace({above, texts.Of(name)}, static_cast<std::uint32_t>(paths.size() + 1)).first->second;
  }
};

// A step of a path: its name, which one of those it is that have the same path, and the step above it.
struct Step {
  std::string name;
  std::size_t number;
  std::size_t above;
};

// A content as a list of values under their paths.
struct Content {
  struct Value {
    std::uint32_t path;
    std::uint32_t text;
    std::size_t step;
    std::string shown;

    bool operator==(const Value& other) const { return path == other.path && text == other.text; }
  };
  std::vector<Step> steps;
  std::vector<Value> values;

  bool IsTooLong() const { return values.size() > kMostComparedValues; }
};

constexpr std::uint32_t kRoot = 0;
constexpr std::size_t kTop = SIZE_MAX;

// Lists the values of a document that XmlPieces can go through.
class DocumentValues {
 public:
  explicit DocumentValues(Names& names) : names_(names) {}

  Content Of(std::string_view document) {
    XmlPieces pieces(document);
    for (XmlPiece piece = pieces.Next(); piece.kind != XmlPiece::Kind::End && !content_.IsTooLong();
         piece = pieces.Next()) {
      Take(piece);
    }
    for (Content::Value& value : content_.values) {
      value.text = names_.texts.Of(value.shown);
    }
    return std::move(content_);
  }

 private:
  struct Open {
    std::uint32_t path;
    std::size_t step;
    std::size_t value;
    std::map<std::string, std::size_t, std::less<>> children = {};
  };

  void Take(const XmlPiece& piece) {
    switch (piece.kind) {
      case XmlPiece::Kind::StartTag:
        open_.push_back(Below(piece.text));
        for (const auto& [name, text] : piece.attributes) {
          content_.values[Below("@" + std::string(name)).value].shown = text;
        }
        break;
      case XmlPiece::Kind::EndTag:
        open_.pop_back();
        break;
      case XmlPiece::Kind::Text:
        content_.values[open_.back().value].shown += piece.text;
        break;
      default:
        content_.values[Below(piece.kind == XmlPiece::Kind::Comment ? "comment()" : "processing-instruction()").value]
            .shown = piece.text;
    }
  }

  // A new value below the innermost open element.
  Open Below(const std::string& name) {
    Open* const parent = open_.empty() ? nullptr : &open_.back();
    const std::size_t number = parent == nullptr ? 1 : ++parent->children[name];
    content_.steps.push_back({name, number, parent == nullptr ? kTop : parent->step});
    const std::uint32_t path = names_.PathBelow(parent == nullptr ? kRoot : parent->path, name);
    content_.values.push_back({path, 0, content_.steps.size() - 1, {}});
    return {path, content_.steps.size() - 1, content_.values.size() - 1};
  }

  Names& names_;
  Content content_;
  std::vector<Open> open_;
};

Content LinesOf(std::string_view text, Names& names) {
  Content content;
  const std::uint32_t path = names.PathBelow(kRoot, "line");
  while (!text.empty() && !content.IsTooLong()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + (text.substr(end).starts_with("\r\n") ? 2 : 1), text.size()));
    content.steps.push_back({"line", content.steps.size() + 1, kTop});
    content.values.push_back({path, names.texts.Of(line), content.steps.size() - 1, std::string(line)});
  }
  return content;
}

bool IsPlainXml(std::string_view text) {
  return text.find("<!DOCTYPE") == std::string_view::npos && !xml::Document::Parse(text).IsEmpty();
}

std::string PathOfStep(const Content& content, std::size_t step) {
  constexpr std::size_t kLongestPath = 200;
  if (content.steps[step].name == "line") {
    return "line " + std::to_string(content.steps[step].number);
  }
  std::string path;
  for (; step != kTop && path.size() <= kLongestPath; step = content.steps[step].above) {
    const auto& [name, number, above] = content.steps[step];
    path = name + (number > 1 ? "[" + std::to_string(number) + "]" : "") + (path.empty() ? "" : "/") + path;
  }
  const std::string_view shown = LastUnits(path, kLongestPath);
  return shown.size() == path.size() && step == kTop ? path : "\u2026" + std::string(shown);
}

// Values that came and went in one place: those of one path are one that was changed, in their order.
void ListRun(const Content& before, const Content& after, const ChangedRun& run,
             std::vector<ContentDifference>& differences) {
  std::map<std::uint32_t, std::deque<std::size_t>> added;
  for (std::size_t i = run.afterBegin; i < run.afterEnd; ++i) {
    added[after.values[i].path].push_back(i);
  }
  std::vector<bool> isPaired(run.afterEnd - run.afterBegin);
  for (std::size_t i = run.beforeBegin; i < run.beforeEnd; ++i) {
    const Content::Value& value = before.values[i];
    ContentDifference difference{PathOfStep(before, value.step), value.shown, std::nullopt};
    if (std::deque<std::size_t>& partners = added[value.path]; !partners.empty()) {
      difference.after = after.values[partners.front()].shown;
      isPaired[partners.front() - run.afterBegin] = true;
      partners.pop_front();
    }
    if (difference.before != difference.after) {
      differences.push_back(std::move(difference));
    }
  }
  for (std::size_t i = run.afterBegin; i < run.afterEnd; ++i) {
    if (!isPaired[i - run.afterBegin]) {
      differences.push_back({PathOfStep(after, after.values[i].step), std::nullopt, after.values[i].shown});
    }
  }
}

constexpr const char* kTooLarge = "too large to be looked into";

// Where values only came, or only went, and those before them are the same as the last of them, it may as well have
// been those before: so moved, the run begins with an element as often as can be, and not between one and its
// attribute.
void MoveUp(const Content& before, const Content& after, std::vector<ChangedRun>& runs) {
  ChangedRun last{0, 0, 0, 0};
  for (ChangedRun& run : runs) {
    const bool isAddition = run.beforeBegin == run.beforeEnd;
    const bool isRemoval = run.afterBegin == run.afterEnd;
    const std::vector<Content::Value>& values = isAddition ? after.values : before.values;
    const std::size_t& begin = isAddition ? run.afterBegin : run.beforeBegin;
    const std::size_t& end = isAddition ? run.afterEnd : run.beforeEnd;
    while (isAddition != isRemoval && run.beforeBegin > last.beforeEnd && run.afterBegin > last.afterEnd &&
           values[begin - 1] == values[end - 1]) {
      run = {run.beforeBegin - 1, run.beforeEnd - 1, run.afterBegin - 1, run.afterEnd - 1};
    }
    last = run;
  }
}

ContentComparison Noted(std::string note) { return {{}, std::move(note)}; }

}  // namespace

ContentComparison CompareContents(std::string_view before, std::string_view after) {
  if (std::max(before.size(), after.size()) > kLargestComparedContent) {
    return Noted(kTooLarge);
  }
  const std::optional<std::string> first = TextOfFile(before);
  const std::optional<std::string> last = TextOfFile(after);
  if (!first || !last) {
    return Noted("no text");
  }
  Names names;
  const bool isXml = IsPlainXml(*first) && IsPlainXml(*last);
  const Content one = isXml ? DocumentValues(names).Of(*first) : LinesOf(*first, names);
  const Content other = isXml ? DocumentValues(names).Of(*last) : LinesOf(*last, names);
  if (one.IsTooLong() || other.IsTooLong()) {
    return Noted(kTooLarge);
  }
  std::optional<std::vector<ChangedRun>> runs = ChangedRuns(one.values, other.values, kMostChangedValues);
  if (!runs) {
    return Noted("too different to be listed");
  }
  MoveUp(one, other, *runs);
  ContentComparison comparison;
  for (const ChangedRun& run : *runs) {
    ListRun(one, other, run, comparison.differences);
  }
  if (comparison.differences.empty()) {
    comparison.note = runs->empty() ? "only the layout differs" : "only the order differs";
  }
  return comparison;
}

}  // namespace parvex::cli
