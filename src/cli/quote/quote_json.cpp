#include "cli/quote/quote_json.h"

#include <utility>

#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

// Writes objects and lists whose members come one after the other.
class JsonWriter {
 public:
  explicit JsonWriter(const TakeJson& take) : take_(take) {}

  void Open(char bracket) {
    Begin();
    text_ += bracket;
    ++depth_;
    isFirst_ = true;
  }
  void Close(char bracket) {
    --depth_;
    if (!isFirst_) {
      NewLine();
    }
    text_ += bracket;
    isFirst_ = false;
    if (depth_ == 0) {
      text_ += '\n';
      Flush();
    }
  }
  void Name(const char* name) {
    Begin();
    text_ += Json(name).dump() + ": ";
    isNamed_ = true;
  }
  void Put(const Json& value) {
    Begin();
    for (const char c : value.dump(2, ' ', false, Json::error_handler_t::replace)) {
      text_ += c;
      text_.append(c == '\n' ? 2 * depth_ : 0, ' ');
    }
  }
  void Member(const char* name, const Json& value) {
    Name(name);
    Put(value);
  }
  template <typename Item, typename Write>
  void List(const char* name, const std::vector<Item>& items, Write write) {
    Name(name);
    Open('[');
    for (std::size_t i = 0; i < items.size(); ++i) {
      write(items[i], i + 1);
    }
    Close(']');
  }

 private:
  // What stands before the next value: nothing behind its name.
  void Begin() {
    constexpr std::size_t kPiece = 64 * 1024;
    if (text_.size() >= kPiece) {
      Flush();
    }
    if (!std::exchange(isNamed_, false) && depth_ > 0) {
      text_ += isFirst_ ? "" : ",";
      NewLine();
    }
    isFirst_ = false;
  }
  void NewLine() { text_.append("\n").append(2 * depth_, ' '); }
  void Flush() {
    take_(EscapedJson(text_));
    text_.clear();
  }

  const TakeJson& take_;
  std::string text_;
  std::size_t depth_ = 0;
  bool isFirst_ = true;
  bool isNamed_ = false;
};

template <typename Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json AmountJson(const std::optional<Hundredths>& amount) { return amount ? Json(PlainAmount(*amount)) : Json(); }

// A list of what `toJson` makes of each item.
template <typename Item, typename ToJson>
Json ListJson(const std::vector<Item>& items, ToJson toJson) {
  Json list = Json::array();
  for (const Item& item : items) {
    list.push_back(toJson(item));
  }
  return list;
}

Json ComponentJson(const QuoteComponent& component, std::size_t number) {
  return {{"number", number},
          {"type", component.type},
          {"partNumber", component.partNumber},
          {"quantity", component.quantity},
          {"price", component.price},
          {"amount", AmountJson(component.Amount())},
          {"description", component.description},
          {"supplier", component.supplier},
          {"typeOfSale", component.typeOfSale},
          {"preOrder", component.preOrder}};
}

Json AttributeJson(const QuoteAttribute& attribute) {
  return {{"element", attribute.element}, {"name", attribute.name}, {"value", attribute.value}};
}

void WriteUnit(JsonWriter& json, const QuoteUnit& unit, std::size_t number) {
  json.Open('{');
  json.Member("number", number);
  json.Member("sequence", unit.sequence);
  json.Member("partNumber", unit.partNumber);
  json.Member("quantity", unit.quantity);
  json.Member("price", unit.price);
  json.Member("amount", AmountJson(unit.Amount()));
  json.Member("total", TotalJson(TotalOf(unit)));
  json.List("descriptions", unit.descriptions, [&](const std::string& line, std::size_t) { json.Put(line); });
  json.List("attributes", unit.attributes,
            [&](const QuoteAttribute& attribute, std::size_t) { json.Put(AttributeJson(attribute)); });
  json.Member("etoDescription", unit.etoDescription);
  json.Member("orderConfiguration", unit.orderConfiguration);
  json.List("components", unit.components,
            [&](const QuoteComponent& component, std::size_t place) { json.Put(ComponentJson(component, place)); });
  json.Close('}');
}

void WriteTag(JsonWriter& json, const QuoteTag& tag, std::size_t number) {
  json.Open('{');
  json.Member("number", number);
  json.Member("markFor", tag.markFor);
  json.Member("pdsg", tag.pdsg);
  json.Member("tagId", tag.legacyTagId);
  json.Member("buildVersion", tag.buildVersion);
  json.Member("storedBytes", StoredBytes(tag));
  json.Member("storedData", tag.storedData);
  json.Member("total", TotalJson(TotalOf(tag)));
  json.List("units", tag.units, [&](const QuoteUnit& unit, std::size_t place) { WriteUnit(json, unit, place); });
  json.Close('}');
}

