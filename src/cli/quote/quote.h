#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/quote/amounts.h"
#include "seams/xml.h"

namespace parvex::cli {

// A Hybris document as people look at it. Texts are those of the document.

struct QuoteComponent {
  std::string type;
  std::string partNumber;
  std::string quantity;
  std::string price;
  std::string description;
  std::string supplier;
  std::string typeOfSale;
  std::string preOrder;

  std::optional<Hundredths> Amount() const { return Multiply(price, quantity); }
};

/// A value under its name.
struct QuoteAttribute {
  std::string name;          ///< as people call it
  std::string value;         ///< of a flag "yes" or "no"
  std::string element = {};  ///< the document's name of it
};

struct QuoteUnit {
  std::string sequence;
  std::string partNumber;
  std::string quantity;
  std::string price;
  std::vector<std::string> descriptions;
  std::vector<QuoteAttribute> attributes;  ///< those that have a value
  std::string etoDescription;
  std::string orderConfiguration;  ///< SAP_XML
  std::vector<QuoteComponent> components;

  /// Of the unit alone, without its components.
  std::optional<Hundredths> Amount() const { return Multiply(price, quantity); }
};

struct QuoteTag {
  std::string markFor;
  std::string pdsg;
  std::string legacyTagId;
  std::string buildVersion;
  std::string storedData;  ///< Base64; empty when there is none
  std::vector<QuoteUnit> units;
};

struct Quote {
  std::string project;
  std::vector<QuoteTag> tags;
};

/// So many tags, units, components, descriptions and attributes a quote has together that is shown: each takes many
/// times the memory of its text, and legacy projects have some thousands.
inline constexpr std::size_t kMostQuoteItems = 100'000;

/// The content of a document whose root is PROJECT. What the document lacks is empty. A UsageError that names the file
/// for one of more than kMostQuoteItems.
Quote ReadQuote(const xml::Document& document, const std::string& fileName);

/// What several amounts come to; those that are none are counted.
struct Total {
  Hundredths amount = 0;
  std::size_t unknown = 0;

  Total& operator+=(const std::optional<Hundredths>& line);
  Total& operator+=(const Total& part);
};

Total TotalOf(const QuoteComponent& component);
Total TotalOf(const QuoteUnit& unit);
Total TotalOf(const QuoteTag& tag);
Total TotalOf(const Quote& quote);

/// How many bytes of stored data a tag has.
std::size_t StoredBytes(const QuoteTag& tag);

}  // namespace parvex::cli
