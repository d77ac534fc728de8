#pragma once

#include <cstddef>
#include <string>

namespace parvex::xml {

// What the XML adapters of both platforms refuse in markup that comes from outside, alike.

/// Elements that are open at once. MSXML walks its trees on the stack of its host, which may be 1 MB; deeper markup
/// could take a script host down. Documents of the legacy application nest some ten deep.
inline constexpr std::size_t kDeepestElement = 1'000;

/// Why a text is refused that opens one element too many; the place in front of it is the end of that start tag.
inline std::string NestedTooDeeply() {
  return "elements are nested more deeply than " + std::to_string(kDeepestElement);
}

/// Bytes that expanded entities and attributes defaulted by a DOCTYPE may add to a document, all together.
inline constexpr std::size_t kMostExpansion = 1'000'000;

}  // namespace parvex::xml
