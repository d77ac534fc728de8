#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace parvex::masking {

/// What stands in a place.
enum class Place : std::uint8_t {
  Other,        ///< anything: only what is known from other places is looked for in it
  Name,         ///< of a project, a customer, a contact, a tag, a user; an address, a telephone number
  Description,  ///< free text
  Price,
  Path,
  Free,   ///< a file or entry of an archive: free text, unless it is of a kind that is known
  Packed  ///< Base64
};

/// What an element, attribute, key, column or parameter of that name holds. Letter case, a number at the end, "_" and a
/// short prefix for the type in small letters do not matter.
Place PlaceNamed(std::string_view name);

/// The same of an element, of whose name alone NAME and VALUE say nothing: `parent` is the element around it, `named`
/// what its sibling NAME says.
Place PlaceOfElement(std::string_view element, std::string_view parent, std::string_view named);

/// Texts that the protocol fixes, a line each: what they consist of is nobody's name.
std::string_view ProtocolTexts();

}  // namespace parvex::masking
