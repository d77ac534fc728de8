#include "masking/masked_case.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <utility>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"
#include "masking/journal_masking.h"
#include "masking/known_names.h"
#include "masking/masker.h"
#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::masking {
namespace {

using recording::KeptFile;
using recording::RecordedCase;

constexpr int kMostKeys = 64;
constexpr int kMostTries = 3;
constexpr std::size_t kMostTold = 3;
constexpr std::uint64_t kWesternCodePage = 1252;
constexpr std::uint64_t kUtf8CodePage = 65001;

[[noreturn]] void Refuse(const std::string& reason) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, "the case is not masked: " + reason);
}

std::string Utf8Text(std::u32string_view codes) {
  std::string text;
  for (const char32_t code : codes) {
    AppendUtf8(text, code);
  }
  return text;
}

std::u32string LoweredText(std::u32string text) {
  std::transform(text.begin(), text.end(), text.begin(), Lowered);
  return text;
}

// A file's path in the machine, as it was, and its lengths before and after.
class Lengths {
 public:
  void Add(const std::string& member, std::uint64_t before, std::uint64_t after) {
    std::string_view path = member;
    if (path.starts_with(recording::kMachine)) {
      path.remove_prefix(recording::kMachine.size());
    } else if (path.starts_with(recording::kAfter)) {
      path.remove_prefix(std::min(path.find('/', recording::kAfter.size()), path.size() - 1) + 1);
    }
    lengths_[{FoldName(path), before}] = after;
  }

  std::optional<std::uint64_t> Now(const std::string& path, std::uint64_t before) const {
    const std::optional<std::string> member = recording::MemberOf(path);
    const auto found = member ? lengths_.find({FoldName(*member), before}) : lengths_.end();
    return found == lengths_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::pair<std::string, std::uint64_t>, std::uint64_t> lengths_;
};

RecordedCase Walked(Masker& masker, const RecordedCase& whole) {
  RecordedCase walked;
  walked.isFinished = whole.isFinished;
  Lengths lengths;
  for (const KeptFile& file : whole.files) {
    walked.files.push_back({MaskMember(masker, file.name),
                            file.isFolder ? std::string() : masker.File(file.name, file.bytes), file.isFolder});
    lengths.Add(file.name, file.bytes.size(), walked.files.back().bytes.size());
  }
  walked.facts = MaskFacts(masker, whole.facts);
  walked.command = masker.Bytes(whole.command);
  if (whole.reply) {
    walked.reply = masker.Bytes(*whole.reply);
  }
  walked.steps = MaskSteps(masker, whole.steps,
                           [&](const std::string& path, std::uint64_t before) { return lengths.Now(path, before); });
  return walked;
}

void AddProtocolTexts(KnownNames& names, const RecordedCase& whole) {
  std::string_view texts = ProtocolTexts();
  while (!texts.empty()) {
    const std::size_t end = std::min(texts.find('\n'), texts.size());
    names.AddProtocolText(texts.substr(0, end));
    texts.remove_prefix(std::min(end + 1, texts.size()));
  }
  const auto command = whole.facts.find("command");
  if (command != whole.facts.end() && command->is_string()) {
    names.AddProtocolText(command->get<std::string>());
  }
  for (const recording::Json& step : whole.steps) {
    for (const char* key : {"object", "member"}) {
      const auto text = step.find(key);
      if (text != step.end() && text->is_string()) {
        names.AddProtocolText(text->get<std::string>());
      }
    }
  }
}

std::set<std::u32string> MaskedNames(Masker& masker, const KnownNames& names) {
  std::set<std::u32string> masked;
  for (const KnownNames::Name& name : names.All()) {
    masked.insert(LoweredText(masker.Masked(name.text, name.place)));
  }
  return masked;
}

// Whether some name becomes one that is looked for itself.
bool MeetsAnother(Masker& masker, const KnownNames& names) {
  const std::set<std::u32string> masked = MaskedNames(masker, names);
  return std::any_of(names.All().begin(), names.All().end(), [&](const KnownNames::Name& name) {
    return name.isLookedFor && masked.contains(LoweredText(name.text));
  });
}

// Where names lie close to each other, such as those of all rooms of a house, some become one another with any key.
// They are no longer what they were, and so may stand.
void RemoveMadeUpNames(std::set<std::u32string>& left, const std::set<std::u32string>& masked) {
  std::erase_if(left, [&](const std::u32string& name) { return masked.contains(LoweredText(name)); });
}

std::string Some(const std::set<std::u32string>& names) {
  std::string text;
  for (auto name = names.begin(); name != names.end(); ++name) {
    text += (text.empty() ? "\"" : ", \"") + Utf8Text(*name) + "\"";
    if (static_cast<std::size_t>(std::distance(names.begin(), name)) + 1 == kMostTold) {
      break;
    }
  }
  return text;
}

void CheckItReproduces(const RecordedCase& whole, const RecordedCase& masked, const RunCase& run) {
  const std::string differences = run(masked);
  if (differences.empty()) {
    return;
  }
  const std::string before = run(whole);
  if (!before.empty()) {
    Refuse("it does not reproduce unmasked, either:\n" + before);
  }
  Refuse("it would not reproduce any more:\n" + differences);
}

std::vector<Replaced> TableOf(Masker& masker, const KnownNames& names) {
  std::vector<Replaced> table;
  for (const KnownNames::Name& name : names.All()) {
    const char* kind = name.place == Place::Price ? "price" : name.place == Place::Description ? "description" : "name";
    table.push_back({kind, Utf8Text(name.text), Utf8Text(masker.Masked(name.text, name.place))});
  }
  return table;
}

void CheckCodePage(const recording::Json& facts) {
  const auto codePage = facts.find("codePage");
  if (codePage != facts.end() && codePage->is_number_integer() && *codePage != kWesternCodePage &&
      *codePage != kUtf8CodePage) {
    Refuse("it was recorded in code page " + codePage->dump() + ", and only 1252 and UTF-8 are known here");
  }
}

}  // namespace

