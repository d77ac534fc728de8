#include "tags/tag_names.h"

#include <limits>
#include <unordered_set>
#include <utility>

#include "protocol/required_node.h"
#include "seams/automation_error.h"
#include "tags/tag_listing.h"

namespace parvex {
namespace {

std::string CacheKey(std::string_view pdsg, std::string_view name) {
  return std::string(pdsg).append(1, '\0').append(name);
}

/// The counter is set when the list is there: a list that could not be had is asked for again by the next command.
void FillCache(LegacyLink& link, std::string_view projectName) {
  std::unordered_set<std::string> taken;
  for (const xml::Node& tag : GetTagListOf(link, projectName).All("//TAG")) {
    taken.insert(CacheKey(Required(tag.Descendant("PDSG"), "PDSG", "TAG").Text(),
                          Required(tag.Descendant("NAME"), "NAME", "TAG").Text()));
  }
  link.tagNames = {.counter = 1, .taken = std::move(taken)};
}

std::string Cleaned(std::string_view name) {
  constexpr std::string_view kReplaced = "<>&'\"\\,|";
  std::string cleaned(name);
  for (char& c : cleaned) {
    if (kReplaced.find(c) != std::string_view::npos) {
      c = '_';
    }
  }
  return cleaned;
}

std::int32_t NextNumber(TagNameCache& cache) {
  if (cache.counter == std::numeric_limits<std::int32_t>::max()) {
    throw MakeRuntimeError(RuntimeError::Overflow, "the counter of tag names is used up");
  }
  return cache.counter++;
}

std::string Candidate(const std::string& cleaned, const std::string& wanted, std::int32_t number) {
  const std::size_t bracket = cleaned.rfind('[');
  const bool isNumbered = cleaned.ends_with(']') && bracket != std::string::npos;
  // Behind the name as it was passed in, uncleaned: the next round cleans it.
  return (isNumbered ? cleaned.substr(0, bracket + 1) : wanted + "[") + std::to_string(number) + "]";
}

}  // namespace

std::string MakeUniqueTagName(LegacyLink& link, std::string_view projectName, std::string_view wantedName,
                              std::string_view pdsg) {
  if (link.tagNames.counter == 0) {
    FillCache(link, projectName);
  }
  std::string wanted(wantedName);
  std::string cleaned = Cleaned(wanted);
  while (link.tagNames.taken.contains(CacheKey(pdsg, cleaned))) {
    wanted = Candidate(cleaned, wanted, NextNumber(link.tagNames));
    cleaned = Cleaned(wanted);
  }
  return cleaned;
}

}  // namespace parvex
