#pragma once

#include "legacy_standin/installation/application.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {

/// A machine with the folders of an installed application, and that application with settings that a test may change.
struct StandinMachine {
  test::FakeMachine machine;
  Application application{*machine.platform.registry,
                          *machine.platform.files,
                          *machine.platform.projectDatabases,
                          *machine.platform.codePage,
                          {}};
};

}  // namespace parvex::standin
