#include "cli/quote/quote_differences.h"

#include <map>
#include <type_traits>
#include <utility>

#include "formats/text/text.h"

namespace parvex::cli {
namespace {

// A value that is compared, and how it is shown.
struct Field {
  std::string name;
  std::string value;
  std::string shown;
};

// An item that stands in both quotes, or what holds items in both.
struct Shared {
  std::string name;  // where its differences are
  ItemPlace before;
  ItemPlace after;
};

void CompareFields(QuoteComparison& comparison, const Shared& item, const std::vector<Field>& before,
                   const std::vector<Field>& after) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i].value != after[i].value) {
      comparison.differences.push_back(
          {item.name, before[i].name, before[i].shown, after[i].shown, item.before, item.after});
    }
  }
}

void CompareField(QuoteComparison& comparison, const Shared& item, const std::string& name, const std::string& before,
                  const std::string& after) {
  CompareFields(comparison, item, {{name, before, before}}, {{name, after, after}});
}

// Items that belong together by the first key, or else by the next one. A key that is empty matches nothing. Of several
// items with one key the first go together, then the second.
template <typename Item>
using Key = std::string (*)(const Item& item);

template <typename Item>
struct Pairs {
  std::vector<std::optional<std::size_t>> ofBefore;  // for each item of the later list the place of its earlier one
  std::vector<std::size_t> removed;
};

template <typename Item>
Pairs<Item> Match(const std::vector<Item>& before, const std::vector<Item>& after, const std::vector<Key<Item>>& keys) {
  Pairs<Item> pairs{std::vector<std::optional<std::size_t>>(after.size()), {}};
  std::vector<bool> isTaken(before.size());
  for (const Key<Item> key : keys) {
    struct Places {
      std::vector<std::size_t> all;
      std::size_t next = 0;
    };
    std::map<std::string, Places> open;
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (!isTaken[i]) {
        open[key(before[i])].all.push_back(i);
      }
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
      const std::string wanted = key(after[i]);
      const auto found = pairs.ofBefore[i] || wanted.empty() ? open.end() : open.find(wanted);
      if (found != open.end() && found->second.next < found->second.all.size()) {
        const std::size_t partner = found->second.all[found->second.next++];
        pairs.ofBefore[i] = partner;
        isTaken[partner] = true;
      }
    }
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!isTaken[i]) {
      pairs.removed.push_back(i);
    }
  }
  return pairs;
}

std::string Joined(const std::string& one, const std::string& other) { return one + '\n' + other; }

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : " / ") + line;
  }
  return text;
}

Field Plain(const char* name, const std::string& value) { return {name, value, value}; }

// A text too long to be shown.
Field Long(const char* name, const std::string& value, const std::string& unit) {
  return {name, value, value.empty() ? "none" : std::to_string(value.size()) + " " + unit};
}

// A name as it stands before all that differs below it: one of megabytes would be repeated there thousands of times.
std::string Shortened(const std::string& name) {
  constexpr std::size_t kLongestName = 60;
  const std::string_view begin = FirstUnits(name, kLongestName);
  return begin.size() == name.size() ? name : std::string(begin) + "\u2026";
}

std::string KeyOf(const QuoteComponent& component) { return component.type + " " + component.partNumber; }

std::string NameOf(const QuoteComponent& component) {
  return (component.type.empty() ? "component" : Shortened(component.type)) + " " + Shortened(component.partNumber);
}

// What a whole item is told by when it was added or removed.
const std::string& SummaryOf(const QuoteComponent& component) { return component.description; }
const std::string& SummaryOf(const QuoteUnit& unit) { return unit.partNumber; }
const std::string& SummaryOf(const QuoteTag& tag) { return tag.pdsg; }

std::vector<Field> FieldsOf(const QuoteComponent& component) {
  return {Plain("quantity", component.quantity),       Plain("price", component.price),
          Plain("description", component.description), Plain("supplier", component.supplier),
          Plain("type of sale", component.typeOfSale), Plain("ordered ahead", component.preOrder)};
}

std::string NameOf(const QuoteUnit& unit) { return "base unit " + Shortened(unit.sequence); }

std::vector<Field> FieldsOf(const QuoteUnit& unit) {
  return {Plain("part number", unit.partNumber),
          Plain("quantity", unit.quantity),
          Plain("price", unit.price),
          Plain("description", Lines(unit.descriptions)),
          Plain("ETO description", unit.etoDescription),
          Long("order configuration", unit.orderConfiguration, "characters")};
}

constexpr const char* kStoredData = "stored data";

std::string NameOf(const QuoteTag& tag) { return "tag " + Shortened(tag.markFor); }

std::vector<Field> FieldsOf(const QuoteTag& tag, const std::string& id) {
  return {Plain("mark-for", tag.markFor), Plain("PDSG", tag.pdsg), Plain("tag id", id),
          Plain("build version", tag.buildVersion), Long(kStoredData, tag.storedData, "characters of Base64")};
}

// The id that stands in the tag's stored data; empty for one that was counted. What has none has no build version.
std::string StoredId(const QuoteTag& tag) { return tag.buildVersion.empty() ? std::string() : tag.legacyTagId; }

std::string NamesOf(const QuoteTag& tag) { return Joined(tag.markFor, tag.pdsg); }

void CompareAttributes(QuoteComparison& comparison, const Shared& item, const QuoteUnit& before,
                       const QuoteUnit& after) {
  std::map<std::string, std::pair<std::string, std::string>> values;
  for (const QuoteAttribute& attribute : before.attributes) {
    values[attribute.name].first = attribute.value;
  }
  for (const QuoteAttribute& attribute : after.attributes) {
    values[attribute.name].second = attribute.value;
  }
  for (const auto& [name, pair] : values) {
    CompareField(comparison, item, name, pair.first, pair.second);
  }
}

