#include "cli/quote/amounts.h"

#include <charconv>
#include <cmath>

namespace parvex::cli {
namespace {

std::optional<double> ParseNumber(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (error != std::errc() || stop != end || !std::isfinite(number)) {
    return std::nullopt;
  }
  return number;
}

}  // namespace

std::optional<Hundredths> Multiply(std::string_view price, std::string_view quantity) {
  constexpr double kTooMuch = 1e12;
  // The nearest binary fraction of 1.005 lies below it: what a decimal half is has to be told from what lies below one.
  constexpr double kHair = 1e-6;
  const std::optional<double> one = ParseNumber(price);
  const std::optional<double> count = ParseNumber(quantity);
  if (!one || !count) {
    return std::nullopt;
  }
  const double product = *one * *count * 100;
  if (!(std::abs(product) < kTooMuch)) {
    return std::nullopt;
  }
  return std::llround(product + std::copysign(kHair, product));
}

std::string FormatAmount(Hundredths amount) {
  const std::uint64_t magnitude =
      amount < 0 ? 0 - static_cast<std::uint64_t>(amount) : static_cast<std::uint64_t>(amount);
  std::string text = std::to_string(magnitude / 100);
  for (std::size_t group = 3; group < text.size(); group += 4) {
    text.insert(text.size() - group, 1, ',');
  }
  const std::string cents = std::to_string(100 + magnitude % 100).substr(1);
  return (amount < 0 ? "-" : "") + text + "." + cents;
}

}  // namespace parvex::cli
