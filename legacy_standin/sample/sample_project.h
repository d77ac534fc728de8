#pragma once

#include <vector>

#include "legacy_standin/projects/units.h"

namespace parvex::standin {

/// The units of the sample machine's project, each of a family of its own and each there for something that a hand-over
/// can go wrong with: several base units, an engineered-to-order unit, stored SAP data, no stored data, text that has
/// to be escaped, data in the temporary folder and in the project folder.
std::vector<Unit> SampleUnits();

}  // namespace parvex::standin
