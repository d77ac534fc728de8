#include "protocol/required_node.h"

#include <string>

#include "seams/automation_error.h"

namespace parvex {

const xml::Node& Required(const xml::Node& node, std::string_view path, std::string_view place) {
  if (!node) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, "no " + std::string(path) + " in " + std::string(place));
  }
  return node;
}

}  // namespace parvex
