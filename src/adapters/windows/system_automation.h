#pragma once

#include "seams/automation.h"

namespace parvex::windows {

/// Late binding through IDispatch.
class SystemAutomation : public automation::Automation {
 public:
  automation::ObjectRef Create(std::string_view programmaticId) override;
};

}  // namespace parvex::windows
