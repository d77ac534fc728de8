#include "adapters/libxml2/library_version.h"

#include <libxml/parser.h>
#include <stdlib.h>

namespace parvex::xml {

// The library tells it as one number: two digits each, but for the first.
std::string LibraryVersion() {
  const unsigned long number = strtoul(xmlParserVersion, nullptr, 10);
  return std::to_string(number / 10000) + "." + std::to_string(number / 100 % 100) + "." + std::to_string(number % 100);
}

}  // namespace parvex::xml
