#pragma once

#include <functional>
#include <string>
#include <vector>

#include "legacy_standin/projects/units.h"

namespace parvex::standin {

/// The text (UTF-8, lines ended by CR LF) of the file in which the workflow program hands a selection over: the Header
/// section with `header`, then the numbered sections of each unit. `pathOf` gives the full path of an archive.
std::string FormatSelection(const Fields& header, const std::vector<Unit>& units,
                            const std::function<std::string(const StoredData&)>& pathOf);

}  // namespace parvex::standin
