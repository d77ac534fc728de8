#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace parvex::cli {

/// An amount of money in hundredths.
using Hundredths = std::int64_t;

/// Price times quantity, rounded to hundredths, halves away from zero; an empty text counts as 0. Nothing when one of
/// them is no decimal number, or the product 10 billion or more.
std::optional<Hundredths> Multiply(std::string_view price, std::string_view quantity);

/// "1,234.50"
std::string FormatAmount(Hundredths amount);

/// A price in the same way, with every digit that it has: "1234.5" as "1,234.50", "0.125" as "0.125". An empty text,
/// and one that is no decimal number, stands as it is.
std::string FormatPrice(std::string_view price);

/// A change: "+1,234.50", "-3.00", "0.00".
std::string SignedAmount(Hundredths change);

/// An amount without groups, for other programs: "1234.50"
std::string PlainAmount(Hundredths amount);

}  // namespace parvex::cli
