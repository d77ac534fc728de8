#pragma once

#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/sample/sample_project.h"
#include "tests/unit/legacy_standin/standin_machine.h"

namespace parvex::standin {

/// A machine with a project "Clinic", which has the sample's units.
struct TagProject : StandinMachine {
  const ProjectStore store{application};

  TagProject() {
    store.Create("Clinic");
    store.WriteUnits("Clinic", SampleUnits());
  }
};

}  // namespace parvex::standin
