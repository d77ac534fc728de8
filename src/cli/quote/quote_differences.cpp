#include "cli/quote/quote_differences.h"

#include <map>
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

class Comparison {
 public:
  std::vector<Difference> differences;

  void CompareFields(const std::string& where, const std::vector<Field>& before, const std::vector<Field>& after) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (before[i].value != after[i].value) {
        differences.push_back({where, before[i].name, before[i].shown, after[i].shown});
      }
    }
  }
  void CompareField(const std::string& where, const std::string& name, const std::string& before,
                    const std::string& after) {
    CompareFields(where, {{name, before, before}}, {{name, after, after}});
  }
  void Removed(const std::string& where, const std::string& shown) {
    differences.push_back({where, "", shown, std::nullopt});
  }
  void Added(const std::string& where, const std::string& shown) {
    differences.push_back({where, "", std::nullopt, shown});
  }
};

// Items that belong together by the first key, or else by the next one. A key that is empty matches nothing. Of several
// items with one key the first go together, then the second.
template <typename Item>
using Key = std::string (*)(const Item& item);

template <typename Item>
struct Pairs {
  std::vector<const Item*> ofBefore;  // for each item of the later list its earlier one, or null
  std::vector<const Item*> removed;
};

template <typename Item>
Pairs<Item> Match(const std::vector<Item>& before, const std::vector<Item>& after, const std::vector<Key<Item>>& keys) {
  Pairs<Item> pairs{std::vector<const Item*>(after.size()), {}};
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
      const auto found = pairs.ofBefore[i] != nullptr || wanted.empty() ? open.end() : open.find(wanted);
      if (found != open.end() && found->second.next < found->second.all.size()) {
        const std::size_t partner = found->second.all[found->second.next++];
        pairs.ofBefore[i] = &before[partner];
        isTaken[partner] = true;
      }
    }
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!isTaken[i]) {
      pairs.removed.push_back(&before[i]);
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

std::string NameOf(const QuoteTag& tag) { return "tag " + Shortened(tag.markFor); }

std::vector<Field> FieldsOf(const QuoteTag& tag) {
  return {Plain("mark-for", tag.markFor), Plain("PDSG", tag.pdsg), Plain("tag id", tag.legacyTagId),
          Plain("build version", tag.buildVersion), Long("stored data", tag.storedData, "characters of Base64")};
}

void CompareAttributes(Comparison& comparison, const std::string& where, const QuoteUnit& before,
                       const QuoteUnit& after) {
  std::map<std::string, std::pair<std::string, std::string>> values;
  for (const QuoteAttribute& attribute : before.attributes) {
    values[attribute.name].first = attribute.value;
  }
  for (const QuoteAttribute& attribute : after.attributes) {
    values[attribute.name].second = attribute.value;
  }
  for (const auto& [name, pair] : values) {
    comparison.CompareField(where, name, pair.first, pair.second);
  }
}

void ComparePair(Comparison& comparison, const std::string& where, const QuoteComponent& before,
                 const QuoteComponent& after) {
  comparison.CompareFields(where, FieldsOf(before), FieldsOf(after));
}

void ComparePair(Comparison& comparison, const std::string& where, const QuoteUnit& before, const QuoteUnit& after);
void ComparePair(Comparison& comparison, const std::string& where, const QuoteTag& before, const QuoteTag& after);

template <typename Item>
void CompareLists(Comparison& comparison, const std::string& where, const std::vector<Item>& before,
                  const std::vector<Item>& after, const std::vector<Key<Item>>& keys) {
  const auto place = [&where](const Item& item) { return (where.empty() ? "" : where + ", ") + NameOf(item); };
  const Pairs<Item> pairs = Match(before, after, keys);
  for (const Item* removed : pairs.removed) {
    comparison.Removed(place(*removed), SummaryOf(*removed));
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (pairs.ofBefore[i] == nullptr) {
      comparison.Added(place(after[i]), SummaryOf(after[i]));
    } else {
      ComparePair(comparison, place(*pairs.ofBefore[i]), *pairs.ofBefore[i], after[i]);
    }
  }
}

void ComparePair(Comparison& comparison, const std::string& where, const QuoteUnit& before, const QuoteUnit& after) {
  comparison.CompareFields(where, FieldsOf(before), FieldsOf(after));
  CompareAttributes(comparison, where, before, after);
  CompareLists<QuoteComponent>(
      comparison, where, before.components, after.components,
      {[](const QuoteComponent& item) { return Joined(KeyOf(item), Joined(item.description, item.price)); },
       [](const QuoteComponent& item) { return KeyOf(item); }});
}

void ComparePair(Comparison& comparison, const std::string& where, const QuoteTag& before, const QuoteTag& after) {
  comparison.CompareFields(where, FieldsOf(before), FieldsOf(after));
  CompareLists<QuoteUnit>(
      comparison, where, before.units, after.units,
      {[](const QuoteUnit& unit) { return Joined(unit.partNumber, unit.sequence); },
       [](const QuoteUnit& unit) { return unit.partNumber; }, [](const QuoteUnit& unit) { return unit.sequence; }});
}

}  // namespace

std::vector<Difference> Compare(const Quote& before, const Quote& after) {
  Comparison comparison;
  comparison.CompareField("", "project", before.project, after.project);
  CompareLists<QuoteTag>(comparison, "", before.tags, after.tags,
                         {[](const QuoteTag& tag) { return tag.legacyTagId; },
                          [](const QuoteTag& tag) { return Joined(tag.markFor, tag.pdsg); }});
  return std::move(comparison.differences);
}

}  // namespace parvex::cli