void WriteQuote(JsonWriter& json, const Quote& quote, const std::string& fileName) {
  json.Open('{');
  json.Member("file", fileName);
  json.Member("project", quote.project);
  json.Member("total", TotalJson(TotalOf(quote)));
  json.List("tags", quote.tags, [&](const QuoteTag& tag, std::size_t number) { WriteTag(json, tag, number); });
  json.Close('}');
}

template <typename Value>
const char* ChangeKind(const std::optional<Value>& before, const std::optional<Value>& after) {
  return !before ? "added" : !after ? "removed" : "changed";
}

Json ContentJson(const ContentDifference& difference) {
  return {{"kind", ChangeKind(difference.before, difference.after)},
          {"path", difference.path},
          {"before", OrNull(difference.before)},
          {"after", OrNull(difference.after)}};
}

Json EntryJson(const StoredEntryDifference& entry) {
  return {{"kind", ChangeKind(entry.before, entry.after)},
          {"name", entry.name},
          {"bytesBefore", OrNull(entry.before)},
          {"bytesAfter", OrNull(entry.after)},
          {"contents", ListJson(entry.contents, ContentJson)},
          {"note", entry.note}};
}

Json StoredJson(const std::optional<StoredDataComparison>& stored) {
  return stored ? Json({{"entries", ListJson(stored->entries, EntryJson)}, {"note", stored->note}}) : Json();
}

Json PlaceJson(const ItemPlace& place) {
  const auto number = [](const std::optional<std::size_t>& index) { return index ? Json(*index + 1) : Json(); };
  return {{"tag", number(place.tag)}, {"unit", number(place.unit)}, {"component", number(place.component)}};
}

const char* ItemOf(const Difference& difference) {
  const auto isIn = [&](std::optional<std::size_t> ItemPlace::*level) {
    return difference.placeBefore.*level || difference.placeAfter.*level;
  };
  return isIn(&ItemPlace::component) ? "component"
         : isIn(&ItemPlace::unit)    ? "unit"
         : isIn(&ItemPlace::tag)     ? "tag"
                                     : "project";
}

Json DifferenceJson(const Difference& difference) {
  return {{"kind", ChangeKind(difference.before, difference.after)},
          {"item", ItemOf(difference)},
          {"where", difference.where},
          {"what", difference.what},
          {"before", OrNull(difference.before)},
          {"after", OrNull(difference.after)},
          {"placeBefore", PlaceJson(difference.placeBefore)},
          {"placeAfter", PlaceJson(difference.placeAfter)},
          {"total", difference.total ? TotalJson(*difference.total) : Json()},
          {"stored", StoredJson(difference.stored)}};
}

Json TogetherJson(const ItemsTogether& items) { return {{"count", items.count}, {"total", TotalJson(items.total)}}; }

}  // namespace

Json TotalJson(const Total& total) { return {{"amount", PlainAmount(total.amount)}, {"unknown", total.unknown}}; }

void WriteQuoteJson(const Quote& quote, const std::string& fileName, const TakeJson& take) {
  JsonWriter json(take);
  WriteQuote(json, quote, fileName);
}

void WriteComparisonJson(const Quote& before, const std::string& beforeName, const Quote& after,
                         const std::string& afterName, const QuoteComparison& comparison, const TakeJson& take) {
  JsonWriter json(take);
  json.Open('{');
  json.Name("before");
  WriteQuote(json, before, beforeName);
  json.Name("after");
  WriteQuote(json, after, afterName);
  json.Member("total", {{"before", TotalJson(comparison.totalBefore)},
                        {"after", TotalJson(comparison.totalAfter)},
                        {"change", PlainAmount(comparison.Change())}});
  json.Member("tags",
              {{"added", TogetherJson(comparison.addedTags)}, {"removed", TogetherJson(comparison.removedTags)}});
  json.Member("units",
              {{"added", TogetherJson(comparison.addedUnits)}, {"removed", TogetherJson(comparison.removedUnits)}});
  json.List("differences", comparison.differences,
            [&](const Difference& difference, std::size_t) { json.Put(DifferenceJson(difference)); });
  json.Close('}');
}

}  // namespace parvex::cli
