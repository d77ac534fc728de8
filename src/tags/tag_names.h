#pragma once

#include <string>
#include <string_view>

#include "protocol/legacy_link.h"

namespace parvex {

/// A name for a new tag that no tag of the cached list has: the wanted name with the characters < > & ' " \ , |
/// replaced by "_", and, while that is taken in the product data set group `pdsg`, with a number in square brackets.
/// The number is the instance's own counter, which only ever rises; it is put inside brackets that end the name
/// already, else behind the name as it was passed in.
///
/// The list is fetched from `projectName` by the first call of the instance's life and kept, whatever project later
/// calls name: deliberate, names that this instance makes are told apart by the counter. A refused list has no tags; a
/// fetch that fails on its way ends the call, and the next call fetches again.
std::string MakeUniqueTagName(LegacyLink& link, std::string_view projectName, std::string_view wantedName,
                              std::string_view pdsg);

}  // namespace parvex