Key NewKey() {
  std::random_device random;
  const auto word = [&] { return std::uint64_t{random()} << 32 | random(); };
  const std::uint64_t low = word();
  return {low, word()};
}

MaskedCase MaskCase(const RecordedCase& whole, const Options& options, const RunCase& run) {
  CheckCodePage(whole.facts);
  KnownNames names;
  AddProtocolTexts(names, whole);
  Masker masker(names, {.keepPrices = options.keepPrices});
  Walked(masker, whole);
  names.Close();
  MaskedCase result;
  Key key = options.key;
  for (int keys = 1, tries = 0;; ++keys, ++key.high) {
    masker.MaskWith(key);
    if (keys < kMostKeys && MeetsAnother(masker, names)) {
      continue;
    }
    result.masked = Walked(masker, whole);
    result.table = TableOf(masker, names);
    const std::set<std::u32string> madeUp = MaskedNames(masker, names);
    masker.Check();
    Walked(masker, result.masked);
    std::set<std::u32string> left = masker.Left();
    if (++tries == kMostTries) {
      RemoveMadeUpNames(left, madeUp);
    }
    if (left.empty()) {
      break;
    }
    if (tries == kMostTries) {
      Refuse(Some(left) + " would be left in it");
    }
  }
  if (run) {
    CheckItReproduces(whole, result.masked, run);
  }
  return result;
}

std::string TextOf(const std::vector<Replaced>& table) {
  std::string text = "kind\tbefore\tafter\n";
  for (const Replaced& one : table) {
    const auto field = [](const std::string& value) {
      return ReplaceAll(ReplaceAll(ReplaceAll(value, "\t", " "), "\r", " "), "\n", " ");
    };
    text += one.kind + "\t" + field(one.before) + "\t" + field(one.after) + "\n";
  }
  return text;
}

}  // namespace parvex::masking
