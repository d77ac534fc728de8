#pragma once

#include <map>
#include <memory>
#include <string>

#include "replay/script.h"
#include "seams/automation.h"

namespace parvex::replay {

/// A late-bound object of that name in the record, which answers from it.
automation::ObjectRef AnsweredObject(std::string name, std::shared_ptr<Script> script);

/// Late-bound objects that answer from a record. They may outlive this.
class AnsweredAutomation : public automation::Automation {
 public:
  explicit AnsweredAutomation(std::shared_ptr<Script> script) : script_(std::move(script)) {}
  automation::ObjectRef Create(std::string_view programmaticId) override;

 private:
  std::shared_ptr<Script> script_;
};

}  // namespace parvex::replay
