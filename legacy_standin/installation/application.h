#pragma once

#include <string>

#include "legacy_standin/installation/standin_settings.h"
#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/project_database.h"
#include "seams/registry.h"

namespace parvex::standin {

/// What every component of the substitute legacy application works on. The seams outlive it.
struct Application {
  Registry& registry;
  Files& files;
  ProjectDatabases& projectDatabases;
  CodePage& codePage;
  StandinSettings settings;

  /// The folder that holds Bin, Temp, Projects and Archives, without final backslash; an AutomationError when the
  /// application is not installed.
  std::string Root() const;
};

}  // namespace parvex::standin
