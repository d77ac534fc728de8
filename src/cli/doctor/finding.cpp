#include "cli/doctor/finding.h"

#include <new>

#include "seams/automation_error.h"

namespace parvex::cli {

namespace {
using State = Finding::State;
}

Finding Check(const std::string& name, const Cure& cure, const std::function<Found()>& check) {
  const auto failed = [&](Told why) { return Finding{name, State::Failure, std::move(why), cure.hint, cure.command}; };
  try {
    const Found found = check();
    if (found.state == State::Ok || found.state == State::Unchecked) {
      return {name, found.state, found.detail};
    }
    const Cure& chosen = found.cure.hint.empty() ? cure : found.cure;
    return {name, found.state, found.detail, chosen.hint, chosen.command};
  } catch (const AutomationError& error) {
    return failed(ToldOf(error));
  } catch (const std::bad_alloc&) {
    return failed("what is looked at takes more memory than there is");
  }
}

}  // namespace parvex::cli
