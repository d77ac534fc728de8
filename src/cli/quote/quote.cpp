#include "cli/quote/quote.h"

#include <utility>

#include "cli/host/exit_status.h"
#include "codec/bin_encoder.h"

namespace parvex::cli {
namespace {

std::string TextOf(const xml::Node& parent, std::string_view name) {
  const xml::Node child = parent ? parent.Child(name) : xml::Node();
  return child ? child.Text() : std::string();
}

std::string AttributeOf(const xml::Node& element, std::string_view name) {
  return element ? element.Attribute(name).value_or("") : std::string();
}

// Counts the items of a quote.
class ItemCount {
 public:
  explicit ItemCount(const std::string& fileName) : fileName_(fileName) {}

  void Add() {
    if (++items_ > kMostQuoteItems) {
      throw UsageError(fileName_ + " holds more than " + std::to_string(kMostQuoteItems) +
                       " tags, units, components, descriptions and attributes");
    }
  }

 private:
  const std::string& fileName_;
  std::size_t items_ = 0;
};

// Calls `read` for every child element of that name; the parent may be missing.
template <typename Read>
void ForEachChild(const xml::Node& parent, std::string_view name, ItemCount& items, Read read) {
  for (xml::Node child = parent ? parent.Child(name) : xml::Node(); child; child = child.Next(name)) {
    items.Add();
    read(child);
  }
}

// How people call an attribute of a base unit, and its value.
QuoteAttribute Named(const std::string& element, const std::string& text) {
  constexpr std::pair<std::string_view, std::string_view> kTexts[] = {
      {"SUPPLIER", "brand"}, {"TYPEOFSALE", "type of sale"}, {"TON", "tons"}};
  constexpr std::pair<std::string_view, std::string_view> kFlags[] = {{"PREORDERREQ", "ordered ahead"},
                                                                      {"ETO", "engineered to order"}};
  for (const auto& [name, label] : kTexts) {
    if (element == name) {
      return {std::string(label), text, element};
    }
  }
  for (const auto& [name, label] : kFlags) {
    if (element == name) {
      return {std::string(label), text == "1" ? "yes" : text == "0" ? "no" : text, element};
    }
  }
  constexpr std::string_view kNumbered = "ATTRIBUTE";
  return {element.starts_with(kNumbered) ? "attribute " + element.substr(kNumbered.size()) : element, text, element};
}

QuoteComponent ReadComponent(const xml::Node& element) {
  const xml::Node attributes = element.Child("ATTRIBUTES_LIST");
  return {.type = AttributeOf(element, "TYPE"),
          .partNumber = AttributeOf(element, "PARTNUMBER"),
          .quantity = AttributeOf(element, "QUANTITY"),
          .price = AttributeOf(element, "PRICE"),
          .description = TextOf(element, "DESCRIPTION"),
          .supplier = TextOf(attributes, "SUPPLIER"),
          .typeOfSale = TextOf(attributes, "TYPEOFSALE"),
          .preOrder = TextOf(attributes, "PREORDERREQ")};
}

QuoteUnit ReadUnit(const xml::Node& element, ItemCount& items) {
  const xml::Node attributes = element.Child("ATTRIBUTES_LIST");
  QuoteUnit unit = {.sequence = AttributeOf(element, "SEQUENCE"),
                    .partNumber = AttributeOf(element, "PARTNUMBER"),
                    .quantity = AttributeOf(element, "QUANTITY"),
                    .price = AttributeOf(element, "PRICE"),
                    .descriptions = {},
                    .attributes = {},
                    .etoDescription = AttributeOf(attributes ? attributes.Child("ETO") : xml::Node(), "ETODESCRIPTION"),
                    .orderConfiguration = TextOf(element, "SAP_XML"),
                    .components = {}};
  ForEachChild(element.Child("EXTENDED_DESCRIPTIONS"), "DESCRIPTION", items, [&unit](const xml::Node& line) {
    if (std::string text = line.Text(); !text.empty()) {
      unit.descriptions.push_back(std::move(text));
    }
  });
  for (xml::Node node = attributes ? attributes.FirstChild() : xml::Node(); node; node = node.NextSibling()) {
    if (const std::string text = node.IsElement() ? node.Text() : ""; !text.empty()) {
      items.Add();
      unit.attributes.push_back(Named(node.Name(), text));
    }
  }
  ForEachChild(element.Child("COMPONENTS"), "COMPONENT", items,
               [&unit](const xml::Node& component) { unit.components.push_back(ReadComponent(component)); });
  return unit;
}

QuoteTag ReadTag(const xml::Node& element, ItemCount& items) {
  const xml::Node attributes = element.Child("ATTRIBUTES_LIST");
  QuoteTag tag = {.markFor = TextOf(attributes, "MARKFOR"),
                  .pdsg = TextOf(attributes, "PDSG"),
                  .legacyTagId = TextOf(attributes, "LEGACY_TAGID"),
                  .buildVersion = TextOf(attributes, "BUILDVERSION"),
                  .storedData = TextOf(attributes, "BLOB"),
                  .units = {}};
  ForEachChild(element.Child("BASEUNITS"), "BASEUNIT", items,
               [&](const xml::Node& unit) { tag.units.push_back(ReadUnit(unit, items)); });
  return tag;
}

}  // namespace

Quote ReadQuote(const xml::Document& document, const std::string& fileName) {
  ItemCount items(fileName);
  Quote quote = {.project = AttributeOf(document.First("/PROJECT/ATTRIBUTES_LIST/JOB"), "LEGACY_PROJECTNAME"),
                 .tags = {}};
  ForEachChild(document.First("/PROJECT/TAGS"), "TAG", items,
               [&](const xml::Node& tag) { quote.tags.push_back(ReadTag(tag, items)); });
  return quote;
}

Total& Total::operator+=(const std::optional<Hundredths>& line) {
  amount += line.value_or(0);
  unknown += !line;
  return *this;
}

Total& Total::operator+=(const Total& part) {
  amount += part.amount;
  unknown += part.unknown;
  return *this;
}

Total TotalOf(const QuoteComponent& component) {
  Total total;
  total += component.Amount();
  return total;
}

Total TotalOf(const QuoteUnit& unit) {
  Total total;
  total += unit.Amount();
  for (const QuoteComponent& component : unit.components) {
    total += TotalOf(component);
  }
  return total;
}

Total TotalOf(const QuoteTag& tag) {
  Total total;
  for (const QuoteUnit& unit : tag.units) {
    total += TotalOf(unit);
  }
  return total;
}

Total TotalOf(const Quote& quote) {
  Total total;
  for (const QuoteTag& tag : quote.tags) {
    total += TotalOf(tag);
  }
  return total;
}

std::size_t StoredBytes(const QuoteTag& tag) { return DecodeBase64(tag.storedData).size(); }

}  // namespace parvex::cli
