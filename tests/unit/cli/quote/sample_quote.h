#pragma once

#include "cli/quote/quote.h"

namespace parvex::cli {

/// A quote of two tags: AHU-1 with one unit of two components, AHU-2 with nothing.
inline Quote SampleQuote() {
  QuoteComponent curb{.type = "ACCESSORY",
                      .partNumber = "CURB-1",
                      .quantity = "2",
                      .price = "10.25",
                      .description = "roof curb",
                      .supplier = "KV",
                      .typeOfSale = "",
                      .preOrder = "0"};
  QuoteComponent warranty{.type = "WARRANTY",
                          .partNumber = "W5",
                          .quantity = "1",
                          .price = "100",
                          .description = "five years",
                          .supplier = "",
                          .typeOfSale = "",
                          .preOrder = "1"};
  QuoteUnit unit{.sequence = "1",
                 .partNumber = "RTUA120",
                 .quantity = "1",
                 .price = "8450.00",
                 .descriptions = {"double-wall"},
                 .attributes = {{"brand", "KV"}, {"tons", "10"}},
                 .etoDescription = "",
                 .orderConfiguration = "<SAPDATA/>",
                 .components = {curb, warranty}};
  QuoteTag tag{.markFor = "AHU-1",
               .pdsg = "RTU47",
               .legacyTagId = "1101",
               .buildVersion = "4.7",
               .storedData = "TWFu",
               .units = {unit}};
  QuoteTag bare{
      .markFor = "AHU-2", .pdsg = "WSH47", .legacyTagId = "1102", .buildVersion = "", .storedData = "", .units = {}};
  return {.project = "Riverside", .tags = {tag, bare}};
}

}  // namespace parvex::cli
