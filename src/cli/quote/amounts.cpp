#include "cli/quote/amounts.h"

#include <algorithm>
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

// The digits before the point with a comma between thousands.
std::string Grouped(std::string_view digits) {
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    text += i > 0 && (digits.size() - i) % 3 == 0 ? "," : "";
    text += digits[i];
  }
  return text;
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
  const std::string plain = PlainAmount(amount);
  const std::size_t sign = amount < 0 ? 1 : 0;
  const std::size_t point = plain.size() - 3;
  return plain.substr(0, sign) + Grouped(std::string_view(plain).substr(sign, point - sign)) + plain.substr(point);
}

std::string FormatPrice(std::string_view price) {
  if (price.empty() || !ParseNumber(price)) {
    return std::string(price);
  }
  const bool isNegative = price.starts_with('-');
  const std::string_view digits = price.substr(isNegative);
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const std::string_view before = digits.substr(0, point);
  std::string after(digits.substr(std::min(point + 1, digits.size())));
  after.resize(std::max<std::size_t>(after.size(), 2), '0');
  return (isNegative ? "-" : "") + Grouped(before.empty() ? "0" : before) + "." + after;
}

std::string SignedAmount(Hundredths change) { return (change > 0 ? "+" : "") + FormatAmount(change); }

std::string PlainAmount(Hundredths amount) {
  const std::uint64_t magnitude =
      amount < 0 ? 0 - static_cast<std::uint64_t>(amount) : static_cast<std::uint64_t>(amount);
  const std::string cents = std::to_string(100 + magnitude % 100).substr(1);
  return (amount < 0 ? "-" : "") + std::to_string(magnitude / 100) + "." + cents;
}

}  // namespace parvex::cli
