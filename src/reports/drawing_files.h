#pragma once

#include <string_view>

#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// Puts the files that a report document names into it, Base64-encoded in CDATA sections: every image element gets its
/// file's content and a filename element with the name; in every section of type "dwg", then of type "rtf", the parent
/// of each filename element gets the content. Names are looked for in the drawings folder of the product data set
/// group; one with a backslash is a path of its own, of that folder or of the temporary folders in which the legacy
/// application leaves pictures that it made. A missing file gives an empty section; one below a folder "Temp" is
/// deleted once read. A name that leads elsewhere is an error (5), one that means a device or a stream another (75).
void EmbedDrawingFiles(const Platform& platform, const xml::Document& report, std::string_view pdsg);

}  // namespace parvex
