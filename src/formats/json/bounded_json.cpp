#include "formats/json/bounded_json.h"

#include <stdexcept>
#include <vector>

namespace parvex {
namespace {

void Take(std::size_t& values) {
  if (values == 0) {
    throw std::invalid_argument("it holds more values than are read");
  }
  --values;
}

// Looks at what opens and separates values outside of strings. What is no JSON is the parser's business.
void CheckBounds(std::string_view text, std::size_t& values) {
  std::vector<std::size_t> keys;  // of every open object, nothing of arrays
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (isInString) {
      i += character == '\\' ? 1 : 0;
      isInString = character != '"';
    } else if (character == '"') {
      isInString = true;
    } else if (character == '{' || character == '[') {
      keys.push_back(0);
      Take(values);
      if (keys.size() > kDeepestJson) {
        throw std::invalid_argument("it is nested too deep");
      }
    } else if ((character == '}' || character == ']') && !keys.empty()) {
      keys.pop_back();
    } else if (character == ',') {
      Take(values);
    } else if (character == ':' && !keys.empty() && ++keys.back() > kMostJsonKeys) {
      throw std::invalid_argument("an object has too many keys");
    }
  }
}

}  // namespace

Json ParseBoundedJson(std::string_view text) {
  std::size_t values = kMostJsonValues;
  return ParseBoundedJson(text, values);
}

Json ParseBoundedJson(std::string_view text, std::size_t& values) {
  CheckBounds(text, values);
  return Json::parse(text);
}

}  // namespace parvex