// How the levels of a quote differ: where an item's place stands, and what is counted of those that came and went.
template <typename Item>
struct Level;

template <>
struct Level<QuoteTag> {
  static constexpr auto kPlace = &ItemPlace::tag;
  static constexpr auto kAdded = &QuoteComparison::addedTags;
  static constexpr auto kRemoved = &QuoteComparison::removedTags;
};

template <>
struct Level<QuoteUnit> {
  static constexpr auto kPlace = &ItemPlace::unit;
  static constexpr auto kAdded = &QuoteComparison::addedUnits;
  static constexpr auto kRemoved = &QuoteComparison::removedUnits;
};

template <>
struct Level<QuoteComponent> {
  static constexpr auto kPlace = &ItemPlace::component;
};

// Notes that an item is in one of the quotes only.
template <typename Item>
void Note(QuoteComparison& comparison, const Shared& holder, const Item& item, std::size_t place, bool isAdded) {
  Difference difference{(holder.name.empty() ? "" : holder.name + ", ") + NameOf(item),
                        "",
                        std::nullopt,
                        std::nullopt,
                        holder.before,
                        holder.after,
                        TotalOf(item)};
  (isAdded ? difference.after : difference.before) = SummaryOf(item);
  ItemPlace& itsPlace = isAdded ? difference.placeAfter : difference.placeBefore;
  itsPlace.*Level<Item>::kPlace = place;
  if constexpr (!std::is_same_v<Item, QuoteComponent>) {
    ItemsTogether& together = comparison.*(isAdded ? Level<Item>::kAdded : Level<Item>::kRemoved);
    ++together.count;
    together.total += *difference.total;
  }
  comparison.differences.push_back(std::move(difference));
}

void ComparePair(QuoteComparison& comparison, const Shared& item, const QuoteComponent& before,
                 const QuoteComponent& after) {
  CompareFields(comparison, item, FieldsOf(before), FieldsOf(after));
}

void ComparePair(QuoteComparison& comparison, const Shared& item, const QuoteUnit& before, const QuoteUnit& after);
void ComparePair(QuoteComparison& comparison, const Shared& item, const QuoteTag& before, const QuoteTag& after);

template <typename Item>
Pairs<Item> CompareLists(QuoteComparison& comparison, const Shared& holder, const std::vector<Item>& before,
                         const std::vector<Item>& after, const std::vector<Key<Item>>& keys) {
  Pairs<Item> pairs = Match(before, after, keys);
  for (const std::size_t removed : pairs.removed) {
    Note(comparison, holder, before[removed], removed, false);
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (!pairs.ofBefore[i]) {
      Note(comparison, holder, after[i], i, true);
      continue;
    }
    const Item& earlier = before[*pairs.ofBefore[i]];
    Shared item{(holder.name.empty() ? "" : holder.name + ", ") + NameOf(earlier), holder.before, holder.after};
    item.before.*Level<Item>::kPlace = pairs.ofBefore[i];
    item.after.*Level<Item>::kPlace = i;
    ComparePair(comparison, item, earlier, after[i]);
  }
  return pairs;
}

void ComparePair(QuoteComparison& comparison, const Shared& item, const QuoteUnit& before, const QuoteUnit& after) {
  CompareFields(comparison, item, FieldsOf(before), FieldsOf(after));
  CompareAttributes(comparison, item, before, after);
  CompareLists<QuoteComponent>(comparison, item, before.components, after.components,
                               {[](const QuoteComponent& component) {
                                  return Joined(KeyOf(component), Joined(component.description, component.price));
                                },
                                [](const QuoteComponent& component) { return KeyOf(component); }});
}

void ComparePair(QuoteComparison& comparison, const Shared& item, const QuoteTag& before, const QuoteTag& after) {
  const bool haveIds = !before.buildVersion.empty() && !after.buildVersion.empty();
  CompareFields(comparison, item, FieldsOf(before, haveIds ? before.legacyTagId : ""),
                FieldsOf(after, haveIds ? after.legacyTagId : ""));
  CompareLists<QuoteUnit>(
      comparison, item, before.units, after.units,
      {[](const QuoteUnit& unit) { return Joined(unit.partNumber, unit.sequence); },
       [](const QuoteUnit& unit) { return unit.partNumber; }, [](const QuoteUnit& unit) { return unit.sequence; }});
}

void LookIntoStoredData(QuoteComparison& comparison, const Quote& before, const Quote& after) {
  StoredDataBudget budget;
  for (Difference& difference : comparison.differences) {
    if (difference.what == kStoredData && !difference.placeAfter.unit) {
      difference.stored =
          CompareStoredData(before.tags[*difference.placeBefore.tag], after.tags[*difference.placeAfter.tag], budget);
    }
  }
}

}  // namespace

QuoteComparison Compare(const Quote& before, const Quote& after) {
  QuoteComparison comparison;
  comparison.totalBefore = TotalOf(before);
  comparison.totalAfter = TotalOf(after);
  CompareField(comparison, {}, "project", before.project, after.project);
  const Pairs<QuoteTag> pairs = CompareLists<QuoteTag>(
      comparison, {}, before.tags, after.tags,
      {[](const QuoteTag& tag) { return StoredId(tag).empty() ? std::string() : Joined(StoredId(tag), NamesOf(tag)); },
       NamesOf, StoredId});
  LookIntoStoredData(comparison, before, after);
  for (const std::size_t removed : pairs.removed) {
    comparison.tags.push_back({removed, std::nullopt});
  }
  for (std::size_t i = 0; i < after.tags.size(); ++i) {
    comparison.tags.push_back({pairs.ofBefore[i], i});
  }
  return comparison;
}

}  // namespace parvex::cli
