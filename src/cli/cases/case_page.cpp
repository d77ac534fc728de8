#include "cli/cases/case_page.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <vector>

#include "cli/cases/case_files.h"
#include "cli/cases/case_steps.h"
#include "cli/page/html_page.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

using recording::Json;

constexpr std::size_t kLongestDocument = 100'000;  // UTF-16 units
constexpr std::size_t kLongestValue = 4'000;
constexpr std::size_t kLongestSaying = 160;

// Kinds differ by the pattern of their bars and by the word in front, not by colour alone.
constexpr std::string_view kStyle = R"(
dd { white-space: pre-wrap; overflow-wrap: anywhere; }
.bad { font-weight: 600; color: #b00; } .bad::before { content: "\2717  "; }
@media (prefers-color-scheme: dark) { .bad { color: #f77; } }
.step { border-top: 1px solid var(--soft); padding: .15rem 0; } .step:target { background: var(--soft); }
.step summary { display: grid; grid-template-columns: 3.5rem 6rem 4.5rem 4.5rem minmax(0, 1fr); gap: 0 .8rem; }
.step summary > .time, .step summary > .number { font-variant-numeric: tabular-nums; text-align: right; }
.step summary > .number::before { content: "\25B8  "; } .step[open] summary > .number::before { content: "\25BE  "; }
.step dl { display: block; margin: .3rem 0 .6rem 4.3rem; } .step dl div { margin: .2rem 0; } .step dt { width: 7rem; }
.track { grid-column: 1 / -1; height: .55rem; position: relative; background: var(--soft); overflow: hidden; }
.bar { position: absolute; left: min(var(--from), 100% - 3px); width: var(--long); min-width: 3px; height: 100%; color: #37b; }
.bar { box-sizing: border-box; border: 1px solid currentColor; }
.router .bar { background: currentColor; }
.automation .bar { color: #937; background: repeating-linear-gradient(45deg, currentColor 0 3px, transparent 3px 6px); }
.process .bar { color: #283; background: repeating-linear-gradient(90deg, currentColor 0 6px, transparent 6px 9px); }
.messageBox .bar { color: #a60; background: repeating-linear-gradient(0deg, currentColor 0 1px, transparent 1px 3px); }
.open .bar { border-style: dashed; }
@media print { .step:not([open]) > summary::after { content: none; } }
@media screen and (max-width: 45rem) {
  .step summary { grid-template-columns: 3.5rem minmax(0, 1fr) 4.5rem 4.5rem; }
  .step summary > .saying { grid-column: 1 / -1; } .step dl { margin-left: 0; }
}
)";

std::string Section(const std::string& title, const std::string& content) {
  return "<section>\n" + Element("h2", title) + "\n" + content + "</section>\n";
}

std::string Heading(const recording::RecordedCase& read) {
  const Json& facts = read.facts;
  return Element("h1", TextIn(facts, "command") + " through " + TextIn(facts, "entryPoint")) + "\n" +
         Element("p class=\"sum\"", OutcomeOf(read) + ", after " + SecondsOf(MicrosecondsIn(facts, "microseconds")) +
                                        " s" + (read.isFinished ? "" : ", the host died")) +
         "\n";
}

std::string FailuresSection(const recording::RecordedCase& read, const std::vector<CaseStep>& steps) {
  std::string items;
  if (TextIn(read.facts, "outcome") != "reply") {
    items += Element("p class=\"bad\"", "The call: " + OutcomeOf(read)) + "\n";
  }
  for (const CaseStep& step : steps) {
    if (!step.failure.empty()) {
      const std::string number = std::to_string(step.number);
      items += "<p class=\"bad\"><a href=\"#step-" + number + "\">Step " + number +
               "</a>: " + Escaped(Shortened(SayingOf(*step.first))) + ": " + Escaped(Shortened(step.failure)) +
               "</p>\n";
    }
  }
  return Section("What failed", items.empty() ? "<p>Nothing.</p>\n" : items);
}

std::string ExchangeSection(const recording::RecordedCase& read) {
  const std::string reply =
      read.reply ? Folded("The reply, " + Counted(read.reply->size(), "byte"), TextBlock(*read.reply, kLongestDocument))
                 : "<p>No document came back.</p>\n";
  return Section("Asked and answered", Folded("The command, " + Counted(read.command.size(), "byte"),
                                              TextBlock(read.command, kLongestDocument)) +
                                           reply);
}

void AppendTerms(std::string& terms, const Json& object, const std::string& before) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_object()) {
      AppendTerms(terms, value, before + key + " ");
    } else {
      terms += Term(before + key, Shortened(TextIn(object, key.c_str())));
    }
  }
}

// All facts but those that have a place of their own.
std::string MachineSection(const Json& facts) {
  constexpr std::string_view kElsewhere[] = {"missing", "namesOnly", "error", "command", "entryPoint", "outcome"};
  Json shown = facts;
  for (const std::string_view key : kElsewhere) {
    shown.erase(std::string(key));
  }
  std::string terms;
  AppendTerms(terms, shown, "");
  return Section("Machine and host", "<dl>\n" + terms + "</dl>\n");
}

std::string ClassOf(const CaseStep& step) {
  constexpr std::string_view kKinds[] = {"router", "automation", "process", "messageBox"};
  const std::string kind = TextIn(*step.first, "kind");
  const bool isKnown = std::ranges::find(kKinds, kind) != std::end(kKinds);
  return "step " + (isKnown ? kind : "other") + (step.ended ? "" : " open");
}

std::string Percent(std::uint64_t part, std::uint64_t whole) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f%%", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
  return text;
}

std::string Bar(const CaseStep& step, std::uint64_t whole) {
  if (!step.begun) {
    return {};
  }
  const std::uint64_t ended = std::max(step.ended.value_or(whole), *step.begun);
  return "<span class=\"track\"><span class=\"bar\" style=\"--from: " + Percent(*step.begun, whole) +
         "; --long: " + Percent(ended - *step.begun, whole) + "\"></span></span>";
}

std::string Details(const CaseStep& step) {
  std::string terms;
  for (const Json* line : {step.first, step.last}) {
    if (line == nullptr) {
      break;
    }
    for (const auto& [key, value] : line->items()) {
      if (key != "n" && key != "at" && key != "us" && !value.is_null()) {
        terms += "<div>" + Element("dt", key) + "<dd>" + CutLines(TextIn(*line, key.c_str()), kLongestValue) +
                 "</dd></div>\n";
      }
    }
  }
  return "<dl>\n" + terms + "</dl>";
}

std::string StepElement(const CaseStep& step, std::uint64_t whole) {
  const std::string number = std::to_string(step.number);
  std::optional<std::uint64_t> took;
  if (step.begun && step.ended) {
    took = std::max(*step.ended, *step.begun) - *step.begun;
  }
  const std::string kind = TextIn(*step.first, "kind");
  const std::string said = SayingOf(*step.first);
  const std::string_view saying = std::string_view(said).substr(std::min(Printable(kind).size() + 1, said.size()));
  const std::string_view shown = FirstUnits(saying, kLongestSaying);
  return "<details class=\"" + ClassOf(step) + "\" id=\"step-" + number + "\"" + (step.failure.empty() ? "" : " open") +
         "><summary>" + Element("span class=\"number\"", number) + Element("span class=\"kind\"", kind) +
         Element("span class=\"time\"", SecondsOf(step.begun)) + Element("span class=\"time\"", SecondsOf(took)) +
         "<span class=\"saying\">" + Escaped(shown) + (shown.size() < saying.size() ? "..." : "") +
         (step.failure.empty() ? "" : " " + Element("span class=\"bad\"", Shortened(step.failure))) + "</span>" +
         Bar(step, whole) + "</summary>" + Details(step) + "</details>\n";
}

std::string TimeLineSection(const recording::RecordedCase& read, const std::vector<CaseStep>& steps) {
  std::uint64_t whole = std::max<std::uint64_t>(MicrosecondsIn(read.facts, "microseconds").value_or(0), 1);
  for (const CaseStep& step : steps) {
    whole = std::max({whole, step.begun.value_or(0), step.ended.value_or(0)});
  }
  std::string content = Element("p", Counted(steps.size(), "step") +
                                         ": number, kind, when it began and how long it took "
                                         "in seconds. A click opens one.") +
                        "\n";
  for (const CaseStep& step : steps) {
    content += StepElement(step, whole);
  }
  return Section("What happened", content);
}

std::string MissingSection(const Json& facts) {
  const std::vector<Column> columns = {{"What", false}, {"Why", false}};
  std::string rows;
  if (const auto missing = facts.find("missing"); missing != facts.end() && missing->is_array()) {
    for (const Json& one : *missing) {
      if (one.is_object()) {
        rows += TableRow("tr", columns, {Shortened(TextIn(one, "what")), Shortened(TextIn(one, "why"))});
      }
    }
  }
  return rows.empty() ? rows : Section("Missing from the case", TableElement("Missing from the case", columns, rows));
}

}  // namespace

std::string CasePage(const recording::RecordedCase& read, const std::string& fileName) {
  const std::vector<CaseStep> steps = StepsOf(read);
  std::string body = Heading(read) + FailuresSection(read, steps) + ExchangeSection(read) + MachineSection(read.facts);
  body += TimeLineSection(read, steps);
  body += Section("Files", FilesTable(read)) + MissingSection(read.facts);
  return PageOf(TextIn(read.facts, "command") + ": " + TextIn(read.facts, "outcome"), kStyle, body, fileName);
}

}  // namespace parvex::cli
