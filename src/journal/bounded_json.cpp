#include "journal/bounded_json.h"

#include <stdexcept>
#include <vector>

namespace parvex::journal {
namespace {

// Looks at brackets and colons outside of strings. What is no JSON is the parser's business.
void CheckBounds(std::string_view text) {
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
      if (keys.size() > kDeepestNesting) {
        throw std::invalid_argument("it is nested too deep");
      }
    } else if ((character == '}' || character == ']') && !keys.empty()) {
      keys.pop_back();
    } else if (character == ':' && !keys.empty() && ++keys.back() > kMostKeys) {
      throw std::invalid_argument("an object has too many keys");
    }
  }
}

}  // namespace

Json ParseBounded(std::string_view text) {
  CheckBounds(text);
  return Json::parse(text);
}

}  // namespace parvex::journal
