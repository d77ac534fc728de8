#pragma once

#include <functional>
#include <string>

#include "seams/automation.h"

namespace parvex::standin {

/// A class that the substitute offers to late binding.
struct LateBoundClass {
  std::string programmaticId;
  std::function<automation::ObjectRef()> create;
};

}  // namespace parvex::standin
