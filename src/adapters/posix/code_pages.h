#pragma once

#include <cstdint>
#include <memory>

#include "formats/jet/code_page.h"

namespace parvex::posix {

/// The code pages that Windows has used for its languages, as this system's iconv knows them: 874, 932, 936, 949, 950
/// and 1250 to 1258. Null for any other and for one that is not installed; 1252 always works. A byte without a
/// character reads as U+FFFD.
std::shared_ptr<jet::TextCodec> CodePageOf(std::uint16_t number);

}  // namespace parvex::posix
