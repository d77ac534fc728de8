#include "hybris/leading_number.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

#include "seams/automation_error.h"

namespace parvex {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSign(char c) { return c == '+' || c == '-'; }

std::string WithoutBlanks(std::string_view text) {
  std::string kept;
  std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
               [](char c) { return c != ' ' && c != '\t' && c != '\n'; });
  return kept;
}

/// Reads a text without blanks from left to right, taking over what belongs to the number.
class NumberScanner {
 public:
  explicit NumberScanner(std::string_view text) : text_(text) {}

  /// The number in the notation of std::from_chars, empty when there is none.
  std::string Scan() {
    TakeSign();
    std::size_t digits = TakeDigits();
    if (At(0) == '.') {
      Take();
      digits += TakeDigits();
    }
    if (digits == 0) {
      return {};
    }
    TakeExponent();
    return number_;
  }

  bool HasNegativeExponent() const { return negativeExponent_; }

 private:
  char At(std::size_t ahead) const { return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0'; }
  void Take() { number_ += text_[position_++]; }

  void TakeSign() {
    if (At(0) == '-') {
      Take();
    } else if (At(0) == '+') {
      ++position_;
    }
  }

  std::size_t TakeDigits() {
    const std::size_t start = position_;
    while (IsDigit(At(0))) {
      Take();
    }
    return position_ - start;
  }

  void TakeExponent() {
    if (std::string_view("eEdD").find(At(0)) == std::string_view::npos || !IsDigit(At(IsSign(At(1)) ? 2 : 1))) {
      return;
    }
    ++position_;
    number_ += 'e';
    negativeExponent_ = At(0) == '-';
    TakeSign();
    TakeDigits();
  }

  std::string_view text_;
  std::size_t position_ = 0;
  std::string number_;
  bool negativeExponent_ = false;
};

}  // namespace

double LeadingNumber(std::string_view text) {
  const std::string compact = WithoutBlanks(text);
  NumberScanner scanner(compact);
  const std::string number = scanner.Scan();
  double value = 0;
  const std::errc result = std::from_chars(number.data(), number.data() + number.size(), value).ec;
  if (result == std::errc::result_out_of_range) {
    if (scanner.HasNegativeExponent()) {
      return 0;  // too small to be told from 0
    }
    throw MakeRuntimeError(RuntimeError::Overflow, "\"" + std::string(text) + "\" is too large a number");
  }
  return value;
}

}  // namespace parvex
